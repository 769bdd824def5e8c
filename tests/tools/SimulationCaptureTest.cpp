#include <gtest/gtest.h>

#include <regex>
#include <sstream>

#include "DecodedFrame.h"
#include "sim/SimulationCapture.h"

namespace wattlark {
namespace {

std::vector<std::string> Capture(const LineSettings& line, DateTime start, std::int64_t seconds) {
  std::vector<MeterSettings> meters(2);
  meters[0].address = 5;
  meters[1].address = 6;
  Simulation simulation(meters, line, 2.0, 4);
  std::stringstream text;
  EXPECT_TRUE(WriteCapture(simulation, start, seconds, text));
  std::vector<std::string> lines;
  for (std::string row; std::getline(text, row);) lines.push_back(row);
  return lines;
}

DateTime At(const char* iso) {
  return DateTime::FromIso(iso).value();
}

TEST(SimulationCapture, HasEachSecondsBurstsThenItsTick) {
  const std::vector<std::string> lines = Capture({}, At("2026-12-31T23:59:58"), 3);
  const std::vector<std::string> starts = {"2026-12-31T23:59:58 0 rx 7E0054830005",
                                           "2026-12-31T23:59:58.250 250 rx 7E0054830006",
                                           "2026-12-31T23:59:59 1000 tick",
                                           "2027-01-01T00:00:00 2000 tick",
                                           "2027-01-01T00:00:00 2000 rx 7E0054830005",
                                           "2027-01-01T00:00:00.250 2250 rx 7E0054830006",
                                           "2027-01-01T00:00:01 3000 tick"};
  ASSERT_EQ(lines.size(), starts.size());
  for (std::size_t i = 0; i < lines.size(); ++i)
    EXPECT_EQ(lines[i].substr(0, starts[i].size()), starts[i]);
}

TEST(SimulationCapture, EveryLineOfADisturbedCaptureIsValid) {
  const std::regex form(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d(\.\d{3})? \d+ (tick|rx ([0-9A-F]{2})+))");
  const std::vector<std::string> lines =
      Capture({0.5, 0.3, 0.4, 9}, At("2026-03-29T01:30:00.750"), 120);
  std::int64_t lastTicks = 0;
  int tickLines = 0;
  for (const std::string& line : lines) {
    ASSERT_TRUE(std::regex_match(line, form)) << line;
    const std::size_t blank = line.find(' ');
    const std::int64_t ticks = std::stoll(line.substr(blank));
    EXPECT_GE(ticks, lastTicks) << line;
    EXPECT_EQ(DateTime::FromIso(line.substr(0, blank)),
              At("2026-03-29T01:30:00.750").PlusMilliseconds(ticks));
    tickLines += line.ends_with(" tick") ? 1 : 0;
    lastTicks = ticks;
  }
  EXPECT_EQ(tickLines, 120);
}

TEST(SimulationCapture, ReportsAStreamThatFails) {
  Simulation simulation(std::vector<MeterSettings>(1), {}, 2.0, 4);
  std::ostringstream text;
  text.setstate(std::ios::badbit);
  EXPECT_FALSE(WriteCapture(simulation, At("2026-01-01T00:00:00"), 5, text));
}

}  // namespace
}  // namespace wattlark
