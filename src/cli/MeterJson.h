#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "acquisition/clsKillAWatt.h"

namespace wattlark {

/// A meter as JSON: name, address, type, last reading, alarm counters, series and periods. What has
/// no value is null. `now` judges whether the meter is receiving; at "never" it is not.
nlohmann::ordered_json MeterToJson(const clsKillAWatt& meter, DateTime now);
/// Appends the nominal values, the calibration and the alarm settings.
void AppendMeterSettings(const clsKillAWatt& meter, nlohmann::ordered_json& json);

/// The moment as "YYYY-MM-DDTHH:MM:SS" or with ".mmm"; null for "never".
nlohmann::ordered_json MomentToJson(DateTime moment);
/// Whether the text is valid UTF-8.
bool IsUtf8(const std::string& text);
/// The document as indented text with a line end. Every finite number reads back as the same
/// double; bytes that are not UTF-8 become U+FFFD.
std::string JsonText(const nlohmann::ordered_json& json);

}  // namespace wattlark
