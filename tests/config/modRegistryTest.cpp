#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "config/StoreText.h"
#include "config/modRegistry.h"
#include "support/NoValue.h"
#include "support/RegionalForms.h"
#include "support/RegistryValues.h"
#include "twins/HandClock.h"
#include "twins/MemoryRegistry.h"

namespace wattlark {
namespace {

using Names = std::vector<std::string>;

constexpr Hive kUser = Hive::CurrentUser;

RegistryValue Bytes(RegistryType type, const std::string& bytes) {
  return {type, {bytes.begin(), bytes.end()}};
}

class ModRegistryTest : public testing::Test {
 protected:
  const std::string settings_ = "Software\\Fennick Labs\\Wattlark\\Settings";
  MemoryRegistry registry_;
  modRegistry store_{registry_};
};

TEST_F(ModRegistryTest, SavesTextWithItsNulUnderTheApplicationAndAStarForNoName) {
  EXPECT_EQ(modRegistry::AppKeyPath("Other", ""), "Software\\Fennick Labs\\Other");
  ASSERT_TRUE(store_.SaveAppSetting("", "Settings", "PortNum", "5"));
  EXPECT_EQ(registry_.Read(kUser, settings_, "PortNum"), TextValue(std::string("5\0", 2)));
  EXPECT_EQ(store_.GetAppSetting("", "settings", "portnum", "3"), "5");
  RegistryValue value;
  ASSERT_TRUE(store_.QueryValue(kUser, settings_, "PortNum", value));
  EXPECT_EQ(value, TextValue("5"));
  ASSERT_TRUE(store_.SetStringValue(Hive::LocalMachine, "Run", "Wattlark", "x"));
  EXPECT_EQ(registry_.Read(Hive::LocalMachine, "Run", "Wattlark"), TextValue("x"));
  ASSERT_TRUE(store_.SaveAppSetting("", "S", "*", "unnamed"));
  EXPECT_EQ(store_.GetAppSetting("", "S", "*", ""), "unnamed");
  EXPECT_EQ(store_.GetAppSetting("", "S", "", ""), "unnamed");
  EXPECT_TRUE(store_.DeleteAppSetting("", "S", "*"));
  EXPECT_FALSE(store_.DeleteAppSetting("", "S", "*"));
  EXPECT_TRUE(store_.AppSectionExists("", "S"));
}

TEST_F(ModRegistryTest, GetAppSettingOfEveryStoredForm) {
  using Row = std::pair<RegistryValue, const char*>;
  for (const auto& [stored, expected] :
       {Row{TextValue(std::string("text\0", 5)), "text"},
        Row{TextValue(std::string("before\0after\0", 13)), "before"},
        Row{Bytes(RegistryType::ExpandString, std::string("%HOME%\0", 7)), "%HOME%"},
        Row{TextValue(std::string("\0hidden", 7)), "default"},
        Row{Bytes(RegistryType::Binary, "bytes"), "default"}}) {
    registry_.Write(kUser, settings_, "v", stored);
    EXPECT_EQ(store_.GetAppSetting("", "Settings", "v", "default"), expected);
  }
  EXPECT_EQ(store_.GetAppSetting("", "Missing", "v", "default"), "default");
}

TEST_F(ModRegistryTest, DeleteAppSectionReachesThreeLevelsDown) {
  const std::string top = modRegistry::AppKeyPath("", "KillAWatts");
  for (const char* path : {"", "\\Plain", "\\A\\B\\C", "\\A\\B\\C2", "\\A\\B2"}) {
    ASSERT_TRUE(registry_.Write(kUser, top + path, "v", TextValue("1")));
  }
  ASSERT_TRUE(store_.SaveAppSetting("", "Settings", "v", "1"));
  EXPECT_TRUE(store_.DeleteAppSection("", "KillAWatts"));
  EXPECT_FALSE(store_.AppSectionExists("", "KillAWatts"));
  EXPECT_TRUE(store_.AppSectionExists("", "Settings"));
  EXPECT_FALSE(store_.DeleteAppSection("", "KillAWatts"));

  ASSERT_TRUE(registry_.CreateKey(kUser, top + "\\A\\B\\C\\D"));
  ASSERT_TRUE(registry_.CreateKey(kUser, top + "\\Z"));
  EXPECT_FALSE(store_.DeleteAppSection("", "KillAWatts"));
  EXPECT_TRUE(store_.KeyExists(kUser, top + "\\A\\B\\C\\D"));
  EXPECT_FALSE(store_.KeyExists(kUser, top + "\\Z"));
}

TEST_F(ModRegistryTest, MigrationCopiesTheStringsOfEveryOldSectionOnce) {
  const std::string old = "Software\\VB and VBA Program Settings\\Wattlark";
  const auto portNum = [&] { return store_.GetAppSetting("", "Settings", "PortNum", "3"); };
  store_.MigrateLegacySettings("", false);
  store_.SetStringValue(kUser, old, "PortNum", "5");
  store_.MigrateLegacySettings("", false);
  EXPECT_FALSE(store_.AppSectionExists("", "")) << "there are no old sections";
  store_.SetStringValue(kUser, old + "\\Settings", "PortNum", "5");
  store_.SetStringValue(kUser, old + "\\Settings", "BaudRate", "19200");
  registry_.Write(kUser, old + "\\Settings", "Binary", Bytes(RegistryType::Binary, "x"));
  store_.SetStringValue(kUser, old + "\\Settings\\Deeper", "v", "1");
  store_.SetStringValue(kUser, old + "\\WindowSettings", "frmMain", "1,2,3,4,0");
  store_.MigrateLegacySettings("", false);
  EXPECT_EQ(portNum(), "5");
  EXPECT_EQ(store_.GetAppSetting("", "WindowSettings", "frmMain", ""), "1,2,3,4,0");
  Names names;
  Names texts;
  store_.EnumStringValues(kUser, settings_, names, texts);
  EXPECT_EQ(names, (Names{"PortNum", "BaudRate"}));
  EXPECT_FALSE(store_.AppSectionExists("", "Settings\\Deeper"));
  EXPECT_TRUE(store_.KeyExists(kUser, old + "\\Settings"));
  store_.SetStringValue(kUser, old + "\\Settings", "PortNum", "7");
  store_.MigrateLegacySettings("Wattlark", false);
  EXPECT_EQ(portNum(), "5");
  store_.MigrateLegacySettings("Wattlark", true);
  EXPECT_EQ(portNum(), "7");
}

RegionalSettings WithMonthNames() {
  RegionalSettings regional = France();
  regional.shortDate = "d MMM yyyy";
  regional.longTime = "h.mm.ss AP";
  return regional;
}

TEST(StoreText, NumbersInTheFormOfTheStore) {
  const StoreText american(RegionalSettings::UnitedStates());
  const StoreText german(Germany());
  EXPECT_EQ(american.FromDouble(0.1251), "0.1251");
  EXPECT_EQ(german.FromDouble(0.1251), "0,1251");
  EXPECT_EQ(german.FromDouble(-1234567.5), "-1234567,5");
  EXPECT_EQ(german.FromDouble(NoValue), "1E+308");
  EXPECT_EQ(german.ToDouble(american.FromDouble(0.1251)), 0.1251) << "the separator alone decides";
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
  EXPECT_EQ(american.ToDateTime("8/27/2010 1:05:09 PM.070"), At("2010-08-27T13:05:09.070"));
  EXPECT_EQ(american.ToDateTime(""), DateTime());
  EXPECT_EQ(american.ToDateTime("0"), DateTime());
  EXPECT_EQ(american.ToDateTime("12:00:00 AM"), DateTime());
  EXPECT_EQ(american.ToDateTime("8/27/2010"), At("2010-08-27T00:00:00"));
  for (const char* bad : {"x", "13/27/2010 1:05:09 PM", "2/29/2011 1:05:09 PM", "8/27/2010 1:05",
                          "8/27/2010 1:05:09 PM.07x", ".070", "40417.5"}) {
    EXPECT_EQ(american.ToDateTime(bad), std::nullopt) << bad;
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
