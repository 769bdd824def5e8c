#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "config/AppSettings.h"
#include "support/RegionalSettings.h"

namespace wattlark {

// The contents of the options dialog, one struct for each tab. The lists hold the index of the
// selected entry, or -1.

struct GeneralOptions {
  bool showAtLaunch = false;
  bool runAtStartup = false;
  bool autoUpdate = false;
  bool demoMode = false;
  int portNum = -1;
  int baudRate = -1;
  int parity = -1;
  int dataBits = -1;
  int stopBits = -1;
  /// The devices that were changed, by port number; an empty path forgets the choice.
  std::map<int, std::string> portDevices;
  int serviceState = -1;
  std::string mils;  ///< as the user writes money
  std::string co2;   ///< as the user writes numbers
};

struct CSVOptions {
  bool logToCSV = false;
  int csvInterval = -1;
  std::string csvFilename;  ///< the full path
};

struct PachubeOptions {
  bool logToPachube = false;
  int pachubeInterval = -1;
  std::string pachubeFeedURL;
  std::string pachubeAPIKey;
};

struct GoogleOptions {
  bool logToGoogle = false;
  int googleInterval = -1;
  std::string googleDocName;
  std::string googleWorksheetName;
  std::string googleUsername;
  std::string googlePassword;
};

struct PowerMeterOptions {
  bool logToPowerMeter = false;
  int powerMeterInterval = -1;
  std::string powerMeterAuthInfo;
};

struct TwitterOptions {
  bool logToTwitter = false;
  bool alarmsToTwitter = false;
  int twitterInterval = -1;
  std::string twitterMessage;
  std::string twitterAlarmMessage;
  std::string twitterUsername;
  std::string twitterPassword;
};

struct OptionsEdit {
  GeneralOptions general;
  CSVOptions csv;
  PachubeOptions pachube;
  GoogleOptions google;
  PowerMeterOptions powerMeter;
  TwitterOptions twitter;
};

OptionsEdit MakeOptionsEdit(const AppSettings& settings, const RegionalSettings& regional);

/// The two electricity fields with four decimals: money, and a number.
std::string MilsText(const RegionalSettings& regional, double mils);
std::string CO2Text(const RegionalSettings& regional, double co2);
/// Puts a state's numbers into the two fields; false, with nothing changed, for an index without
/// one.
bool FillElectricity(int serviceState, const RegionalSettings& regional, std::string& mils,
                     std::string& co2);
/// The price as it is stored: four decimals, rounded to the nearest. Nothing for a text that is no
/// number, or one beyond 922337203685477.5807 either way, the range of money.
std::optional<double> ReadMils(const RegionalSettings& regional, std::string_view text);
std::optional<double> ReadCO2(const RegionalSettings& regional, std::string_view text);

/// The path as the dialog shows it: one of more than 55 characters in at most 54.
std::string ShownCSVFilename(const std::string& path);

// Why what was entered is not taken as it stands, for a note next to the field; empty when it is.

/// A cost or CO2 text; `kept` is the text of the value that stays.
std::string NumberNote(bool converts, const std::string& kept);
/// A text setting that has a default.
std::string EmptyTextNote(std::string_view text);
/// A list whose setting is none of its entries.
std::string NoChoiceNote(int index);

}  // namespace wattlark
