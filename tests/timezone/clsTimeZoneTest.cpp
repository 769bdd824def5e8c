#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "Zones.h"

namespace wattlark {
namespace {

constexpr std::array<std::uint8_t, 44> kBlob = {
    0x2C, 0x01, 0x00, 0x00,                          // Bias 300
    0x05, 0x04, 0x03, 0x02,                          // StandardBias 0x02030405
    0xC4, 0xFF, 0xFF, 0xFF,                          // DaylightBias -60
    0xEA, 0x07, 0x0B, 0x00, 0x06, 0x00, 0x01, 0x00,  // 2026-11, Saturday, 1
    0x02, 0x00, 0x1E, 0x00, 0x0F, 0x00, 0xE7, 0x03,  // 02:30:15.999
    0xFF, 0xFF, 0x00, 0x80, 0x01, 0x02, 0x03, 0x04,  // any bits at all
    0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x0B, 0x0C,
};

TEST(clsTimeZoneInformation, ReadsEveryFieldAtItsPlace) {
  const auto rule = clsTimeZoneInformation::FromBlob(kBlob);
  ASSERT_TRUE(rule);
  EXPECT_EQ(rule->Bias, 300);
  EXPECT_EQ(rule->StandardBias, 0x02030405);
  EXPECT_EQ(rule->DaylightBias, -60);
  EXPECT_EQ(rule->StandardDate, (clsSystemTime{2026, 11, 6, 1, 2, 30, 15, 999}));
  EXPECT_EQ(rule->DaylightDate,
            (clsSystemTime{0xFFFF, 0x8000, 0x0201, 0x0403, 0x0605, 0x0807, 0x0A09, 0x0C0B}));
  EXPECT_EQ(rule->ToBlob(), std::vector<std::uint8_t>(kBlob.begin(), kBlob.end()));
  for (std::size_t i = 0; i < kBlob.size(); ++i) {
    auto other = kBlob;
    other[i] ^= 1;
    EXPECT_NE(clsTimeZoneInformation::FromBlob(other), rule) << "byte " << i;
  }
}

TEST(clsTimeZone, ChoosesTheRuleByYear) {
  clsTimeZone zone;
  zone.StandardRule = {1, 2, 3, Relative(1, 0, 1, 0), Relative(2, 0, 1, 0)};
  EXPECT_EQ(zone.Bias(2008), 1) << "without rules of years";
  zone.FirstTZI = 2006;
  zone.LastTZI = 2010;
  // 2008 has none, as after a reading that ended early.
  for (const int year : {2006, 2007, 2009, 2010}) {
    zone.AddDynamicTZI(year) = {year, year * 2, year * 3, Absolute(year, 4, 1),
                                Absolute(year, 5, 1)};
  }
  using Row = std::pair<int, int>;  // the year asked for, and whose rule answers; 0: the standard
  for (const auto& [year, rule] :
       {Row{1, 2006}, Row{2005, 2006}, Row{2006, 2006}, Row{2007, 2007}, Row{2008, 0},
        Row{2009, 2009}, Row{2010, 2010}, Row{2011, 2010}, Row{9999, 2010}, Row{0, 0}}) {
    const clsTimeZoneInformation expected =
        rule == 0 ? zone.StandardRule : zone.DynamicTZI.at(std::to_string(rule));
    const clsTimeZoneInformation found{zone.Bias(year), zone.StandardBias(year),
                                       zone.DaylightBias(year), zone.StandardDate(year),
                                       zone.DaylightDate(year)};
    EXPECT_EQ(found, expected) << year;
  }
}

TEST(clsTimeZone, OnlyTheStandardRuleSaysWhetherThereIsDaylightTime) {
  clsTimeZone zone;
  zone.FirstTZI = zone.LastTZI = 2026;
  zone.AddDynamicTZI(2026) = EasternRule();
  EXPECT_FALSE(zone.ObserveDST());
  EXPECT_EQ(zone.AddDynamicTZI(2026), clsTimeZoneInformation()) << "added anew, it is empty";
  zone.StandardRule.StandardDate.wMonth = 11;
  EXPECT_FALSE(zone.ObserveDST());
  zone.StandardRule.DaylightDate.wMonth = 3;
  EXPECT_TRUE(zone.ObserveDST());
}

}  // namespace
}  // namespace wattlark
