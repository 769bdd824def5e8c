#include <gtest/gtest.h>

#include "sim/Options.h"
#include "support/modText.h"

namespace wattlark {
namespace {

ParsedOptions Parse(const std::string& line) {
  const auto words = Split(line, ' ');
  return ParseOptions({words.begin(), words.end()});
}

TEST(SimOptions, DefaultsAreThreeMetersOnAPseudoTerminal) {
  const ParsedOptions parsed = Parse("--link /tmp/meters");
  ASSERT_TRUE(parsed.options) << parsed.message;
  EXPECT_EQ(parsed.options->link, "/tmp/meters");
  EXPECT_FALSE(parsed.options->durationSeconds);
  ASSERT_EQ(parsed.options->meters.size(), 3U);
  EXPECT_TRUE(parsed.options->meters[2].isGenerator && parsed.options->meters[2].varies);
  const ParsedOptions help = Parse("--help");
  EXPECT_FALSE(help.options);
  EXPECT_EQ(help.exitStatus, 0) << "help is no error";
  EXPECT_NE(help.message.find("--link"), std::string::npos);
}

TEST(SimOptions, TakesEverythingThatIsGiven) {
  const ParsedOptions parsed = ParseOptions(
      {"--capture", "-", "--start=2026-11-16T20:10:00.250", "--duration=30", "--frequency=50",
       "--meter=Well pump:17:1200.5:240:generator", "--meter=Lamp:0:9", "--period=0.5",
       "--noise=0.1", "--power-factor=0.8", "--seed=42", "--garbage=0.15", "--bad-checksum=0.2",
       "--unknown=0.3", "--split=16"});
  ASSERT_TRUE(parsed.options) << parsed.message;
  const Options& options = *parsed.options;
  EXPECT_EQ(options.start.ToIso(), "2026-11-16T20:10:00.250");
  ASSERT_EQ(options.meters.size(), 2U);
  const MeterSettings& pump = options.meters[0];
  EXPECT_EQ(pump.name, "Well pump");
  EXPECT_TRUE(pump.isGenerator);
  const MeterSettings& lamp = options.meters[1];
  EXPECT_FALSE(lamp.varies) << "a capture keeps its loads unless told otherwise";
  EXPECT_EQ(options.durationSeconds, 30);
  EXPECT_EQ(options.seed, 42U);
  EXPECT_EQ(options.line.splitMaximum, 16U);
  EXPECT_EQ(
      (std::vector{pump.watts, pump.nominalVoltage, lamp.nominalVoltage, lamp.frequency, lamp.noise,
                   lamp.powerFactor, options.periodSeconds, options.line.garbageRate,
                   options.line.badChecksumRate, options.line.unknownRate}),
      (std::vector{1200.5, 240.0, 120.0, 50.0, 0.1, 0.8, 0.5, 0.15, 0.2, 0.3}));
}

TEST(SimOptions, RefusesWhatIsWrongAndNamesIt) {
  // The first word of each is what the message names.
  constexpr const char* kWrong =
      "--bogus --bogus|stray stray|--link --link |--no-vary --vary --no-vary|"
      "--capture --link a --capture b|--capture --start 2026-01-01T00:00:00|"
      "2026-02-30 --capture - --start 2026-02-30T00:00:00|"
      "9999 --capture - --start 9999-12-31T23:59:30|--duration --duration 0|nan --period nan|"
      "2x --period 2x|55 --frequency 55|NAME:ADDRESS:WATTS --meter Lamp|"
      "NAME:ADDRESS:WATTS --meter :5:10|watts --meter Lamp:5:1711|neither --meter Lamp:5:10:solar|"
      "already --meter Lamp:5:10 --meter Desk:5:20";
  for (const std::string_view row : Split(kWrong, '|')) {
    const std::size_t blank = row.find(' ');
    const ParsedOptions parsed = Parse(std::string(row.substr(blank + 1)));
    EXPECT_FALSE(parsed.options) << row;
    EXPECT_EQ(parsed.exitStatus, 2);
    EXPECT_NE(parsed.message.find(row.substr(0, blank)), std::string::npos) << parsed.message;
  }
}

}  // namespace
}  // namespace wattlark
