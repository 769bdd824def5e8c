#pragma once

#include <span>
#include <string_view>

#include "config/ListEntries.h"

namespace wattlark {

// The fixed lists of the options dialog. What a text list stores is its entry without the blanks
// around it; what the others store is the number.

/// "COM1:" to "COM11:" with the port numbers.
std::span<const ListEntry> PortNumEntries();
std::span<const char* const> BaudRateEntries();
std::span<const char* const> ParityEntries();
std::span<const char* const> DataBitsEntries();
std::span<const char* const> StopBitsEntries();
/// Seconds; of the CSV log, Pachube and Google Docs.
std::span<const ListEntry> LogIntervalEntries();
/// Seconds.
std::span<const ListEntry> PowerMeterIntervalEntries();
/// Hours.
std::span<const ListEntry> TwitterIntervalEntries();

/// Index of the first entry whose text without blanks around it equals `text`, or -1.
int FindText(std::span<const char* const> entries, std::string_view text);
/// Text of the selected entry without blanks around it, empty without a selection.
std::string_view TextAt(std::span<const char* const> entries, int index);

}  // namespace wattlark
