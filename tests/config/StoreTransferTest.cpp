#include <gtest/gtest.h>

#include <sstream>

#include "config/StoreText.h"
#include "config/StoreTransfer.h"
#include "config/modRegistry.h"
#include "twins/MemoryRegistry.h"

namespace wattlark {
namespace {

constexpr Hive kUser = Hive::CurrentUser;
const std::string kApplication = "[HKEY_CURRENT_USER\\Software\\Fennick Labs\\Wattlark";
const std::string kOlder = "[HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\Wattlark";
const std::string kGermanForm =
    kApplication + "\\StoreFormat]\n\"ShortDate\"=\"dd.MM.yyyy\"\n\"LongTime\"=\"HH:mm:ss\"\n";

class StoreTransferTest : public testing::Test {
 protected:
  StoreTransferTest() {
    Save("Settings", "PortNum", "4");
    Save("Settings", "BaudRate", "19200");
  }
  void Save(const std::string& section, const std::string& name, const std::string& text) {
    ASSERT_TRUE(values_.SaveAppSetting("", section, name, text));
  }
  std::string Get(const std::string& section, const std::string& name) const {
    return values_.GetAppSetting("", section, name, "(none)");
  }
  /// Reads and applies a text whose header is left out here.
  std::string Import(const std::string& text, bool replaces = false) {
    import_ = {};
    std::istringstream input("Windows Registry Editor Version 5.00\n" + text);
    const std::string problem = import_.Read(input, "FILE");
    return problem.empty() ? import_.Apply(store_, regional_, replaces) : problem;
  }

  MemoryRegistry store_;
  modRegistry values_{store_};
  RegionalSettings regional_ = RegionalSettings::UnitedStates();
  StoreImport import_;
};

TEST_F(StoreTransferTest, MergesAndLeavesOtherProgramsOut) {
  EXPECT_EQ(Import("[HKEY_CURRENT_USER\\Software\\Other]\n\"x\"=hex(b):00\n" + kApplication +
                   "\\settings]\n\"PORTNUM\"=\"5\"\n\"Parity\"=\"E\"\n" +
                   "[HKEY_LOCAL_MACHINE\\Software\\Fennick Labs\\Wattlark]\n@=\"x\"\n" +
                   "[HKEY_CURRENT_USER\\Software\\Fennick Labs\\Wattlark 2]\n@=\"x\"\n"),
            "");
  EXPECT_EQ(Get("Settings", "PortNum"), "5");
  EXPECT_EQ(Get("Settings", "Parity"), "E");
  EXPECT_EQ(Get("Settings", "BaudRate"), "19200");
  EXPECT_EQ(import_.OtherKeys(), 3u);
  EXPECT_EQ(import_.Values(), 2u);
  EXPECT_FALSE(store_.KeyExists(kUser, "Software\\Other"));
  EXPECT_FALSE(store_.KeyExists(kUser, "Software\\Fennick Labs\\Wattlark 2"));
  EXPECT_TRUE(store_.SubKeys(Hive::LocalMachine, "").empty());

  EXPECT_EQ(Import(kApplication + "\\Settings]\n\"PortNum\"=\"6\"\n", true), "");
  EXPECT_EQ(Get("Settings", "PortNum"), "6");
  EXPECT_EQ(Get("Settings", "BaudRate"), "(none)") << "replaced where that is wanted";
  EXPECT_EQ(Import(kApplication + "]\n\n\"x\"=hex(b):00\n\"y\"="),
            "FILE:4: values of the type hex(b) cannot be stored");
  store_.failsWrites = true;
  EXPECT_NE(Import(kApplication + "\\Settings]\n\"PortNum\"=\"7\"\n"), "");
}

TEST_F(StoreTransferTest, DeletesKeysWithAllBelowAndValues) {
  Save("KillAWatts\\Kitchen\\A\\B\\C\\D", "x", "y");
  EXPECT_EQ(Import("[-" + kApplication.substr(1) + "\\KillAWatts]\n[-" + kApplication.substr(1) +
                   "\\Never]\n" + kApplication + "\\Settings]\n\"PortNum\"=-\n\"Never\"=-\n"),
            "");
  EXPECT_FALSE(values_.AppSectionExists("", "KillAWatts"));
  EXPECT_EQ(Get("Settings", "PortNum"), "(none)");
  EXPECT_EQ(Get("Settings", "BaudRate"), "19200");
}

TEST_F(StoreTransferTest, OlderLocationCountsOnlyWithoutTheKeyOfToday) {
  const std::string older = kOlder + "\\Settings]\n\"PortNum\"=\"7\"\n" + kOlder +
                            "\\KillAWatts\\Kitchen]\n\"XBeeAddress\"=\"5\"\n";
  EXPECT_EQ(Import(older + kApplication + "\\Settings]\n\"Parity\"=\"E\"\n"), "");
  EXPECT_FALSE(import_.IsFromOlderLocation());
  EXPECT_EQ(Get("Settings", "PortNum"), "4");
  EXPECT_EQ(Import("[-" + kOlder.substr(1) + "]\n" + older), "");
  EXPECT_TRUE(import_.IsFromOlderLocation());
  EXPECT_EQ(Get("Settings", "PortNum"), "7");
  EXPECT_EQ(Get("KillAWatts\\Kitchen", "XBeeAddress"), "5");
  EXPECT_EQ(Get("Settings", "BaudRate"), "19200");
}

TEST_F(StoreTransferTest, DatesOfUnknownFormMustBeReadable) {
  const std::string meter =
      kApplication + "\\KillAWatts\\Kitchen]\n\"PeakTimeToday\"=\"23.11.2026 10:00:00\"\n";
  EXPECT_NE(Import(meter).find("\"23.11.2026 10:00:00\" of KillAWatts\\Kitchen cannot be read"),
            std::string::npos);
  EXPECT_EQ(Import(kGermanForm + meter, true), "");
  regional_.shortDate = "dd.MM.yyyy";
  regional_.longTime = "HH:mm:ss";
  EXPECT_EQ(Import(meter, true), "");
  // From now on the store keeps to that form.
  EXPECT_EQ(Get("StoreFormat", "ShortDate"), "dd.MM.yyyy");
}

TEST_F(StoreTransferTest, AnotherFormMustNotChangeTheDatesOfTheStore) {
  StoreText(regional_).Save(values_);
  Save("KillAWatts\\Office", "Timestamp", "11/3/2026 10:00:00 AM");
  const std::string form = kApplication + "\\StoreFormat]\n\"ShortDate\"=\"d/M/yyyy\"\n";
  EXPECT_NE(Import(form).find("of KillAWatts\\Office would then be misread"), std::string::npos);
  // Dates that the text brings follow its form.
  EXPECT_EQ(Import(kGermanForm + kApplication +
                   "\\KillAWatts\\Office]\n\"Timestamp\"=\"23.11.2026 10:00:00\"\n"),
            "");
}

TEST_F(StoreTransferTest, ExportOfTheOlderLocationIsThatOfTheNextStart) {
  MemoryRegistry older;
  std::ostringstream output;
  EXPECT_FALSE(WriteStoreText(older, regional_, output)) << "nothing to export";
  EXPECT_EQ(output.str(), "");
  const RegistryValue port{RegistryType::String, {'7', 0}};
  ASSERT_TRUE(older.Write(kUser, "Software\\VB and VBA Program Settings\\Wattlark\\Settings",
                          "PortNum", port));
  ASSERT_TRUE(WriteStoreText(older, regional_, output));
  std::istringstream input(output.str());
  EXPECT_EQ(import_.Read(input, "FILE"), "");
  EXPECT_EQ(import_.Apply(store_, regional_, false), "");
  EXPECT_EQ(Get("Settings", "PortNum"), "7");
}

}  // namespace
}  // namespace wattlark
