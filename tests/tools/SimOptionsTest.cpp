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
  EXPECT_FALSE(options.meters[1].isGenerator);
  EXPECT_TRUE(options.meters[2].isGenerator);
  EXPECT_TRUE(options.meters[2].varies);
  const ParsedOptions help = ParseOptions({"--help"});
  EXPECT_FALSE(help.options);
  EXPECT_EQ(help.exitStatus, 0) << "help is no error";
  EXPECT_NE(help.message.find("--link"), std::string::npos);
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

TEST(SimOptions, RefusesWhatIsWrongAndNamesIt) {
  using Row = std::pair<const char*, const char*>;
  for (const auto& [line, named] : {Row{"--bogus", "--bogus"},
                                    Row{"stray", "stray"},
                                    Row{"--period", "--period"},
                                    Row{"--link ", "--link"},
                                    Row{"--link a --capture b", "--capture"},
                                    Row{"--vary --no-vary", "--no-vary"},
                                    Row{"--start 2026-01-01T00:00:00", "--capture"},
                                    Row{"--capture - --start 2026-02-30T00:00:00", "2026-02-30"},
                                    Row{"--capture - --start 9999-12-31T23:59:30", "9999"},
                                    Row{"--duration 0", "--duration"},
                                    Row{"--duration 1.5", "1.5"},
                                    Row{"--period 0", "--period"},
                                    Row{"--period nan", "nan"},
                                    Row{"--period 2x", "2x"},
                                    Row{"--frequency 55", "55"},
                                    Row{"--noise -0.1", "--noise"},
                                    Row{"--noise 0.3", "--noise"},
                                    Row{"--power-factor 0", "--power-factor"},
                                    Row{"--power-factor 1.1", "1.1"},
                                    Row{"--seed -1", "--seed"},
                                    Row{"--garbage 1.01", "--garbage"},
                                    Row{"--bad-checksum x", "--bad-checksum"},
                                    Row{"--unknown -1", "--unknown"},
                                    Row{"--split 65536", "--split"},
                                    Row{"--meter Lamp", "NAME:ADDRESS:WATTS"},
                                    Row{"--meter :5:10", "NAME:ADDRESS:WATTS"},
                                    Row{"--meter Lamp:32768:10", "32768"},
                                    Row{"--meter Lamp:-1:10", "-1"},
                                    Row{"--meter Lamp:5:-10", "-10"},
                                    Row{"--meter Lamp:5:1711", "1711"},
                                    Row{"--meter Lamp:5:", "watts"},
                                    Row{"--meter Lamp:5:10:solar", "solar"},
                                    Row{"--meter Lamp:5:10 --meter Desk:5:20", "Lamp"}}) {
    const auto words = Split(line, ' ');
    const ParsedOptions parsed = ParseOptions({words.begin(), words.end()});
    EXPECT_FALSE(parsed.options) << line;
    EXPECT_EQ(parsed.exitStatus, 2);
    EXPECT_NE(parsed.message.find(named), std::string::npos) << parsed.message;
  }
}

}  // namespace
}  // namespace wattlark
