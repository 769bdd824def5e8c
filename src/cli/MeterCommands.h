#pragma once

#include <optional>
#include <string>

#include "cli/CommandEnvironment.h"

namespace wattlark {

/// What the user said about a new meter, as typed; what is left out keeps its default.
struct NewMeter {
  std::string name;
  std::string address;                       ///< 0 to 32767
  std::optional<std::string> type;           ///< "load" or "generator"
  std::optional<std::string> voltage;        ///< 120 or 240
  std::optional<std::string> frequency;      ///< 50 or 60
  std::optional<std::string> alarm;          ///< "on" or "off"
  std::optional<std::string> alarmUpper;     ///< W
  std::optional<std::string> alarmLower;     ///< W
  std::optional<std::string> alarmDuration;  ///< s
  std::optional<std::string> alarmInterval;  ///< s
};

/// The commands answer the exit status; a refusal says why in the environment's messages and
/// changes nothing.
int AddMeter(const std::string& profileFolder, const NewMeter& options,
             CommandEnvironment& environment);
/// Removes a meter with all that is stored of it, also one that is not loaded because its address
/// is taken.
int RemoveMeter(const std::string& profileFolder, const std::string& name,
                CommandEnvironment& environment);
int ListMeters(const std::string& profileFolder, bool asJson, CommandEnvironment& environment);

}  // namespace wattlark
