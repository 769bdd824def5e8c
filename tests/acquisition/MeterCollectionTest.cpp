#include "acquisition/HeardMeters.h"
#include "acquisition/MeterCollection.h"
#include "twins/HandClock.h"
#include "twins/Matchers.h"
#include "twins/Meters.h"

namespace wattlark {
namespace {

std::string Names(const MeterCollection& meters) {
  std::string names;
  for (const auto& meter : meters) names += meter->Name() + ' ';
  return names;
}

TEST(MeterCollection, KeepsTheOrderFindsAndRefusesAnAddressThatIsTaken) {
  MeterCollection meters;
  EXPECT_TRUE(meters.IsEmpty());
  EXPECT_TRUE(meters.Add(NewMeter("Office", 9)));
  EXPECT_TRUE(meters.Add(NewMeter("Küche", 5)));
  auto refused = NewMeter("Attic", 9);
  EXPECT_FALSE(meters.Add(std::move(refused)));
  ASSERT_NE(refused, nullptr) << "left with the caller";
  EXPECT_EQ(Names(meters), "Office Küche ");
  EXPECT_EQ(meters.FindAddress(5), &meters[1]);
  EXPECT_EQ(meters.FindAddress(6), nullptr);
  EXPECT_EQ(meters.FindName("KÜCHE"), &meters[1]);
  EXPECT_EQ(meters.FindName("Küch"), nullptr);
}

TEST(MeterCollection, RemovedMetersAndChangedAddressesFreeTheKey) {
  MeterCollection meters;
  meters.Add(NewMeter("A", 1));
  meters.Add(NewMeter("B", 2));
  EXPECT_FALSE(meters.ChangeAddress(meters[0], 2));
  EXPECT_EQ(meters[0].XBeeAddress(), 1);
  EXPECT_TRUE(meters.ChangeAddress(meters[0], 1));
  EXPECT_TRUE(meters.ChangeAddress(meters[0], 3));
  EXPECT_EQ(meters.FindAddress(1), nullptr);
  EXPECT_EQ(meters.FindAddress(3)->Name(), "A");
  EXPECT_TRUE(meters.Remove(meters[1]));
  EXPECT_EQ(meters.FindAddress(2), nullptr);
  EXPECT_TRUE(meters.Add(NewMeter("C", 2)));
  EXPECT_EQ(Names(meters), "A C ");
  EXPECT_FALSE(meters.Remove(clsKillAWatt())) << "a stranger with address 0";
}

TEST(HeardMetersTest, NoiseDisplacesNoiseAndNoMeter) {
  const DateTime now = At("2026-11-16T20:10:00");
  HeardMeters heard;
  for (int frame = 0; frame < 2; ++frame) heard.Note(5, now);
  for (int address = 1000; address < 31000; ++address) {
    heard.Note(static_cast<std::int16_t>(address), now);
  }
  const std::vector<HeardMeter> all = heard.All();
  ASSERT_EQ(all.size(), HeardMeters::Most);
  EXPECT_EQ(all.front(), (HeardMeter{5, 2, now}));
  EXPECT_EQ(all[1].address, 31000 - 63);
}

}  // namespace
}  // namespace wattlark
