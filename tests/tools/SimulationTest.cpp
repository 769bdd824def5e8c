#include <gtest/gtest.h>

#include "DecodedFrame.h"
#include "sim/Simulation.h"

namespace wattlark {
namespace {

std::vector<MeterSettings> ThreeMeters() {
  std::vector<MeterSettings> meters(3);
  for (std::size_t i = 0; i < meters.size(); ++i) {
    meters[i].address = static_cast<std::uint16_t>(5 + i);
    meters[i].watts = 100;
  }
  return meters;
}

std::vector<Delivery> Take(Simulation& simulation, std::size_t count) {
  std::vector<Delivery> deliveries;
  for (; deliveries.size() < count; simulation.Advance()) deliveries.push_back(simulation.Next());
  return deliveries;
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

TEST(Simulation, RestartBeginsARoundWithTheFirstMeter) {
  Simulation simulation(ThreeMeters(), LineSettings{0, 0, 0, 10}, 2.0, 1);
  Take(simulation, 7);
  simulation.Restart(10300);
  EXPECT_EQ(simulation.Next().milliseconds, 10300);
  Bytes bytes;
  for (; bytes.size() < 88; simulation.Advance())
    bytes.insert(bytes.end(), simulation.Next().bytes.begin(), simulation.Next().bytes.end());
  EXPECT_EQ(DecodedFrame(bytes).address, 5);
  EXPECT_EQ(simulation.Next().milliseconds, 10550);
  // Seven frames of 176 ms each keep this line busy until 1232 ms.
  Simulation busy(ThreeMeters(), LineSettings{0, 0, 0, 1}, 0.3, 1);
  Take(busy, std::size_t{7} * 88);
  busy.Restart(700);
  EXPECT_EQ(busy.Next().milliseconds, 700);
}

TEST(Simulation, UnknownAddressIsNoMetersEvenIfItsFirstChoiceIsTaken) {
  std::vector<MeterSettings> meters = ThreeMeters();
  meters[0].address = 0x7FFF;
  meters[1].address = 0x7FFE;
  Simulation simulation(meters, LineSettings{0, 0, 1, 0}, 2.0, 1);
  const std::vector<Delivery> deliveries = Take(simulation, 12);
  for (std::size_t i = 0; i < deliveries.size(); i += 2) {
    EXPECT_EQ(DecodedFrame(deliveries[i].bytes).address, 0x7FFD);
    EXPECT_EQ(DecodedFrame(deliveries[i + 1].bytes).address, meters[i / 2 % 3].address);
    EXPECT_GT(deliveries[i + 1].milliseconds, deliveries[i].milliseconds);
  }
}

TEST(Simulation, PiecesOfFramesNeverMixOnABusyLine) {
  // One byte each 2 ms makes a frame last 176 ms, longer than the 100 ms between two bursts.
  Simulation simulation(ThreeMeters(), LineSettings{0, 0, 0, 1}, 0.3, 1);
  Bytes bytes;
  std::int64_t last = -1;
  for (const Delivery& delivery : Take(simulation, std::size_t{88} * 9)) {
    EXPECT_GT(delivery.milliseconds, last);
    last = delivery.milliseconds;
    bytes.push_back(delivery.bytes.at(0));
    if (bytes.size() < 88) continue;
    EXPECT_TRUE(DecodedFrame(bytes).isWellFormed);
    bytes.clear();
  }
}

}  // namespace
}  // namespace wattlark
