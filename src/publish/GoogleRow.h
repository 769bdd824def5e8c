#pragma once

#include <string>
#include <string_view>

#include "acquisition/MeterCollection.h"
#include "config/AppSettings.h"
#include "support/RegionalSettings.h"

namespace wattlark {

/// The list feed's column of a meter of that name: the name in lower case, without blanks; "Living
/// Room" posts to "livingroom". Empty when that is no name of an XML element, which leaves the
/// meter out of the row.
std::string GoogleColumn(std::string_view meterName);

/// The Atom entry of one row: the time stamp and every meter's average demand over `GoogleInterval`
/// or its last reading, in watts; an empty element without a value. Lines are joined by CR LF.
/// Meters whose names make the same column each have an element: which of them the sheet keeps is
/// the service's choice.
std::string GoogleRow(const AppSettings& settings, const MeterCollection& meters,
                      const RegionalSettings& regional, DateTime timestamp, bool useAverage);

}  // namespace wattlark
