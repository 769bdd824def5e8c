#include <limits>

#include "acquisition/clsKillAWatt.h"
#include "config/StoreText.h"
#include "config/modRegistry.h"
#include "support/RegionalForms.h"
#include "twins/HandClock.h"
#include "twins/Matchers.h"
#include "twins/MemoryRegistry.h"

namespace wattlark {
namespace {

const std::string kSection = "KillAWatts\\Kitchen";

struct Store {
  explicit Store(const RegionalSettings& region = RegionalSettings::UnitedStates())
      : text(region) {}

  void Put(const std::string& name, const std::string& value) {
    settings.SaveAppSetting("", kSection, name, value);
  }
  std::string Get(const std::string& name) const {
    return settings.GetAppSetting("", kSection, name, "(none)");
  }
  bool Save(const clsKillAWatt& meter) { return meter.SaveSettings(settings, text, kSection); }
  bool Load(clsKillAWatt& meter) {
    unreadable.clear();
    return meter.LoadSettings(settings, text, kSection, &unreadable);
  }
  std::vector<std::pair<std::string, std::string>> Texts() {
    std::vector<std::pair<std::string, std::string>> texts;
    for (const auto& value :
         registry.Values(Hive::CurrentUser, modRegistry::AppKeyPath("", kSection))) {
      EXPECT_EQ(value.value.type, RegistryType::String) << value.name;
      texts.emplace_back(value.name, Get(value.name));
    }
    return texts;
  }

  MemoryRegistry registry;
  modRegistry settings{registry};
  StoreText text;
  std::vector<UnreadableValue> unreadable;
};

// Fills a meter with values that are hard to write.
void Fill(clsKillAWatt& meter) {
  meter.SetName("Küche, \"oben\"");
  meter.SetXBeeAddress(0x7FFF);
  meter.SetKillAWattType(GeneratorMeter);
  meter.SetNominalVoltage(230.5);
  meter.SetCurrentOffset(501);
  meter.SetCurrentScaler(1 / 15.0);
  meter.SetVoltageScaler(1.1525000000000003);
  meter.Alarm().SetAlarmUpperLimit(1234.5);
  meter.Alarm().SetAlarmLowerLimit(-0.1);
  meter.Alarm().SetAlarmInterval(900);
  MeterStatistics& statistics = meter.Statistics();
  statistics.SetTimestamp(At("2026-11-16T20:10:00.250"));
  for (int i = 0; i < IntervalCount; ++i) {
    std::vector<double> series(60, NoValue);
    series[0] = std::numeric_limits<double>::denorm_min();
    series[1] = 0.1 / (i + 3);
    series[2] = -1.7976931348623157e308;
    statistics.SetDemandRecent(i, series);
    series[3] = 12345678.9;
    statistics.SetUsageRecent(i, series);
  }
  for (int i = 0; i < PeriodCount; ++i) {
    statistics.SetUsage(i, i == Yesterday ? NoValue : 1e-7 + i / 3.0);
    statistics.SetPeak(i, 1000.0 / (i + 7));
    if (i != Today) statistics.SetPeakTime(i, At("2028-02-29T00:00:00.007").PlusDays(i));
  }
}

TEST(MeterPersistence, KeepsEveryValueExactly) {
  for (const RegionalSettings& region : {RegionalSettings::UnitedStates(), Germany()}) {
    Store store(region);
    clsKillAWatt saved;
    Fill(saved);
    ASSERT_TRUE(store.Save(saved));
    clsKillAWatt loaded;
    ASSERT_TRUE(store.Load(loaded));
    EXPECT_TRUE(store.unreadable.empty());
    Store again(region);
    again.Save(loaded);
    EXPECT_EQ(again.Texts(), store.Texts());
    EXPECT_EQ(loaded.VoltageScaler(), 1.1525000000000003);
    EXPECT_EQ(loaded.Statistics().UsageRecent(Year)[1], 0.1 / 8);
    EXPECT_EQ(loaded.Alarm().IntervalSeconds(), 900) << "the first notice is due at once";
    EXPECT_TRUE(loaded.Statistics().PeakTime(Today).IsNever());
    EXPECT_FALSE(loaded.HasReading());
  }
}

TEST(MeterPersistence, WritesANewMetersDefaultsUnderTheAgreedNamesInOrder) {
  Store store;
  clsKillAWatt meter;
  EXPECT_FALSE(store.Load(meter)) << "there is nothing yet";
  store.Save(meter);
  std::string written;
  for (const auto& [name, text] : store.Texts()) {
    const bool isSetting = written.find("Timestamp") == std::string::npos;
    written += isSetting ? name + '=' + text + '|' : name + ' ';
  }
  EXPECT_EQ(written,
            "Name=New Appliance|XBeeAddress=0|AlarmActive=False|AlarmUpperLimit=500|"
            "AlarmLowerLimit=0|AlarmDuration=60|AlarmInterval=600|NominalVoltage=120|"
            "NominalFrequency=60|CurrentOffset=498|CurrentScaler=0.06451612903225806|"
            "VoltageScaler=0.6|KillAWattType=0|Timestamp=(none)|"
            "DemandRecentMinute DemandRecentHour DemandRecentDay "
            "DemandRecentWeek DemandRecentMonth DemandRecentYear UsageRecentMinute "
            "UsageRecentHour UsageRecentDay UsageRecentWeek UsageRecentMonth UsageRecentYear "
            "UsageYesterday UsageToday UsageThisWeek UsageThisMonth UsageThisYear UsageToDate "
            "UsageSinceReset PeakYesterday PeakToday PeakThisWeek PeakThisMonth PeakThisYear "
            "PeakToDate PeakSinceReset PeakTimeYesterday PeakTimeToday PeakTimeThisWeek "
            "PeakTimeThisMonth PeakTimeThisYear PeakTimeToDate PeakTimeSinceReset ");
  // Numbers and moments are regional, but series the same in every region.
  Store german(Germany());
  Fill(meter);
  german.Save(meter);
  EXPECT_EQ(german.Get("NominalVoltage"), "230,5");
  EXPECT_EQ(german.Get("UsageYesterday"), "1E+308");
  EXPECT_THAT(german.Get("Timestamp"), StartsWith("16.11.2026 20:10:00"));
  EXPECT_THAT(german.Get("DemandRecentWeek"), StartsWith("5E-324,0.016666"));
  german.registry.failsWrites = true;
  EXPECT_FALSE(german.Save(meter));
}

TEST(MeterPersistence, KeepsFieldsWhoseValuesAreMissingOrEmpty) {
  Store store;
  store.Put("XBeeAddress", "7");
  store.Put("Name", "");
  store.Put("NominalVoltage", "");
  store.Put("DemandRecentMinute", "");
  store.Put("UsageRecentWeek", "1,x,3");
  clsKillAWatt meter;
  meter.SetName("Kitchen");
  meter.Statistics().SetDemandRecent(Minute, std::vector<double>{4});
  ASSERT_TRUE(store.Load(meter));
  EXPECT_EQ(meter.Name(), "Kitchen");
  EXPECT_EQ(meter.XBeeAddress(), 7);
  EXPECT_EQ(meter.NominalVoltage(), 120);
  EXPECT_EQ(meter.Statistics().DemandRecent(Minute)[0], 4);
  EXPECT_THAT(meter.Statistics().UsageRecent(Week),
              ElementsAre(1, 0, 3, NoValue, NoValue, NoValue, NoValue));
  EXPECT_TRUE(store.unreadable.empty());
}

TEST(MeterPersistence, ClampsStoredCalibration) {
  // A missing scaler is bounded by the voltage that was loaded as well.
  using Row = std::pair<const char*, double>;
  for (const auto& [scaler, loaded] : {Row{"1.2", 1.2}, Row{"", 0.75 * 1.2}}) {
    Store store;
    store.Put("NominalVoltage", "240");
    store.Put("VoltageScaler", scaler);
    store.Put("CurrentOffset", "5000");
    store.Put("CurrentScaler", "1");
    clsKillAWatt meter;
    ASSERT_TRUE(store.Load(meter));
    EXPECT_EQ(meter.VoltageScaler(), loaded);
    EXPECT_EQ(meter.CurrentOffset(), 1023);
    EXPECT_EQ(meter.CurrentScaler(), 1.25 / 15.5);
  }
}

TEST(MeterPersistence, NotesWhatItCannotRead) {
  using Row = std::pair<const char*, const char*>;
  for (const auto& [name, stored] :
       {Row{"XBeeAddress", "32768"}, Row{"AlarmActive", "yes"}, Row{"AlarmUpperLimit", "x"},
        Row{"AlarmLowerLimit", "1,000.5"}, Row{"AlarmDuration", "99999999999"},
        Row{"AlarmInterval", "1e3"}, Row{"NominalVoltage", "nan"}, Row{"NominalFrequency", "0x32"},
        Row{"CurrentOffset", "-40000"}, Row{"CurrentScaler", "inf"}, Row{"VoltageScaler", "1E+999"},
        Row{"KillAWattType", "Load"}, Row{"Timestamp", "yesterday"}, Row{"UsageToDate", "--1"},
        Row{"PeakToday", "1 2"}, Row{"PeakTimeToday", "11/16/2026 25:00:00 PM"}}) {
    Store store;
    store.Put("CurrentOffset", "600");
    store.Put(name, stored);
    clsKillAWatt meter;
    ASSERT_TRUE(store.Load(meter)) << name;
    ASSERT_EQ(store.unreadable.size(), 1U) << name << ' ' << stored;
    EXPECT_EQ(store.unreadable[0].name, name);
    EXPECT_EQ(store.unreadable[0].text, stored);
    // The field has its default: what is saved now is what a new meter saves, but for the offset.
    meter.SetCurrentOffset(498);
    Store other;
    other.Save(meter);
    Store fresh;
    fresh.Save(clsKillAWatt());
    EXPECT_EQ(other.Get(name), fresh.Get(name)) << stored;
  }
}

}  // namespace
}  // namespace wattlark
