#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "acquisition/HeardMeters.h"
#include "config/PortDevices.h"

namespace wattlark {

/// What is known while a profile has no meters.
struct FirstStartState {
  std::int32_t portNumber = 1;
  bool isOpen = false;      ///< the port delivers
  bool isDemoMode = false;  ///< the port is not used
  bool canLeaveDemoMode = true;
  std::string devicePath;   ///< what the port number means; may be empty
  bool isChosen = false;    ///< the user has said so
  std::string portProblem;  ///< why the port is closed; empty when access is missing
  std::string deniedPath;   ///< a device that the user may not open yet; empty for none
  /// What gives access to it at the next log-in; empty when that was done.
  std::string accessCommand;
  std::vector<SerialDevice> devices;
  std::vector<HeardMeter> heard;
};

/// The way from a new profile to the first reading, in words.
struct FirstStartView {
  static constexpr std::size_t MostRows = 6;  ///< of devices, and of meters
  static constexpr std::int64_t HeardSeconds = 60;

  struct Device {
    std::string path;
    std::string title;   ///< what it calls itself, or its short path
    std::string detail;  ///< the path, where it is not the title
    bool isUsed = false;
    friend bool operator==(const Device&, const Device&) = default;
  };
  struct Meter {
    std::int16_t address = 0;
    std::string text;  ///< "Meter 5 is sending: add it?"
    friend bool operator==(const Meter&, const Meter&) = default;
  };

  std::string receiverText;
  std::string command;  ///< to be typed in a terminal; empty for none
  std::vector<Device> devices;
  std::string metersText;     ///< may be empty
  std::vector<Meter> meters;  ///< sending now, by address
  bool offersAdding = false;  ///< of a meter that was not heard
  std::string demoText;
  std::string demoCaption;  ///< of the button that switches demo mode; empty for none

  friend bool operator==(const FirstStartView&, const FirstStartView&) = default;
};

FirstStartView MakeFirstStartView(const FirstStartState& state, DateTime now);

}  // namespace wattlark
