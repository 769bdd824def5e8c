#pragma once

#include <string>

#include "acquisition/MeterCollection.h"
#include "config/AppSettings.h"
#include "publish/PublishResult.h"
#include "publish/WebRequestRunner.h"
#include "support/RegionalSettings.h"

namespace wattlark {

/// The EEML 0.5 document of a feed: one data stream for each meter, named after its address, with
/// its average demand over `PachubeInterval` or its last reading, in watts. A meter without a value
/// is left out. Lines end with CR LF.
std::string PachubeDocument(const AppSettings& settings, const MeterCollection& meters,
                            const RegionalSettings& regional, bool useAverage);

/// Sends every meter's demand to the feed `PachubeFeedURL`, with `PachubeAPIKey`. The feed takes it
/// when it answers one blank.
PublishResult LogToPachubeFeed(const AppSettings& settings, const MeterCollection& meters,
                               const RegionalSettings& regional, WebRequestRunner& runner,
                               DateTime timestamp, bool useAverage);

}  // namespace wattlark
