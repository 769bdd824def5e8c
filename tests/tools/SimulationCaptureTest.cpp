#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "app/CaptureReader.h"
#include "sim/SimulationCapture.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

std::stringstream CaptureOf(const LineSettings& line, DateTime start, std::int64_t seconds) {
  std::vector<MeterSettings> meters(2);
  meters[0].address = 5;
  meters[1].address = 6;
  Simulation simulation(meters, line, 2.0, 4);
  std::stringstream text;
  EXPECT_TRUE(WriteCapture(simulation, start, seconds, text));
  return text;
}

TEST(SimulationCapture, HasEachSecondsBurstsThenItsTick) {
  std::stringstream text = CaptureOf({}, At("2026-12-31T23:59:58"), 3);
  for (const std::string start :
       {"2026-12-31T23:59:58 0 rx 7E0054830005", "2026-12-31T23:59:58.250 250 rx 7E0054830006",
        "2026-12-31T23:59:59 1000 tick", "2027-01-01T00:00:00 2000 tick",
        "2027-01-01T00:00:00 2000 rx 7E0054830005", "2027-01-01T00:00:00.250 2250 rx 7E0054830006",
        "2027-01-01T00:00:01 3000 tick"}) {
    std::string line;
    ASSERT_TRUE(std::getline(text, line));
    EXPECT_EQ(line.substr(0, start.size()), start);
  }
  EXPECT_EQ(text.peek(), std::char_traits<char>::eof());
  text.setstate(std::ios::badbit);
  Simulation simulation(std::vector<MeterSettings>(1), {}, 2.0, 4);
  EXPECT_FALSE(WriteCapture(simulation, At("2026-01-01T00:00:00"), 5, text)) << "a failing stream";
}

TEST(SimulationCapture, EveryLineOfADisturbedCaptureIsValid) {
  const DateTime start = At("2026-03-29T01:30:00.750");
  std::stringstream text = CaptureOf({0.5, 0.3, 0.4, 9}, start, 120);
  Capture capture;
  EXPECT_EQ(ReadCapture(text, "capture", capture), "");
  std::uint32_t last = 0;
  for (const CaptureEvent& event : capture.events) {
    EXPECT_GE(event.ticks, last);
    EXPECT_EQ(event.time, start.PlusMilliseconds(event.ticks));
    last = event.ticks;
  }
  EXPECT_EQ(std::ranges::count_if(capture.events, &CaptureEvent::IsTick), 120);
}

}  // namespace
}  // namespace wattlark
