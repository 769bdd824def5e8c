#pragma once

#include <gmock/gmock.h>

#include <QApplication>
#include <QTest>
#include <QWidget>
#include <memory>
#include <string>
#include <vector>

#include "app/MeterSelection.h"
#include "app/Monitor.h"
#include "twins/Frames.h"
#include "twins/HandClock.h"
#include "twins/MemoryRegistry.h"
#include "twins/RecordingDesktop.h"
#include "twins/RecordingListener.h"
#include "twins/ScriptedPort.h"
#include "twins/ScriptedPrompts.h"
#include "twins/ScriptedRandom.h"

namespace wattlark {

/// A monitor on twins of all ports, and the choice of its meters, for the pages of the window. The
/// clock stands at 16 November 2026, 20:10:00, a Monday.
class PageFixture : public testing::Test {
 protected:
  AppSettings& Settings() { return monitor_.Profile().Settings(); }

  clsKillAWatt& AddMeter(const std::string& name) {
    auto meter = std::make_unique<clsKillAWatt>();
    clsKillAWatt& added = *meter;
    added.SetName(name);
    added.SetXBeeAddress(static_cast<std::int16_t>(monitor_.Profile().Meters().Count() + 1));
    monitor_.Profile().Meters().Add(std::move(meter));
    selection_.RefreshTabs();
    return added;
  }

  /// A reading at the clock's present time.
  void Read(clsKillAWatt& meter, double volts, double amps, double watts) {
    meter.AddReading(volts, amps, watts, clock_.Now(), clock_.Ticks());
  }

  /// Readings of the same power a second ago and now: the first one of all counts for no average.
  void ReadSteadily(clsKillAWatt& meter, double watts) {
    clock_.Advance(-1000);
    Read(meter, 120, 4, watts);
    clock_.Advance(1000);
    Read(meter, 120, 4, watts);
  }

  /// A packet of the meter with that address arrives.
  void Receive(std::int16_t address, const std::vector<std::uint16_t>& voltage,
               const std::vector<std::uint16_t>& current) {
    serial_.waiting = MeterFrame(static_cast<std::uint16_t>(address), voltage, current);
    monitor_.ReceiveXBeeData();
  }

  /// The only widget of that name below `page`.
  template <typename Widget = QWidget>
  static Widget& Find(const QWidget& page, const QString& name) {
    const auto found = page.findChildren<Widget*>(name);
    if (found.size() != 1) throw std::logic_error("not one " + name.toStdString());
    return *found.front();
  }

  /// Shows a page in its least size, or a larger one, and paints it.
  static void Show(QWidget& page, QSize size = QSize()) {
    page.resize(size.isValid() ? size : page.minimumSizeHint());
    page.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&page));
    QCoreApplication::processEvents();
  }

  HandClock clock_;
  ScriptedPort serial_;
  MemoryRegistry registry_;
  ScriptedRandom random_{std::initializer_list<double>{}};
  RecordingDesktop desktop_;
  ScriptedPrompts prompts_;
  RecordingListener listener_;
  Monitor monitor_{{clock_, serial_, registry_, random_, desktop_, prompts_},
                   RegionalSettings::UnitedStates(),
                   {"", ""},
                   listener_};
  MeterSelection selection_{monitor_.Profile()};
};

}  // namespace wattlark
