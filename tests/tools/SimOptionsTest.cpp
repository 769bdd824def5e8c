#include <gtest/gtest.h>

#include "sim/Options.h"
#include "support/modText.h"

namespace wattlark {
namespace {

TEST(SimOptions, DefaultsAreThreeMetersOnAPseudoTerminal) {
  const ParsedOptions parsed = ParseOptions({"--link", "/tmp/meters"});
  ASSERT_TRUE(parsed.options) << parsed.message;
  const Options& options = *parsed.options;
  EXPECT_EQ(options.link, "/tmp/meters");
  EXPECT_EQ(options.periodSeconds, 2.0);
  EXPECT_FALSE(options.durationSeconds);
  ASSERT_EQ(options.meters.size(), 3U);
  EXPECT_EQ(options.meters[0].name, "Kitchen");
  EXPECT_EQ(options.meters[0].address, 5);
  EXPECT_EQ(options.meters[0].watts, 612.0);
  EXPECT_EQ(options.meters[1].name, "Office");
  EXPECT_FALSE(options.meters[1].isGenerator);
  EXPECT_EQ(options.meters[2].name, "Solar");
  EXPECT_TRUE(options.meters[2].isGenerator);
  EXPECT_TRUE(options.meters[2].varies);
}

TEST(SimOptions, TakesEverythingThatIsGiven) {
  const ParsedOptions parsed = ParseOptions(
      {"--capture", "-", "--start=2026-11-16T20:10:00.250", "--duration=30", "--frequency=50",
       "--meter=Well pump:17:1200.5:240:generator", "--meter=Lamp:0:9", "--period=0.5",
       "--noise=0.1", "--power-factor=0.8", "--seed=42", "--garbage=0.1", "--bad-checksum=0.2",
       "--unknown=0.3", "--split=16"});
  ASSERT_TRUE(parsed.options) << parsed.message;
  const Options& options = *parsed.options;
  EXPECT_EQ(options.capture, "-");
  EXPECT_EQ(options.durationSeconds, 30);
  EXPECT_EQ(options.start.ToIso(), "2026-11-16T20:10:00.250");
  ASSERT_EQ(options.meters.size(), 2U);
  EXPECT_EQ(options.meters[0].name, "Well pump");
  EXPECT_EQ(options.meters[0].nominalVoltage, 240.0);
  EXPECT_TRUE(options.meters[0].isGenerator);
  EXPECT_EQ(options.meters[0].watts, 1200.5);
  EXPECT_EQ(options.meters[1].address, 0);
  EXPECT_EQ(options.meters[1].nominalVoltage, 120.0);
  EXPECT_EQ(options.meters[1].frequency, 50.0);
  EXPECT_EQ(options.meters[1].noise, 0.1);
  EXPECT_EQ(options.meters[1].powerFactor, 0.8);
  EXPECT_FALSE(options.meters[1].varies) << "a capture keeps its loads unless told otherwise";
  EXPECT_TRUE(ParseOptions({"--capture", "-", "--vary"}).options->meters[0].varies);
  EXPECT_FALSE(ParseOptions({"--no-vary"}).options->meters[0].varies);
  EXPECT_EQ(options.periodSeconds, 0.5);
  EXPECT_EQ(options.seed, 42U);
  EXPECT_EQ(options.line.garbageRate, 0.1);
  EXPECT_EQ(options.line.badChecksumRate, 0.2);
  EXPECT_EQ(options.line.unknownRate, 0.3);
  EXPECT_EQ(options.line.splitMaximum, 16U);
}

TEST(SimOptions, HelpIsNoError) {
  const ParsedOptions parsed = ParseOptions({"--help"});
  EXPECT_FALSE(parsed.options);
  EXPECT_EQ(parsed.exitStatus, 0);
  EXPECT_NE(parsed.message.find("--link"), std::string::npos);
}

TEST(SimOptions, RefusesWhatIsWrongAndNamesIt) {
  const std::pair<const char*, const char*> cases[] = {
      {"--bogus", "--bogus"},
      {"stray", "stray"},
      {"--period", "--period"},
      {"--link ", "--link"},
      {"--link a --capture b", "--capture"},
      {"--vary --no-vary", "--no-vary"},
      {"--start 2026-01-01T00:00:00", "--capture"},
      {"--capture - --start 2026-02-30T00:00:00", "2026-02-30"},
      {"--capture - --start 9999-12-31T23:59:30", "9999"},
      {"--duration 0", "--duration"},
      {"--duration 1.5", "1.5"},
      {"--period 0", "--period"},
      {"--period nan", "nan"},
      {"--period 2x", "2x"},
      {"--frequency 55", "55"},
      {"--noise -0.1", "--noise"},
      {"--noise 0.3", "--noise"},
      {"--power-factor 0", "--power-factor"},
      {"--power-factor 1.1", "1.1"},
      {"--seed -1", "--seed"},
      {"--garbage 1.01", "--garbage"},
      {"--bad-checksum x", "--bad-checksum"},
      {"--unknown -1", "--unknown"},
      {"--split 65536", "--split"},
      {"--meter Lamp", "NAME:ADDRESS:WATTS"},
      {"--meter :5:10", "NAME:ADDRESS:WATTS"},
      {"--meter Lamp:32768:10", "32768"},
      {"--meter Lamp:-1:10", "-1"},
      {"--meter Lamp:5:-10", "-10"},
      {"--meter Lamp:5:1711", "1711"},
      {"--meter Lamp:5:", "watts"},
      {"--meter Lamp:5:10:solar", "solar"},
      {"--meter Lamp:5:10 --meter Desk:5:20", "Lamp"}};
  for (const auto& [line, named] : cases) {
    const auto words = Split(line, ' ');
    const ParsedOptions parsed = ParseOptions({words.begin(), words.end()});
    EXPECT_FALSE(parsed.options) << line;
    EXPECT_EQ(parsed.exitStatus, 2);
    EXPECT_NE(parsed.message.find(named), std::string::npos) << parsed.message;
  }
}

}  // namespace
}  // namespace wattlark
