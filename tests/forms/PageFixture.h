#pragma once

#include <gmock/gmock.h>

#include "app/MeterSelection.h"
#include "app/MonitorFixture.h"
#include "forms/FormChecks.h"
#include "twins/Meters.h"

namespace wattlark {

/// A monitor on twins of all ports, and the choice of its meters, for the pages of the window. The
/// clock stands at 16 November 2026, 20:10:00, a Monday.
struct PageFixture : MonitorTest {
  AppSettings& Settings() const { return monitor->Profile().Settings(); }

  clsKillAWatt& AddMeter(const std::string& name) {
    MeterCollection& meters = monitor->Profile().Meters();
    clsKillAWatt& added =
        wattlark::AddMeter(meters, name, static_cast<std::int16_t>(meters.Count() + 1));
    selection.RefreshTabs();
    return added;
  }

  /// A reading at the clock's present time.
  void Read(clsKillAWatt& meter, double volts, double amps, double watts) const {
    meter.AddReading(volts, amps, watts, clock.now, clock.ticks);
  }

  static std::string Text(const QWidget& page, const QString& label) {
    return Find<QLabel>(page, label).text().toStdString();
  }

  /// Shows a page in its least size, or a larger one, and paints it.
  static void Show(QWidget& page, QSize size = QSize()) {
    page.resize(size.isValid() ? size : page.minimumSizeHint());
    page.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&page));
    QCoreApplication::processEvents();
  }

  MeterSelection selection{Start().Profile()};
};

}  // namespace wattlark
