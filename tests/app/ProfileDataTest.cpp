#include "app/MonitorFixture.h"
#include "twins/Matchers.h"
#include "twins/Meters.h"

namespace wattlark {
namespace {

struct Stored : MonitorTest {
  std::vector<std::string> MeterKeys() const {
    std::vector<std::string> names;
    store.EnumSubKeys(Hive::CurrentUser, modRegistry::AppKeyPath("", "KillAWatts"), names);
    return names;
  }
  /// What a start reads from the store.
  ProfileData& Load() {
    profile = std::make_unique<ProfileData>(region);
    profile->Load(store, "/profile/wattlark.csv", At("2026-11-16T20:10:00"));
    return *profile;
  }
  std::vector<std::string> LoadedNames() {
    std::vector<std::string> names;
    for (const auto& meter : Load().Meters()) names.push_back(meter->Name());
    return names;
  }

  std::unique_ptr<ProfileData> profile;
};

TEST_F(Stored, MetersKeepTheirOrderAndRemovedAndRenamedOnesLeaveNoKey) {
  PutMeter("Washer", 9);
  PutMeter("Kitchen", 5);
  PutMeter("Attic", 1);
  ASSERT_TRUE(Load().SaveAll(store));
  EXPECT_THAT(LoadedNames(), ElementsAre("Washer", "Kitchen", "Attic"));
  profile->Meters().Remove(profile->Meters()[0]);
  profile->Meters()[1].SetName("Loft");
  profile->Meters().Add(NewMeter("New", 9));
  ASSERT_TRUE(profile->SaveAll(store));
  EXPECT_THAT(MeterKeys(), ElementsAre("Kitchen", "Loft", "New"));
  registry.failsWrites = true;
  EXPECT_FALSE(profile->SaveAll(store));
  EXPECT_FALSE(profile->SaveMeters(store));
}

TEST_F(Stored, ProgressIsSavedOverMetersThatAreStoredAsTheyAre) {
  PutMeter("Washer", 9);
  PutMeter("Cellar", 9);
  PutMeter("Attic", 1);
  Put("KillAWatts\\Attic", "UsageToDate", "lots");
  Put("KillAWatts\\Attic", "DemandRecentMinute", "230,230");
  EXPECT_FALSE(Load().HasStoredMeters(store)) << "what is left out comes last";
  ASSERT_TRUE(profile->SaveMeters(store));
  EXPECT_TRUE(profile->HasStoredMeters(store));
  EXPECT_NE(Get("KillAWatts\\Attic", "DemandRecentMinute"), "(none)");

  MeterStatistics& statistics = profile->Meters().FindName("Attic")->Statistics();
  statistics.SetUsage(ToDate, 77);
  profile->Total().Statistics().SetUsage(ToDate, 78);
  ASSERT_TRUE(profile->SaveProgress(store));
  EXPECT_EQ(Get("KillAWatts\\Attic", "UsageToDate"), "77");
  EXPECT_EQ(Get("TotalKillAWatt", "UsageToDate"), "78");
  EXPECT_NE(Get("KillAWatts\\Attic", "DemandRecentMinute"), "(none)") << "it sends no more";
  statistics.SetTimestamp(At("2026-11-16T20:10:00"));
  ASSERT_TRUE(profile->SaveProgress(store));
  EXPECT_EQ(Get("KillAWatts\\Attic", "DemandRecentMinute"), "(none)") << "new with every save";
  EXPECT_EQ(Get("Unreadable\\KillAWatts\\Attic", "UsageToDate"), "lots");

  profile->Meters().FindName("Washer")->SetName("washer");
  EXPECT_FALSE(profile->HasStoredMeters(store));
  ASSERT_TRUE(profile->SaveMeters(store));
  profile->Meters().Add(NewMeter("Cellar", 8));
  EXPECT_FALSE(profile->HasStoredMeters(store)) << "it takes the name of one that is left out";
  profile->RemoveSkipped("Cellar");
  EXPECT_TRUE(profile->HasStoredMeters(store));
  profile->Meters().Remove(*profile->Meters().FindName("Cellar"));
  EXPECT_FALSE(profile->HasStoredMeters(store));
}

TEST_F(Stored, KeepsMetersWhoseAddressIsTaken) {
  PutMeter("A", 5);
  PutMeter("B", 5);
  PutMeter("C", 6);
  Put("KillAWatts\\B", "UsageToDate", "123.5");
  Put("KillAWatts\\B", "Foreign", "kept too");
  for (int start = 0; start < 3; ++start) {
    EXPECT_THAT(LoadedNames(), ElementsAre("A", "C"));
    EXPECT_THAT(profile->SkippedMeters(), ElementsAre("B"));
    ASSERT_TRUE(profile->SaveAll(store));
    EXPECT_EQ(Get("KillAWatts\\B", "UsageToDate"), "123.5");
    EXPECT_EQ(Get("KillAWatts\\B", "Foreign"), "kept too");
  }
  profile->Meters().Add(NewMeter("b", 7));
  ASSERT_TRUE(profile->SaveAll(store));
  EXPECT_EQ(Get("KillAWatts\\B", "XBeeAddress"), "7") << "a new one of its name comes first";
  EXPECT_EQ(Get("Unreadable\\KillAWatts\\B", "UsageToDate"), "123.5") << "but it is not lost";
  EXPECT_THAT(LoadedNames(), ElementsAre("A", "C", "b"));
  PutMeter("b", 5);
  EXPECT_THAT(LoadedNames(), ElementsAre("A", "C"));
  EXPECT_FALSE(profile->RemoveSkipped("C"));
  EXPECT_TRUE(profile->RemoveSkipped("b"));
  ASSERT_TRUE(profile->SaveAll(store));
  EXPECT_THAT(MeterKeys(), ElementsAre("A", "C"));
}

TEST_F(Stored, MetersWithAStrangeStoredNameKeepAKeyOfTheirOwn) {
  PutMeter("A", 1);
  Put("KillAWatts\\A", "Name", "B");
  PutMeter("B", 2);
  PutMeter("C", 3);
  Put("KillAWatts\\C", "Name", "x\\y");
  PutMeter("D", 4);
  Put("KillAWatts\\D", "Name", "Dining room");
  ASSERT_TRUE(Load().SaveAll(store));
  EXPECT_THAT(LoadedNames(), ElementsAre("A", "B", "C", "Dining room"));
  EXPECT_EQ(profile->Meters().FindName("B")->XBeeAddress(), 2);
}

TEST_F(Stored, AsksForACSVHeaderAfterAChangeWhileNothingRan) {
  ProfileData::RequestCSVHeader(store);
  EXPECT_TRUE(Load().Settings().CSVFileChanged);
  profile->SaveAll(store);
  EXPECT_TRUE(Load().Settings().CSVFileChanged) << "no row was written yet";
  profile->Settings().CSVFileChanged = false;
  profile->SaveAll(store);
  EXPECT_FALSE(Load().Settings().CSVFileChanged);
}

TEST_F(Stored, LoadsOnPastEverythingThatIsWrongAndKeepsTextsItCannotRead) {
  Put("Settings", "PortNum", "three");
  Put("KillAWatts\\A", "XBeeAddress", "many");
  PutMeter("B", 6);
  Put("KillAWatts\\B", "UsageToDate", "lots");
  Put("TotalKillAWatt", "PeakToday", "more");
  EXPECT_THAT(LoadedNames(), ElementsAre("A", "B"));
  EXPECT_EQ(profile->Settings().CSVFilename, "/profile/wattlark.csv");
  EXPECT_EQ(profile->Meters()[1].Statistics().Usage(ToDate), 0);
  EXPECT_THAT(profile->Problems(), ElementsAre(HasSubstr("PortNum"), HasSubstr("many"),
                                               HasSubstr("lots"), HasSubstr("more")));
  ASSERT_TRUE(profile->SaveAll(store));
  Load();
  EXPECT_THAT(profile->Problems(), ElementsAre(HasSubstr("PortNum"))) << "the others once";
  ASSERT_TRUE(profile->SaveAll(store));
  EXPECT_EQ(Get("KillAWatts\\B", "UsageToDate"), "0");
  EXPECT_EQ(Get("Unreadable\\KillAWatts\\B", "UsageToDate"), "lots");
  EXPECT_EQ(Get("Unreadable\\TotalKillAWatt", "PeakToday"), "more");
}

TEST_F(Stored, SeedsATotalThatWasNeverStored) {
  using Row = std::tuple<const char*, int, const char*>;
  for (const auto& [name, address, usage] :
       {Row{"A", 1, "1.5"}, Row{"B", 2, "1E+308"}, Row{"C", 3, "2.25"}}) {
    PutMeter(name, address);
    for (const char* period :
         {"Yesterday", "Today", "ThisWeek", "ThisMonth", "ThisYear", "ToDate", "SinceReset"}) {
      Put(std::string("KillAWatts\\") + name, std::string("Usage") + period, usage);
    }
  }
  const clsKillAWatt& total = Load().Total();
  EXPECT_EQ(total.Timestamp(), At("2026-11-16T20:10:00"));
  for (const int period : {SinceReset, Today, ToDate, Yesterday}) {
    EXPECT_EQ(total.Statistics().Usage(period), 3.75) << period;
  }
  for (const int period : {ThisWeek, ThisMonth, ThisYear}) {
    EXPECT_EQ(total.Statistics().Usage(period), 0) << period;
  }
  ASSERT_TRUE(profile->SaveAll(store));
  profile->Meters().Remove(profile->Meters()[0]);
  ASSERT_TRUE(profile->SaveAll(store));
  EXPECT_EQ(Load().Total().Statistics().Usage(ToDate), 3.75) << "stored now, not seeded again";
}

TEST(TotalKillAWatt, AddsLoadsLessGeneratorsAndAveragesTheRest) {
  MeterCollection meters;
  clsKillAWatt total;
  const auto add = [&meters](std::int16_t address, double volts, double amps, double watts,
                             const char* time = "2026-11-16T20:10:00") {
    AddMeter(meters, "m", address).AddReading(volts, amps, watts, At(time), 500);
  };
  add(1, 120, 2, 500);
  add(2, 118, 1, 200);
  meters[1].SetKillAWattType(GeneratorMeter);
  add(3, 100, 9, 999, "2026-11-16T20:09:56");  // silent for five seconds
  add(4, NoValue, 3, 0);
  add(5, 116, NoValue, 0);
  // Loaded with a fresh time stamp, but without a reading yet.
  AddMeter(meters, "loaded", 6).Statistics().SetTimestamp(At("2026-11-16T20:10:00"));
  UpdateTotalKillAWatt(total, meters, At("2026-11-16T20:10:01"), 1000);
  EXPECT_EQ(total.Watts(), 300);
  EXPECT_EQ(total.Volts(), 118);
  EXPECT_EQ(total.Amps(), 2);
  UpdateTotalKillAWatt(total, meters, At("2026-11-16T20:10:02"), 2000);
  EXPECT_NEAR(total.Statistics().Usage(ToDate), 300 / 3600.0, 1e-12);
  meters[0].AddReading(120, 0, 50, At("2026-11-16T20:10:03"), 0);
  UpdateTotalKillAWatt(total, meters, At("2026-11-16T20:10:03"), 3000);
  EXPECT_EQ(total.Watts(), -150);
  UpdateTotalKillAWatt(total, meters, At("2026-11-16T20:10:08"), 8000);
  EXPECT_EQ(total.Watts(), 0) << "all of them are silent";
  EXPECT_EQ(total.Volts(), NoValue);
  EXPECT_EQ(total.Amps(), NoValue);
}

}  // namespace
}  // namespace wattlark
