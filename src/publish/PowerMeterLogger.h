#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "acquisition/clsKillAWatt.h"
#include "config/AppSettings.h"
#include "config/ServiceEndpoints.h"
#include "publish/PublishResult.h"
#include "publish/WebRequestRunner.h"
#include "support/RegionalSettings.h"

namespace wattlark {

/// What the authentication info of a PowerMeter device names.
struct PowerMeterAuthorization {
  std::string token;
  std::string variablePath;  ///< "/user/123/456/device.serial.d1"
};

/// Nothing when the token or the path is missing, or when they cannot stand in a header line or an
/// address.
std::optional<PowerMeterAuthorization> ParsePowerMeterAuthInfo(std::string_view info);

/// The Atom entry of one duration measurement: `wattHours` used in the `seconds` up to `endUTC`.
/// Lines end with CR LF.
std::string PowerMeterEntry(DateTime endUTC, std::int32_t seconds, double wattHours,
                            const RegionalSettings& regional);

/// Reports the energy that `total` used in the last `PowerMeterInterval` seconds, up to `timestamp`
/// (local), to Google PowerMeter. Without a value for that time there is no request, and an error.
PublishResult LogToGooglePowerMeter(const AppSettings& settings, const ServiceEndpoints& endpoints,
                                    const clsKillAWatt& total, const RegionalSettings& regional,
                                    const std::function<DateTime(DateTime)>& localToUTC,
                                    WebRequestRunner& runner, DateTime timestamp);

}  // namespace wattlark
