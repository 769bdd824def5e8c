#pragma once

#include "support/RegionalSettings.h"

class QLocale;

namespace wattlark {

/// The regional form that the system is set to; the United States form where it is set to none
/// ("C" or "POSIX").
RegionalSettings SystemRegionalSettings();
/// The regional form of a locale: the short date with a four-digit year, the long time with seconds
/// and without its zone.
RegionalSettings RegionalFromLocale(const QLocale& locale);

}  // namespace wattlark
