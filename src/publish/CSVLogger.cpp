#include "publish/CSVLogger.h"

#include <cerrno>
#include <fstream>
#include <system_error>

#include "support/modFormat.h"

namespace wattlark {

namespace {

constexpr const char* kSeparator = ", ";

std::string HeaderLine(const MeterCollection& meters) {
  std::string line = "Timestamp";
  for (const auto& meter : meters) line += kSeparator + meter->Name();
  return line;
}

std::string DataLine(const AppSettings& settings, const MeterCollection& meters,
                     const RegionalSettings& regional, DateTime timestamp, bool useAverage) {
  std::string line = FormatDateAndTime(regional, timestamp);
  for (const auto& meter : meters) {
    const double watts =
        useAverage ? meter->AverageDemand(settings.CSVInterval) : meter->ShownWatts();
    line += kSeparator + FormatNumberAuto(regional, watts, AutomaticDecimals, "", false);
  }
  return line;
}

}  // namespace

PublishResult LogToCSVFile(AppSettings& settings, const MeterCollection& meters,
                           const RegionalSettings& regional, DateTime timestamp, bool useAverage) {
  errno = 0;
  std::ofstream file(settings.CSVFilename, std::ios::binary | std::ios::app);
  if (!file) {
    const int error = errno != 0 ? errno : EIO;
    return {false, "Error Writing Log File - " + std::generic_category().message(error)};
  }
  file.seekp(0, std::ios::end);
  if (settings.CSVFileChanged || file.tellp() == std::streampos(0)) {
    file << HeaderLine(meters) << "\r\n";
    settings.CSVFileChanged = false;
  }
  file << DataLine(settings, meters, regional, timestamp, useAverage) << "\r\n";
  return {true, "CSV file: Updated " + FormatDateAndTime(regional, timestamp)};
}

}  // namespace wattlark
