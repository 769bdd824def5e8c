#include "config/OptionsEdit.h"

#include <cmath>

#include "config/OptionsLists.h"
#include "config/ServiceStates.h"
#include "support/CompactPath.h"
#include "support/modFormat.h"
#include "support/modText.h"

namespace wattlark {

namespace {

constexpr int kDecimals = 4;
constexpr double kMostMoney = 922337203685477.5807;
constexpr std::size_t kLongestWholePath = 55;
constexpr std::size_t kLongestCompactPath = 54;

int IndexWithin(int index, std::size_t count) {
  return index >= 0 && static_cast<std::size_t>(index) < count ? index : -1;
}

GeneralOptions MakeGeneral(const AppSettings& settings, const RegionalSettings& regional) {
  GeneralOptions edit;
  edit.showAtLaunch = settings.ShowAtLaunch;
  edit.runAtStartup = settings.RunAtStartup;
  edit.autoUpdate = settings.AutoUpdate;
  edit.demoMode = settings.DemoMode;
  edit.portNum = FindEntry(PortNumEntries(), settings.PortNum);
  edit.baudRate = FindText(BaudRateEntries(), settings.BaudRate);
  edit.parity = FindText(ParityEntries(), settings.Parity);
  edit.dataBits = FindText(DataBitsEntries(), settings.DataBits);
  edit.stopBits = FindText(StopBitsEntries(), settings.StopBits);
  edit.serviceState = IndexWithin(settings.ServiceState, ServiceStates().size());
  edit.mils = MilsText(regional, settings.Mils);
  edit.co2 = CO2Text(regional, settings.CO2perKWh);
  return edit;
}

}  // namespace

OptionsEdit MakeOptionsEdit(const AppSettings& settings, const RegionalSettings& regional) {
  OptionsEdit edit;
  edit.general = MakeGeneral(settings, regional);
  edit.csv = {settings.LogToCSV, FindEntry(LogIntervalEntries(), settings.CSVInterval),
              settings.CSVFilename};
  edit.pachube = {settings.LogToPachube, FindEntry(LogIntervalEntries(), settings.PachubeInterval),
                  settings.PachubeFeedURL, settings.PachubeAPIKey};
  edit.google = {settings.LogToGoogle,    FindEntry(LogIntervalEntries(), settings.GoogleInterval),
                 settings.GoogleDocName,  settings.GoogleWorksheetName,
                 settings.GoogleUsername, settings.GooglePassword};
  edit.powerMeter = {settings.LogToPowerMeter,
                     FindEntry(PowerMeterIntervalEntries(), settings.PowerMeterInterval),
                     settings.PowerMeterAuthInfo};
  edit.twitter = {settings.LogToTwitter,
                  settings.AlarmsToTwitter,
                  FindEntry(TwitterIntervalEntries(), settings.TwitterInterval),
                  settings.TwitterMessage,
                  settings.TwitterAlarmMessage,
                  settings.TwitterUsername,
                  settings.TwitterPassword};
  return edit;
}

std::string MilsText(const RegionalSettings& regional, double mils) {
  return FormatCurrencyAuto(regional, mils, kDecimals);
}

std::string CO2Text(const RegionalSettings& regional, double co2) {
  return FormatNumberAuto(regional, co2, kDecimals);
}

bool FillElectricity(int serviceState, const RegionalSettings& regional, std::string& mils,
                     std::string& co2) {
  const auto states = ServiceStates();
  if (IndexWithin(serviceState, states.size()) == -1) return false;
  const StateRates& state = states[static_cast<std::size_t>(serviceState)];
  mils = MilsText(regional, state.mils);
  co2 = CO2Text(regional, state.co2);
  return true;
}

std::optional<double> ReadMils(const RegionalSettings& regional, std::string_view text) {
  const std::optional<double> typed = ParseNumber(regional, text);
  if (!typed || std::fabs(*typed) > kMostMoney) return std::nullopt;
  // Written and read again, it is the decimal digits that are rounded, as the user sees them.
  return ParseNumber(regional, FormatNumberAuto(regional, *typed, kDecimals));
}

std::optional<double> ReadCO2(const RegionalSettings& regional, std::string_view text) {
  return ParseNumber(regional, text);
}

std::string ShownCSVFilename(const std::string& path) {
  return CountCharacters(path) > kLongestWholePath ? CompactPath(path, kLongestCompactPath) : path;
}

std::string NumberNote(bool converts, const std::string& kept) {
  return converts ? std::string() : "This is no number: " + kept + " stays.";
}

std::string EmptyTextNote(std::string_view text) {
  return text.empty() ? "Left empty, it has its default text again at the next start." : "";
}

std::string NoChoiceNote(int index) {
  return index >= 0 ? "" : "The present setting is not in this list: choose an entry.";
}

}  // namespace wattlark
