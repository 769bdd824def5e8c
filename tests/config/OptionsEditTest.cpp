#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "config/OptionsEdit.h"
#include "config/OptionsLists.h"
#include "config/ServiceStates.h"
#include "support/CompactPath.h"
#include "support/RegionalForms.h"

namespace wattlark {
namespace {

using testing::ElementsAre;

TEST(OptionsEdit, EveryStateFillsTheElectricityFields) {
  const RegionalSettings us = RegionalSettings::UnitedStates();
  std::string mils;
  std::string co2;
  std::string filled;
  int index = 0;
  for (const auto& state : ServiceStates()) {
    EXPECT_TRUE(FillElectricity(index++, us, mils, co2));
    EXPECT_EQ(mils.front(), '$');
    filled += std::string(state.code) + ' ' + mils.substr(1) + ' ' + co2 + ", ";
  }
  EXPECT_EQ(filled,
            "AK 1.1060 0.1330, AL 1.2990 0.0800, AR 1.2800 0.0800, AZ 1.2190 0.0886, "
            "CA 0.7000 0.1251, CO 1.9860 0.0906, CT 0.7540 0.1364, DC 3.6140 0.0910, "
            "DE 1.8040 0.0901, FL 1.3480 0.0962, GA 1.3880 0.0864, HI 1.6550 0.2070, "
            "IA 1.9430 0.0927, ID 0.1440 0.0629, IL 1.1550 0.0834, IN 2.0980 0.0750, "
            "KS 1.8710 0.0790, KY 2.0510 0.0657, LA 1.2010 0.0887, MA 1.2260 0.1344, "
            "MD 1.2930 0.0846, ME 0.7720 0.1323, MI 1.4130 0.0840, MN 1.5880 0.0828, "
            "MO 1.8810 0.0708, MS 1.4090 0.0871, MT 1.5730 0.0810, NC 1.2180 0.0865, "
            "ND 2.3860 0.0699, NE 1.5030 0.0714, NH 0.7790 0.1351, NJ 0.7130 0.1174, "
            "NM 1.9920 0.0913, NV 1.5730 0.1020, NY 0.9070 0.1572, OH 1.7790 0.0851, "
            "OK 1.7260 0.0795, OR 0.4560 0.0725, PA 1.2160 0.0986, RI 1.0710 0.1304, "
            "SC 0.9150 0.0867, SD 1.2150 0.0777, TN 1.2660 0.0698, TX 1.4720 0.1093, "
            "UT 2.1210 0.0752, VA 1.2110 0.0816, VT 0.0070 0.1296, WA 0.3600 0.0654, "
            "WI 1.7130 0.0966, WV 1.9880 0.0621, WY 2.2780 0.0748, ");
  for (const int outside : {-1, 51}) {
    EXPECT_FALSE(FillElectricity(outside, us, mils, co2));
    EXPECT_EQ(mils, "$2.2780");
  }
}

TEST(OptionsEdit, ListsCarryTheirNumbers) {
  const auto entries = [](std::span<const ListEntry> list) {
    std::string found;
    for (const ListEntry& entry : list) {
      found += std::string(entry.text) + '=' + std::to_string(entry.number) + ' ';
    }
    return found;
  };
  const std::string upToAnHour = "10 minutes=600 15 minutes=900 30 minutes=1800 1 hour=3600 ";
  EXPECT_EQ(entries(LogIntervalEntries()), "1 minute=60 5 minutes=300 " + upToAnHour);
  EXPECT_EQ(entries(PowerMeterIntervalEntries()), upToAnHour);
  EXPECT_EQ(entries(TwitterIntervalEntries()),
            "1 hour=1 2 hours=2 3 hours=3 4 hours=4 6 hours=6 8 hours=8 12 hours=12 24 hours=24 ");
  EXPECT_EQ(entries(PortNumEntries()),
            "COM1:=1 COM2:=2 COM3:=3 COM4:=4 COM5:=5 COM6:=6 COM7:=7 COM8:=8 COM9:=9 COM10:=10 "
            "COM11:=11 ");
  const auto texts = [](std::span<const char* const> list) {
    return std::vector<std::string>(list.begin(), list.end());
  };
  EXPECT_THAT(texts(BaudRateEntries()),
              ElementsAre("256000", "128000", "115200", "57600", "56000", "38400", "28800", "19200",
                          "9600", "4800", "2400", "1200", "600", "300", "110"));
  EXPECT_THAT(texts(ParityEntries()), ElementsAre(" E", " M", " N", " O", " S"));
  EXPECT_THAT(texts(DataBitsEntries()), ElementsAre(" 4", " 5", " 6", " 7", " 8"));
  EXPECT_THAT(texts(StopBitsEntries()), ElementsAre(" 1", "1.5", " 2"));
}

TEST(OptionsEdit, ReadsMoneyWithFourDecimals) {
  const RegionalSettings us = RegionalSettings::UnitedStates();
  EXPECT_EQ(ReadMils(us, "0.123456"), 0.1235);
  EXPECT_EQ(ReadMils(us, "$1,234.5"), 1234.5);
  EXPECT_EQ(ReadMils(us, "-$0.00004"), 0);
  EXPECT_EQ(ReadMils(us, "900000000000000"), 9e14);
  EXPECT_EQ(ReadMils(Germany(), "0,10605 \u20AC"), 0.1061);
  for (const char* wrong : {"", "abc", "0.1 per kWh", "1000000000000000"}) {
    EXPECT_EQ(ReadMils(us, wrong), std::nullopt) << wrong;
  }
  EXPECT_EQ(ReadCO2(us, "0.123456"), 0.123456);
  EXPECT_EQ(ReadCO2(us, "lots"), std::nullopt);
}

TEST(OptionsEdit, ShowsALongPathShortened) {
  const auto path = [](std::size_t length) {
    return "/data/anna/" + std::string(length - 24, 'x') + "/wattlark.csv";
  };
  EXPECT_EQ(ShownCSVFilename(path(55)), path(55));
  EXPECT_EQ(ShownCSVFilename(path(56)), "/data/anna/.../wattlark.csv");
  EXPECT_EQ(ShownCSVFilename("C:\\Users\\" + std::string(60, 'x') + "\\a.csv"),
            "C:\\Users\\...\\a.csv");
  // Characters count, not bytes; a name that is too long by itself is cut.
  std::string wide;
  for (int i = 0; i < 55; ++i) wide += "\u00E4";
  EXPECT_EQ(ShownCSVFilename(wide), wide);
  EXPECT_EQ(ShownCSVFilename("/x/" + wide), std::string(".../") + wide.substr(0, 94) + "...");
  EXPECT_EQ(CountCharacters(ShownCSVFilename("/x/" + wide)), 54u);
}

}  // namespace
}  // namespace wattlark
