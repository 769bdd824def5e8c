#pragma once

#include <string>

#include "app/ProfileData.h"
#include "support/RegionalSettings.h"

namespace wattlark {

/// The two-line message that takes the place of the pages ("\r\n" between the lines), or an empty
/// text when the pages can be shown.
std::string MainAreaMessage(const ProfileData& profile, bool isFlowing);

/// The notification-area icon as values: at most 63 characters of tooltip and the key of a picture.
struct TrayView {
  std::string tooltip;
  std::string image;  ///< "KILLAWATT", or "KILLAWATT0" to "KILLAWATT4" for the load level
};

TrayView TrayIconView(const ProfileData& profile, const RegionalSettings& regional, bool isFlowing,
                      DateTime now);

/// What an alarm notice says of one meter, without a line end: "Kitchen: Using 612.4 Watts".
std::string AlarmNoticeLine(const clsKillAWatt& meter, const RegionalSettings& regional);

}  // namespace wattlark
