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

/// What the program makes of a frame that a simulated meter sends.
struct DecodedFrame {
  explicit DecodedFrame(const Bytes& bytes, double nominalVoltage = 120) {
    const HandClock clock;
    clsXBee decoder(clock);
    decoder.ParseBytes(bytes);
    isWellFormed = bytes.size() == 88 && decoder.SampleDecoded() && decoder.SampleCount() == 19;
    if (!isWellFormed) return;
    address = decoder.SourceAddress();
    meter.ChangeNominalVoltage(nominalVoltage);
    meter.ProcessPacket(decoder);
  }
  bool isWellFormed;
  int address = -1;
  clsKillAWatt meter;
};

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
      const DecodedFrame frame(EncodeFrame(model.TakeBurst(2.0 * burst)), load.nominalVoltage);
      ASSERT_TRUE(frame.isWellFormed);
      EXPECT_NEAR(frame.meter.Watts(), load.watts, load.tolerance * load.watts + roundingWatts);
      EXPECT_NEAR(frame.meter.Volts(), load.nominalVoltage, 0.02 * load.nominalVoltage);
    }
  }
}

TEST(MeterModel, PhaseMovesOnFromBurstToBurstAsTheSeedHasIt) {
  MeterModel meter(MeterSettings{}, 3);
  MeterModel same(MeterSettings{}, 3);
  MeterModel other(MeterSettings{}, 4);
  std::uint16_t lowest = 1023;
  std::uint16_t highest = 0;
  for (int second = 0; second < 120; second += 2) {
    const Burst burst = meter.TakeBurst(second);
    lowest = std::min(lowest, burst.samples[0].voltage);
    highest = std::max(highest, burst.samples[0].voltage);
    EXPECT_EQ(EncodeFrame(burst), EncodeFrame(same.TakeBurst(second)));
    EXPECT_NE(EncodeFrame(burst), EncodeFrame(other.TakeBurst(second)));
  }
  EXPECT_GT(highest - lowest, 400);
}

std::vector<MeterSettings> Meters(std::initializer_list<std::uint16_t> addresses) {
  std::vector<MeterSettings> meters;
  for (const std::uint16_t address : addresses) {
    meters.emplace_back().address = address;
    meters.back().watts = 100;
  }
  return meters;
}

TEST(Schedule, HasEveryMeterOnceAPeriodInTurn) {
  const struct {
    std::size_t meters;
    double period;
    std::vector<std::int64_t> times;
  } plans[] = {{1, 2.0, {0, 2000, 4000}},
               {3, 2.0, {0, 250, 500, 2000, 2250, 2500, 4000}},
               {4, 0.4, {0, 100, 200, 300, 400, 500}},
               {10, 2.0, {0, 200, 400, 600, 800, 1000, 1200, 1400, 1600, 1800, 2000}},
               {2, 0.75, {0, 250, 750, 1000, 1500}}};
  for (const auto& plan : plans) {
    Schedule schedule(plan.meters, plan.period);
    for (std::size_t i = 0; i < plan.times.size(); ++i, schedule.Advance()) {
      EXPECT_EQ(schedule.Next().meter, i % plan.meters);
      EXPECT_EQ(schedule.Next().milliseconds, plan.times[i]);
    }
  }
}

// One byte each 2 ms makes a frame last 176 ms, longer than the 100 ms between two bursts.
TEST(Simulation, PiecesOfFramesNeverMixOnABusyLineAndARestartBeginsARound) {
  Simulation simulation(Meters({5, 6, 7}), LineSettings{0, 0, 0, 1}, 0.3, 1);
  Bytes bytes;
  std::int64_t last = -1;
  for (int piece = 0; piece < 88 * 7 + 10; ++piece, simulation.Advance()) {
    EXPECT_GT(simulation.Next().milliseconds, last);
    last = simulation.Next().milliseconds;
    bytes.push_back(simulation.Next().bytes.at(0));
    if (bytes.size() < 88) continue;
    EXPECT_EQ(DecodedFrame(bytes).address, 5 + piece / 88 % 3);
    bytes.clear();
  }
  simulation.Restart(700);
  EXPECT_EQ(simulation.Next().milliseconds, 700);
  for (bytes.clear(); bytes.size() < 88; simulation.Advance()) {
    bytes.push_back(simulation.Next().bytes.at(0));
  }
  EXPECT_EQ(DecodedFrame(bytes).address, 5);
}

TEST(Simulation, UnknownAddressIsNoMetersEvenIfItsFirstChoiceIsTaken) {
  const std::vector<MeterSettings> meters = Meters({0x7FFF, 0x7FFE, 7});
  Simulation simulation(meters, LineSettings{0, 0, 1, 0}, 2.0, 1);
  std::int64_t before = -1;
  for (std::size_t i = 0; i < 12; ++i, simulation.Advance()) {
    EXPECT_EQ(DecodedFrame(simulation.Next().bytes).address,
              i % 2 == 0 ? 0x7FFD : meters[i / 2 % 3].address);
    EXPECT_GT(simulation.Next().milliseconds, before);
    before = simulation.Next().milliseconds;
  }
}

TEST(SimulationCapture, HasEachSecondsBurstsThenItsTick) {
  Simulation simulation(Meters({5, 6}), {}, 2.0, 4);
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
