#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "acquisition/clsKillAWatt.h"
#include "acquisition/clsXBee.h"
#include "app/CaptureReader.h"
#include "sim/FrameWriter.h"
#include "sim/SimulationCapture.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

TEST(MeterModel, ReadsAsTheChosenWattsAndVoltsAtEveryPhase) {
  struct Load {
    double watts, nominalVoltage, frequency, powerFactor;
    double tolerance;  ///< share of the watts
  };
  for (const Load& load :
       {Load{20, 120, 60, 0.95, 0.02}, Load{84, 120, 60, 1, 0.02}, Load{1700, 120, 60, 0.95, 0.02},
        Load{900, 120, 50, 0.5, 0.03}, Load{0, 120, 60, 0.95, 0}, Load{350, 240, 60, 0.95, 0.02},
        Load{3400, 240, 50, 0.95, 0.02}}) {
    MeterSettings settings;
    settings.watts = load.watts;
    settings.nominalVoltage = load.nominalVoltage;
    settings.frequency = load.frequency;
    settings.powerFactor = load.powerFactor;
    settings.varies = false;
    // What half a count of current in a sample at the peak of the voltage amounts to.
    const double roundingWatts = 0.5 / 15.5 * load.nominalVoltage * std::sqrt(2.0) / 19.0;
    MeterModel model(settings, 77);
    for (int burst = 0; burst < 500; ++burst) {
      SCOPED_TRACE(burst);
      const Bytes frame = EncodeFrame(model.TakeBurst(2.0 * burst));
      const HandClock clock;
      clsXBee decoder(clock);
      decoder.ParseBytes(frame);
      ASSERT_TRUE(frame.size() == 88 && decoder.SampleDecoded() && decoder.SampleCount() == 19);
      clsKillAWatt meter;
      meter.ChangeNominalVoltage(load.nominalVoltage);
      meter.ProcessPacket(decoder);
      EXPECT_NEAR(meter.Watts(), load.watts, load.tolerance * load.watts + roundingWatts);
      EXPECT_NEAR(meter.Volts(), load.nominalVoltage, 0.02 * load.nominalVoltage);
    }
  }
}

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
  Capture capture;
  EXPECT_EQ(ReadCapture(copy, "capture", capture), "");
  EXPECT_EQ(capture.events.size(), 7U);
  text.setstate(std::ios::badbit);
  EXPECT_FALSE(WriteCapture(simulation, At("2026-01-01T00:00:00"), 5, text)) << "a failing stream";
}

}  // namespace
}  // namespace wattlark
