#include <gtest/gtest.h>

#include <sstream>

#include "app/CaptureReader.h"
#include "sim/SimulationCapture.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

TEST(SimulationCapture, HasEachSecondsBurstsThenItsTick) {
  std::vector<MeterSettings> meters(2);
  meters[0].address = 5;
  meters[1].address = 6;
  Simulation simulation(meters, {}, 2.0, 4);
  std::stringstream text;
  EXPECT_TRUE(WriteCapture(simulation, At("2026-12-31T23:59:58"), 3, text));
  std::istringstream copy(text.str());
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
  Capture capture;
  EXPECT_EQ(ReadCapture(copy, "capture", capture), "");
  EXPECT_EQ(capture.events.size(), 7U);
  text.setstate(std::ios::badbit);
  EXPECT_FALSE(WriteCapture(simulation, At("2026-01-01T00:00:00"), 5, text)) << "a failing stream";
}

}  // namespace
}  // namespace wattlark
