#pragma once

#include <optional>
#include <string>

#include "platform/Registry.h"

namespace wattlark {

/// Which time zone the computer is set to, and where the rules of zones stand.
class TimeZoneSource {
 public:
  virtual ~TimeZoneSource() = default;
  /// The key name of the zone in force now, with its rules in `Zones` brought up to date; nothing
  /// when the system does not say. Ask anew for each conversion: the user may travel, and the rules
  /// need only be right for the present year.
  virtual std::optional<std::string> CurrentZone() = 0;
  /// The registry whose hive `LocalMachine` holds the zones' keys; lives as long as this object.
  virtual Registry& Zones() = 0;
};

}  // namespace wattlark
