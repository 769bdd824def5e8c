#pragma once

#include <string>

#include "app/ProfileData.h"
#include "support/RegionalSettings.h"

namespace wattlark {

/// What a terminal can show.
struct ConsoleSize {
  int columns = 80;
  int rows = 24;
};

/// What a run without a window shows on a terminal, lines ending in LF: the first line of the main
/// area's message where there is one, then a table of all meters and, behind two or more of them,
/// the Total. No line is as wide as the terminal and there are fewer lines than it has rows; names
/// are cut, columns and meters left out where that is needed.
std::string ConsoleTable(const ProfileData& profile, const RegionalSettings& regional,
                         bool isFlowing, DateTime now, ConsoleSize size);

/// The date of a line of readings, whatever the regional settings: "2026-11-16T20:10:01".
std::string ConsoleDate(DateTime now);

/// One meter in one line, in a form that no regional settings change, without its date and a line
/// end: "Kitchen 612.4 W 120.1 V 5.10 A today 3.200 kWh", and "Kitchen no data" while it is silent.
std::string ConsoleLine(const clsKillAWatt& meter, DateTime now);

}  // namespace wattlark
