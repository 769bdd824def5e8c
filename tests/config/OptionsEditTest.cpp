#include <gmock/gmock.h>

#include <array>
#include <utility>
#include <vector>

#include "config/OptionsEdit.h"
#include "config/OptionsLists.h"
#include "config/ServiceStates.h"
#include "support/CompactPath.h"
#include "support/RegionalForms.h"

namespace wattlark {
namespace {

using testing::ElementsAre;
using testing::Pair;

struct State {
  const char* code;
  const char* mils;
  const char* co2;
};
constexpr std::array kStates = {State{"AK", "$1.1060", "0.1330"}, State{"AL", "$1.2990", "0.0800"},
                                State{"AR", "$1.2800", "0.0800"}, State{"AZ", "$1.2190", "0.0886"},
                                State{"CA", "$0.7000", "0.1251"}, State{"CO", "$1.9860", "0.0906"},
                                State{"CT", "$0.7540", "0.1364"}, State{"DC", "$3.6140", "0.0910"},
                                State{"DE", "$1.8040", "0.0901"}, State{"FL", "$1.3480", "0.0962"},
                                State{"GA", "$1.3880", "0.0864"}, State{"HI", "$1.6550", "0.2070"},
                                State{"IA", "$1.9430", "0.0927"}, State{"ID", "$0.1440", "0.0629"},
                                State{"IL", "$1.1550", "0.0834"}, State{"IN", "$2.0980", "0.0750"},
                                State{"KS", "$1.8710", "0.0790"}, State{"KY", "$2.0510", "0.0657"},
                                State{"LA", "$1.2010", "0.0887"}, State{"MA", "$1.2260", "0.1344"},
                                State{"MD", "$1.2930", "0.0846"}, State{"ME", "$0.7720", "0.1323"},
                                State{"MI", "$1.4130", "0.0840"}, State{"MN", "$1.5880", "0.0828"},
                                State{"MO", "$1.8810", "0.0708"}, State{"MS", "$1.4090", "0.0871"},
                                State{"MT", "$1.5730", "0.0810"}, State{"NC", "$1.2180", "0.0865"},
                                State{"ND", "$2.3860", "0.0699"}, State{"NE", "$1.5030", "0.0714"},
                                State{"NH", "$0.7790", "0.1351"}, State{"NJ", "$0.7130", "0.1174"},
                                State{"NM", "$1.9920", "0.0913"}, State{"NV", "$1.5730", "0.1020"},
                                State{"NY", "$0.9070", "0.1572"}, State{"OH", "$1.7790", "0.0851"},
                                State{"OK", "$1.7260", "0.0795"}, State{"OR", "$0.4560", "0.0725"},
                                State{"PA", "$1.2160", "0.0986"}, State{"RI", "$1.0710", "0.1304"},
                                State{"SC", "$0.9150", "0.0867"}, State{"SD", "$1.2150", "0.0777"},
                                State{"TN", "$1.2660", "0.0698"}, State{"TX", "$1.4720", "0.1093"},
                                State{"UT", "$2.1210", "0.0752"}, State{"VA", "$1.2110", "0.0816"},
                                State{"VT", "$0.0070", "0.1296"}, State{"WA", "$0.3600", "0.0654"},
                                State{"WI", "$1.7130", "0.0966"}, State{"WV", "$1.9880", "0.0621"},
                                State{"WY", "$2.2780", "0.0748"}};

TEST(OptionsEdit, EveryStateFillsTheElectricityFields) {
  ASSERT_EQ(ServiceStates().size(), 51u);
  ASSERT_EQ(kStates.size(), 51u);
  std::string mils;
  std::string co2;
  for (std::size_t i = 0; i < kStates.size(); ++i) {
    EXPECT_STREQ(ServiceStates()[i].code, kStates[i].code);
    EXPECT_TRUE(FillElectricity(static_cast<int>(i), RegionalSettings::UnitedStates(), mils, co2));
    EXPECT_EQ(mils, kStates[i].mils) << kStates[i].code;
    EXPECT_EQ(co2, kStates[i].co2) << kStates[i].code;
  }
  for (const int index : {-1, 51}) {
    EXPECT_FALSE(FillElectricity(index, RegionalSettings::UnitedStates(), mils, co2));
    EXPECT_EQ(mils, "$2.2780");
  }
}

TEST(OptionsEdit, ListsCarryTheirNumbers) {
  const auto entries = [](std::span<const ListEntry> list) {
    std::vector<std::pair<std::string, int>> found;
    for (const ListEntry& entry : list) found.emplace_back(entry.text, entry.number);
    return found;
  };
  EXPECT_THAT(entries(LogIntervalEntries()),
              ElementsAre(Pair("1 minute", 60), Pair("5 minutes", 300), Pair("10 minutes", 600),
                          Pair("15 minutes", 900), Pair("30 minutes", 1800), Pair("1 hour", 3600)));
  EXPECT_THAT(entries(PowerMeterIntervalEntries()),
              ElementsAre(Pair("10 minutes", 600), Pair("15 minutes", 900),
                          Pair("30 minutes", 1800), Pair("1 hour", 3600)));
  EXPECT_THAT(entries(TwitterIntervalEntries()),
              ElementsAre(Pair("1 hour", 1), Pair("2 hours", 2), Pair("3 hours", 3),
                          Pair("4 hours", 4), Pair("6 hours", 6), Pair("8 hours", 8),
                          Pair("12 hours", 12), Pair("24 hours", 24)));
  const auto ports = entries(PortNumEntries());
  ASSERT_EQ(ports.size(), 11u);
  for (int i = 0; i < 11; ++i) {
    EXPECT_THAT(ports[static_cast<std::size_t>(i)],
                Pair("COM" + std::to_string(i + 1) + ":", i + 1));
  }
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
  EXPECT_EQ(ShownCSVFilename("/x/" + wide),
            "..."
            "/" +
                wide.substr(0, 94) + "...");
  EXPECT_EQ(CountCharacters(ShownCSVFilename("/x/" + wide)), 54u);
}

}  // namespace
}  // namespace wattlark
