#include <gtest/gtest.h>

#include <limits>

#include "config/StoreText.h"
#include "config/modRegistry.h"
#include "support/NoValue.h"
#include "support/RegionalForms.h"
#include "twins/HandClock.h"
#include "twins/MemoryRegistry.h"

namespace wattlark {

namespace {

RegionalSettings WithMonthNames() {
  RegionalSettings regional = Germany();
  regional.shortDate = "d MMM yyyy";
  regional.longTime = "h.mm.ss AP";
  regional.amText = "vm.";
  regional.pmText = "nm.";
  regional.shortMonthNames = {"jan.", "feb.", "mrt.", "apr.", "mei",  "jun.",
                              "jul.", "aug.", "sep.", "okt.", "nov.", "dec."};
  return regional;
}

TEST(StoreText, NumbersInTheFormOfTheStore) {
  const StoreText american(RegionalSettings::UnitedStates());
  const StoreText german(Germany());
  EXPECT_EQ(american.FromDouble(0.1251), "0.1251");
  EXPECT_EQ(german.FromDouble(0.1251), "0,1251");
  EXPECT_EQ(german.FromDouble(-1234567.5), "-1234567,5");
  EXPECT_EQ(german.FromDouble(NoValue), "1E+308");
  for (const double value : {0.0, 0.1, -1.0 / 3, NoValue, std::numeric_limits<double>::max(),
                             std::numeric_limits<double>::denorm_min(), 123456789.125}) {
    EXPECT_EQ(american.ToDouble(american.FromDouble(value)), value);
    EXPECT_EQ(german.ToDouble(german.FromDouble(value)), value);
    EXPECT_EQ(german.ToDouble(american.FromDouble(value)), value) << "the separator alone decides";
  }
  for (const char* text : {"", "abc", "1.000,5", "1e999"}) {
    EXPECT_EQ(german.ToDouble(text), std::nullopt) << text;
  }
  RegionalSettings arabic = Germany();
  arabic.decimalSeparator = "\u066B";
  EXPECT_EQ(StoreText(arabic).FromDouble(1.5), "1\u066B5");
  EXPECT_EQ(StoreText(arabic).ToDouble("1\u066B5"), 1.5);
}

TEST(StoreText, DateTimesInTheFormOfTheStore) {
  const StoreText american(RegionalSettings::UnitedStates());
  EXPECT_EQ(american.FromDateTime(At("2010-08-27T13:05:09")), "8/27/2010 1:05:09 PM");
  EXPECT_EQ(american.FromDateTime(At("2010-08-27T13:05:09.070")), "8/27/2010 1:05:09 PM.070");
  EXPECT_EQ(american.FromDateTime(DateTime()), "");
  for (const RegionalSettings& regional :
       {RegionalSettings::UnitedStates(), Germany(), WithMonthNames()}) {
    const StoreText text(regional);
    for (const char* iso : {"2010-01-02T00:00:00", "1999-12-31T23:59:59.999", "2010-05-11T12:00:01",
                            "2012-02-29T00:00:00.001", "9999-12-31T11:22:33"}) {
      EXPECT_EQ(text.ToDateTime(text.FromDateTime(At(iso))), At(iso)) << iso;
    }
  }
}

TEST(StoreText, DateTimesThatAreNone) {
  const StoreText text(RegionalSettings::UnitedStates());
  EXPECT_EQ(text.ToDateTime(""), DateTime());
  EXPECT_EQ(text.ToDateTime("0"), DateTime());
  EXPECT_EQ(text.ToDateTime("12:00:00 AM"), DateTime());
  EXPECT_EQ(text.ToDateTime("8/27/2010"), At("2010-08-27T00:00:00"));
  for (const char* bad : {"x", "13/27/2010 1:05:09 PM", "2/29/2011 1:05:09 PM", "8/27/2010 1:05",
                          "8/27/2010 1:05:09 PM.07x", ".070", "40417.5"}) {
    EXPECT_EQ(text.ToDateTime(bad), std::nullopt) << bad;
  }
}

TEST(StoreText, KeepsTheFormInWhichTheStoreWasWritten) {
  for (const RegionalSettings& first :
       {Germany(), WithMonthNames(), RegionalSettings::UnitedStates()}) {
    MemoryRegistry registry;
    modRegistry store(registry);
    const DateTime moment = At("2010-12-11T13:05:09");
    const StoreText written = StoreText::Load(store, first);
    written.Save(store);
    const std::string date = written.FromDateTime(moment);
    const std::string number = written.FromDouble(1.5);
    for (const RegionalSettings& later : {RegionalSettings::UnitedStates(), Germany()}) {
      const StoreText read = StoreText::Load(store, later);
      EXPECT_EQ(read.ToDateTime(date), moment) << date;
      EXPECT_EQ(read.FromDateTime(moment), date);
      EXPECT_EQ(read.FromDouble(1.5), number);
      read.Save(store);
      StoreText(later).Save(store);
    }
  }
}

TEST(StoreText, NeverUsesAFormThatLosesDateTimes) {
  RegionalSettings withoutYears = Germany();
  withoutYears.shortDate = "dd.MM.";
  MemoryRegistry registry;
  modRegistry store(registry);
  const DateTime moment = At("2010-12-11T13:05:09");
  const StoreText text = StoreText::Load(store, withoutYears);
  EXPECT_EQ(text.ToDateTime(text.FromDateTime(moment)), moment);

  StoreText(Germany()).Save(store);
  ASSERT_TRUE(store.SaveAppSetting("", "StoreFormat", "LongTime", "'damaged'"));
  const StoreText repaired = StoreText::Load(store, Germany());
  EXPECT_EQ(repaired.ToDateTime(repaired.FromDateTime(moment)), moment);
}

}  // namespace

}  // namespace wattlark
