#include <gtest/gtest.h>

#include "cli/MeterJson.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

TEST(MeterJson, HasItsKeysInTheOrderOfTheCaptureFormat) {
  const clsKillAWatt meter;
  const nlohmann::ordered_json json = MeterToJson(meter, DateTime());
  std::string keys;
  for (const auto& [key, value] : json.items()) keys += key + " ";
  EXPECT_EQ(keys,
            "Name XBeeAddress KillAWattType Volts Amps Watts Timestamp IsReceiving AlarmTriggered "
            "AlarmRepeatDue OutOfRangeSeconds IntervalSeconds DemandRecent UsageRecent Usage Peak "
            "PeakTime ");
  keys.clear();
  for (const auto& [key, value] : json["UsageRecent"].items()) {
    keys += key + " " + std::to_string(value.size()) + " ";
  }
  EXPECT_EQ(keys, "Minute 60 Hour 60 Day 24 Week 7 Month 31 Year 12 ");
  keys.clear();
  for (const auto& [key, value] : json["PeakTime"].items()) keys += key + " ";
  EXPECT_EQ(keys, "Yesterday Today ThisWeek ThisMonth ThisYear ToDate SinceReset ");
}

TEST(MeterJson, WhatHasNoValueIsNull) {
  clsKillAWatt meter;
  meter.Statistics().SetUsage(Yesterday, NoValue);
  meter.Statistics().SetPeakTime(Today, At("2026-11-16T20:10:00.250"));
  const nlohmann::ordered_json json = MeterToJson(meter, At("2026-11-16T20:10:00"));
  for (const char* key : {"Volts", "Amps", "Watts", "Timestamp"}) {
    EXPECT_TRUE(json[key].is_null()) << key;
  }
  EXPECT_TRUE(json["DemandRecent"]["Minute"][59].is_null());
  EXPECT_TRUE(json["Usage"]["Yesterday"].is_null());
  EXPECT_EQ(json["Usage"]["Today"], 0.0);
  EXPECT_TRUE(json["PeakTime"]["Yesterday"].is_null());
  EXPECT_EQ(json["PeakTime"]["Today"], "2026-11-16T20:10:00.250");
  meter.AddReading(120, 1, 120, At("2026-11-16T20:10:00"), 1000);
  EXPECT_EQ(MeterToJson(meter, At("2026-11-16T20:10:04.999"))["IsReceiving"], true);
  EXPECT_EQ(MeterToJson(meter, At("2026-11-16T20:10:05"))["IsReceiving"], false);
  EXPECT_EQ(MeterToJson(meter, DateTime())["IsReceiving"], false);
}

TEST(MeterJson, NameThatIsNotUtf8IsStillADocument) {
  clsKillAWatt meter;
  meter.SetName("a\xFF\"\n");
  const auto json = nlohmann::json::parse(JsonText(MeterToJson(meter, DateTime())));
  EXPECT_EQ(json["Name"], "a\xEF\xBF\xBD\"\n");
  EXPECT_FALSE(IsUtf8("a\xFF"));
  EXPECT_TRUE(IsUtf8("Küche"));
}

}  // namespace
}  // namespace wattlark
