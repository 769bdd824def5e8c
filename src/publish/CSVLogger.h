#pragma once

#include "acquisition/MeterCollection.h"
#include "config/AppSettings.h"
#include "publish/PublishResult.h"
#include "support/RegionalSettings.h"

namespace wattlark {

/// Appends one line to `CSVFilename`: the time stamp and one demand in watts for every meter, its
/// average over `CSVInterval` or its last reading; an empty field without a value. Fields are
/// separated by ", ", lines end with CR LF, texts are UTF-8, numbers and times regional. A header
/// line that names the meters comes first when `CSVFileChanged` is set, which it then clears, or
/// when the file is new or empty.
///
/// The file is opened and closed on every run. Fails when it cannot be opened; once it is open, a
/// line that the system does not take (a full disk) counts as written.
PublishResult LogToCSVFile(AppSettings& settings, const MeterCollection& meters,
                           const RegionalSettings& regional, DateTime timestamp, bool useAverage);

}  // namespace wattlark
