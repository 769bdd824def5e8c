#include "app/CaptureWriter.h"
#include "cli/CommandTest.h"
#include "twins/Frames.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

// Voltage 229 to 795 counts, so its midpoint is 512, the swing 566 and a sample (795 - 512) * 0.6 =
// 169.8 V; current 498 counts is 0 A, 653 counts 155 / 15.5 = 10 A. The first and last of the four
// samples take no part: amps = 10 / 4, watts = 10 * 169.8 / 4.
constexpr double kVolts = 566 * 0.6 / 2.82842712474619;
constexpr double kAmps = 2.5;
constexpr double kWatts = 424.5;
constexpr double kEnergy = kWatts * 2 / 3600;  // of two seconds

Bytes KitchenFrame(std::uint16_t address = 5) {
  return MeterFrame(address, {229, 795, 229, 795}, {498, 653, 498, 498});
}

struct ReplayCommand : CommandTest {
  void Rx(const char* time, std::uint32_t ticks, const Bytes& bytes) const {
    CaptureWriter(capture_).WriteRead(At(time), ticks, bytes);
  }
  void Tick(const char* time, std::uint32_t ticks) const {
    CaptureWriter(capture_).WriteTick(At(time), ticks);
  }
  /// Two readings of the kitchen, two seconds apart, then two ticks.
  void WriteTwoReadings() const {
    Rx("2026-11-16T20:10:00.250", 1000, KitchenFrame());
    Rx("2026-11-16T20:10:02.250", 3000, KitchenFrame());
    Tick("2026-11-16T20:10:03", 3750);
    Tick("2026-11-16T20:10:04", 4750);
  }
  CommandResult Replay(std::vector<std::string> options = {}) const {
    options.insert(options.begin(), "replay");
    options.push_back(capture_);
    return RunHere(options);
  }
  nlohmann::json ReplayJson(std::vector<std::string> options = {}) const {
    options.emplace_back("--json");
    const CommandResult result = Replay(options);
    EXPECT_EQ(result.status, ExitOK);
    EXPECT_EQ(result.messages, "");
    return result.Json();
  }

  std::string capture_ = folder_.File("a.cap");
};

TEST_F(ReplayCommand, ReadingsBecomeStatistics) {
  AddKitchen();
  WriteTwoReadings();
  const nlohmann::json json = ReplayJson();
  const nlohmann::json& meter = json["meters"].at(0);
  EXPECT_DOUBLE_EQ(meter["Volts"], kVolts);
  EXPECT_DOUBLE_EQ(meter["Amps"], kAmps);
  EXPECT_DOUBLE_EQ(meter["Watts"], kWatts);
  EXPECT_EQ(meter["Timestamp"], "2026-11-16T20:10:02.250");
  EXPECT_DOUBLE_EQ(meter["Usage"]["Today"], kEnergy);
  EXPECT_EQ(meter["Usage"]["Yesterday"], 0.0);
  EXPECT_DOUBLE_EQ(meter["Peak"]["ToDate"], kWatts);
  EXPECT_EQ(meter["PeakTime"]["ThisWeek"], "2026-11-16T20:10:00.250");
  EXPECT_TRUE(meter["DemandRecent"]["Minute"][57].is_null());
  EXPECT_DOUBLE_EQ(meter["DemandRecent"]["Minute"][58], kWatts);
  EXPECT_DOUBLE_EQ(meter["UsageRecent"]["Year"][11], kEnergy);
  // The Total starts at the time of the first line and is fed by the ticks: only the second one has
  // a tick count to measure energy from.
  EXPECT_DOUBLE_EQ(json["total"]["Watts"], kWatts);
  EXPECT_DOUBLE_EQ(json["total"]["Usage"]["Today"], kEnergy / 2);
  EXPECT_EQ(json["total"]["Timestamp"], "2026-11-16T20:10:04");
}

TEST_F(ReplayCommand, CountsFramesByWhatBecameOfThem) {
  AddKitchen();
  // Only the last frame of a read is handed on.
  Rx("2026-11-16T20:10:00", 1000, Join({KitchenFrame(), KitchenFrame()}));
  Rx("2026-11-16T20:10:01", 2000, KitchenFrame(6));
  Rx("2026-11-16T20:10:02", 3000, WrapFrame({0x8A, 0x00}));
  Rx("2026-11-16T20:10:03", 4000, MeterFrame(5, {229, 795}, {498, 498}, {.wrongChecksum = true}));
  EXPECT_EQ(ReplayJson()["frames"],
            (nlohmann::json{{"completed", 4}, {"decoded", 3}, {"delivered", 1}}));
}

TEST_F(ReplayCommand, NoticesCarryTheMetersOwnLine) {
  ExpectDone({"meter", "add", "--name", "Kitchen", "--address", "5", "--alarm", "on",
              "--alarm-upper", "400", "--alarm-duration", "1", "--alarm-interval", "60"});
  WriteTwoReadings();
  const nlohmann::json json = ReplayJson();
  EXPECT_EQ(json["notices"], (nlohmann::json::array({{{"time", "2026-11-16T20:10:03"},
                                                      {"meter", "Kitchen"},
                                                      {"text", "Kitchen: Using 424.5 Watts"}}})));
  const nlohmann::json& meter = json["meters"].at(0);
  EXPECT_EQ(meter["AlarmTriggered"], true);
  EXPECT_EQ(meter["AlarmRepeatDue"], false);
  EXPECT_EQ(meter["OutOfRangeSeconds"], 2);
  EXPECT_EQ(meter["IntervalSeconds"], 0);
  const std::string table = Replay().output;
  for (const char* part :
       {"Frames: 2 completed, 2 decoded, 2 delivered\n", "Kitchen        5  120.1  2.50  424.5 W",
        "\nAlarm notices:\n2026-11-16T20:10:03  Kitchen: Using 424.5 Watts\n"}) {
    EXPECT_NE(table.find(part), std::string::npos) << part << "in\n" << table;
  }
}

TEST_F(ReplayCommand, StandardInputIsACaptureAndMayHaveNoEvents) {
  const nlohmann::json json = RunHere({"replay", "--json", "-"}, "# nothing\n").Json();
  EXPECT_EQ(json["meters"], nlohmann::json::array());
  EXPECT_TRUE(json["total"]["Timestamp"].is_null());
  EXPECT_FALSE(ProfileExists());
  WriteTwoReadings();
  const CommandResult fromInput = RunHere({"replay", "--json", "-"}, FileBytes(capture_));
  EXPECT_EQ(fromInput.Json()["frames"]["completed"], 2);
}

TEST_F(ReplayCommand, SaveCarriesTheTotalsOn) {
  AddKitchen();
  WriteTwoReadings();
  EXPECT_EQ(Replay({"--save"}).messages, "");
  EXPECT_DOUBLE_EQ(Meters().at(0)["Usage"]["ToDate"], kEnergy);
  std::filesystem::remove(capture_);
  Rx("2026-11-17T08:00:00", 500, KitchenFrame());
  Rx("2026-11-17T08:00:01", 1500, KitchenFrame());
  const nlohmann::json usage = ReplayJson()["meters"].at(0)["Usage"];
  EXPECT_DOUBLE_EQ(usage["Yesterday"], kEnergy);
  EXPECT_DOUBLE_EQ(usage["Today"], kEnergy / 2);
  EXPECT_DOUBLE_EQ(usage["ToDate"], kEnergy * 1.5);
}

TEST_F(ReplayCommand, LogsOnlyWhereItIsToldToAndStampsRowsWithTheirSlots) {
  AddKitchen();
  const std::string own = folder_.File("own.csv");
  const std::string log = folder_.File("log.csv");
  for (const auto& [name, value] :
       {std::pair("CSVInterval", "60"), {"LogToCSV", "False"}, {"CSVFilename", own.c_str()}}) {
    ExpectDone({"setting", "set", name, value});
  }
  WriteTwoReadings();
  Tick("2026-11-16T20:11:01", 61750);   // a second behind its slot
  Tick("2026-11-16T20:14:30", 270750);  // the slots between are not made up for
  EXPECT_EQ(Replay({"--save", "--csv", log}).status, ExitOK);
  EXPECT_EQ(FileBytes(log),
            "Timestamp, Kitchen\r\n11/16/2026 8:11:00 PM, 424.5\r\n"
            "11/16/2026 8:12:00 PM, 424.5\r\n");
  EXPECT_EQ(Setting("LogToCSV"), "False\n");
  EXPECT_EQ(Setting("CSVFilename"), own + "\n");
  ExpectDone({"setting", "set", "LogToCSV", "True"});
  EXPECT_EQ(Replay().status, ExitOK);
  EXPECT_FALSE(std::filesystem::exists(own));
}

TEST_F(ReplayCommand, CsvThatCannotBeWrittenIsAnErrorOfTheReplayAndDemoModeStaysOut) {
  AddKitchen();
  ExpectDone({"setting", "set", "DemoMode", "True"});
  Tick("2026-11-16T20:10:01", 1750);
  Tick("2026-11-16T20:15:00", 300750);
  const nlohmann::json json = ReplayJson({"--save", "--csv", folder_.File("no/log.csv")});
  EXPECT_TRUE(json["meters"].at(0)["Watts"].is_null());
  EXPECT_EQ(Setting("DemoMode"), "True\n");
  ASSERT_EQ(json["errors"].size(), 1U);
  EXPECT_TRUE(json["errors"][0].get<std::string>().starts_with("Error Writing Log File - "));
}

TEST_F(ReplayCommand, ACaptureThatCannotBeReadEndsAllBeforeItBegins) {
  for (const std::string& file : {folder_.File("none.cap"), folder_.Path()}) {
    ExpectRefused(RunHere({"replay", "--save", file}), file + ":", ExitBadInput);
  }
  ExpectRefused(RunHere({"replay", "-"}, "x\n"), "standard input:1: ", ExitBadInput);
  EXPECT_FALSE(ProfileExists());
  AddKitchen();
  WriteTwoReadings();
  WriteFile(capture_, FileBytes(capture_) + "2026-11-16T20:15:00 300750 tock\n");
  const auto before = ProfileFiles();
  ExpectRefused(Replay({"--json", "--save", "--csv", folder_.File("log.csv")}),
                capture_ + ":5: \"tock\" is not \"rx HEX\" or \"tick\"\n", ExitBadInput);
  EXPECT_EQ(ProfileFiles(), before);
  EXPECT_FALSE(std::filesystem::exists(folder_.File("log.csv")));
}

}  // namespace
}  // namespace wattlark
