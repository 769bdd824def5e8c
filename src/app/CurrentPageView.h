#pragma once

#include <optional>
#include <string>

#include "acquisition/clsKillAWatt.h"
#include "config/AppSettings.h"
#include "support/RegionalSettings.h"

namespace wattlark {

/// The page of current conditions as texts.
struct CurrentPageView {
  std::string value;     ///< `lblCurrentValue`
  std::string interval;  ///< `lblCurrentInterval`: sample time, or "per Day"
  std::string volts;
  std::string amps;
  std::string maximum;  ///< `lblMax`: peak demand since reset
  bool isReceiving = false;
  bool alarm = false;            ///< `picAlarm` is shown
  std::optional<double> needle;  ///< 0..1 of the scale's width; nothing hides the needle
  std::string meterTip;          ///< tooltip of `picMeter`
};

/// Unit and interval are `CurrentUnit` and `CurrentInterval` of the settings.
CurrentPageView MakeCurrentPageView(const clsKillAWatt& meter, const AppSettings& settings,
                                    const RegionalSettings& regional, DateTime now);

}  // namespace wattlark
