#include "config/OptionsLists.h"

#include <algorithm>

#include "support/modText.h"

namespace wattlark {

namespace {

constexpr ListEntry kPorts[] = {{"COM1:", 1}, {"COM2:", 2},   {"COM3:", 3},  {"COM4:", 4},
                                {"COM5:", 5}, {"COM6:", 6},   {"COM7:", 7},  {"COM8:", 8},
                                {"COM9:", 9}, {"COM10:", 10}, {"COM11:", 11}};
constexpr const char* kBaudRates[] = {"256000", "128000", "115200", "57600", "56000",
                                      "38400",  "28800",  "19200",  "9600",  "4800",
                                      "2400",   "1200",   "600",    "300",   "110"};
constexpr const char* kParities[] = {" E", " M", " N", " O", " S"};
constexpr const char* kDataBits[] = {" 4", " 5", " 6", " 7", " 8"};
constexpr const char* kStopBits[] = {" 1", "1.5", " 2"};
constexpr ListEntry kLogIntervals[] = {{"1 minute", 60},     {"5 minutes", 300},
                                       {"10 minutes", 600},  {"15 minutes", 900},
                                       {"30 minutes", 1800}, {"1 hour", 3600}};
constexpr std::size_t kBelowTenMinutes = 2;
constexpr ListEntry kTwitterIntervals[] = {{"1 hour", 1},    {"2 hours", 2},  {"3 hours", 3},
                                           {"4 hours", 4},   {"6 hours", 6},  {"8 hours", 8},
                                           {"12 hours", 12}, {"24 hours", 24}};

}  // namespace

std::span<const ListEntry> PortNumEntries() {
  return kPorts;
}
std::span<const char* const> BaudRateEntries() {
  return kBaudRates;
}
std::span<const char* const> ParityEntries() {
  return kParities;
}
std::span<const char* const> DataBitsEntries() {
  return kDataBits;
}
std::span<const char* const> StopBitsEntries() {
  return kStopBits;
}
std::span<const ListEntry> LogIntervalEntries() {
  return kLogIntervals;
}
std::span<const ListEntry> PowerMeterIntervalEntries() {
  return LogIntervalEntries().subspan(kBelowTenMinutes);
}
std::span<const ListEntry> TwitterIntervalEntries() {
  return kTwitterIntervals;
}

int FindText(std::span<const char* const> entries, std::string_view text) {
  const auto found =
      std::ranges::find_if(entries, [text](const char* entry) { return Trim(entry) == text; });
  return found == entries.end() ? -1 : static_cast<int>(found - entries.begin());
}

std::string_view TextAt(std::span<const char* const> entries, int index) {
  const auto at = static_cast<std::size_t>(index);
  return index >= 0 && at < entries.size() ? Trim(entries[at]) : std::string_view();
}

}  // namespace wattlark
