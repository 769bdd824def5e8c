#include <gtest/gtest.h>

#include "twins/Meters.h"

namespace wattlark {
namespace {

std::string Names(const MeterCollection& meters) {
  std::string names;
  for (const auto& meter : meters) names += meter->Name() + ' ';
  return names;
}

TEST(MeterCollection, KeepsTheOrderAndRefusesAnAddressThatIsTaken) {
  MeterCollection meters;
  EXPECT_TRUE(meters.IsEmpty());
  EXPECT_TRUE(meters.Add(NewMeter("Office", 9)));
  EXPECT_TRUE(meters.Add(NewMeter("Kitchen", 5)));
  auto refused = NewMeter("Attic", 9);
  EXPECT_FALSE(meters.Add(std::move(refused)));
  ASSERT_NE(refused, nullptr) << "left with the caller";
  EXPECT_EQ(Names(meters), "Office Kitchen ");
  EXPECT_EQ(meters.Count(), 2U);
  EXPECT_EQ(meters[1].Name(), "Kitchen");
  EXPECT_EQ(MeterCollection::Key(32767), "XBEE32767");
}

TEST(MeterCollection, FindsByAddressAndByNameWithoutCase) {
  MeterCollection meters;
  meters.Add(NewMeter("Küche", 5));
  meters.Add(NewMeter("", 0));
  ASSERT_NE(meters.FindAddress(5), nullptr);
  EXPECT_EQ(meters.FindAddress(5)->Name(), "Küche");
  EXPECT_EQ(meters.FindAddress(6), nullptr);
  EXPECT_EQ(meters.FindName("KÜCHE"), meters.FindAddress(5));
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

}  // namespace
}  // namespace wattlark
