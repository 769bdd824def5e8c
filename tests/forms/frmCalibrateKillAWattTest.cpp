#include <gtest/gtest.h>

#include <QScrollBar>

#include "config/forms/frmCalibrateKillAWatt.h"
#include "forms/FormChecks.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

struct frmCalibrateKillAWattTest : testing::Test {
  frmCalibrateKillAWattTest() {
    meter.SetName("Kitchen");
    form.SetKillAWatt(meter);
    form.show();
    QApplication::setActiveWindow(&form);
  }
  /// A second with a frame of the meter in it, or none.
  void Second(bool isSending = true) {
    clock.Advance(1000);
    if (isSending) meter.AddReading(120.06, -0.04, 1510, clock.now, clock.ticks);
    // The wizard's timer is the test's.
    QMetaObject::invokeMethod(form.findChild<QTimer*>("tmrUpdate"), "timeout");
  }
  QPushButton& Button(const char* name) const { return Find<QPushButton>(form, name); }
  QScrollBar& Bar(const char* name) const { return Find<QScrollBar>(form, name); }
  QString Text(const char* name) const { return Find<QLabel>(form, name).text(); }
  bool HasStartingValues() const {
    return meter.VoltageScaler() == 0.6 && meter.CurrentOffset() == 498 &&
           meter.CurrentScaler() == 1 / 15.5;
  }
  RegionalSettings region = RegionalSettings::UnitedStates();
  HandClock clock;
  clsKillAWatt meter;
  frmCalibrateKillAWatt form{{region, clock}};
};

TEST_F(frmCalibrateKillAWattTest, ComesAliveWithTheMeterAndKeepsTheFocusOffCancel) {
  EXPECT_EQ(Text("lblName"), "Kitchen");
  EXPECT_EQ(form.windowTitle(), "Calibrate Kill-A-Watt - Step 1 of 3");
  const auto expect = [this](bool isSending) {
    EXPECT_EQ(Text("lblVolts"), isSending ? "120.1 Volts" : "--- Volts");
    EXPECT_EQ(Text("lblAmps"), isSending ? "0.0 Amps" : "--- Amps");
    EXPECT_EQ(Text("lblWatts"), isSending ? "1,510.0 Watts" : "--- Watts");
    for (const char* bar : {"scrVoltageScaler", "scrCurrentOffset", "scrCurrentScaler"}) {
      EXPECT_EQ(Bar(bar).isEnabled(), isSending) << bar;
    }
    EXPECT_EQ(Button("cmdNext").isEnabled(), isSending);
    EXPECT_EQ(Button("cmdBack").isEnabled(), isSending && form.Step() != 1);
    EXPECT_TRUE(Button("cmdCancel").isEnabled());
    EXPECT_FALSE(Button("cmdCancel").hasFocus());
  };
  expect(false);
  EXPECT_TRUE(form.findChild<QTimer*>("tmrUpdate")->isActive());
  Second();
  expect(true);
  Click(form, "cmdNext");
  expect(true);
  Button("cmdBack").setFocus();
  for (int i = 0; i < 5; ++i) Second(false);
  expect(false);
  Second();
  expect(true);
  EXPECT_TRUE(Button("cmdBack").hasFocus());
}

TEST_F(frmCalibrateKillAWattTest, GoesThroughTheStepsWithTheKeyboard) {
  Second();
  for (int i = 0; i < 10; ++i) QTest::keyClick(&Bar("scrVoltageScaler"), Qt::Key_Down);
  EXPECT_NEAR(meter.VoltageScaler(), 0.54, 1e-15);
  EXPECT_EQ(Text("lblVoltageScaler"), "0.54 volts/bit");
  QTest::keyClick(&form, Qt::Key_Return);
  EXPECT_EQ(form.windowTitle(), "Calibrate Kill-A-Watt - Step 2 of 3");
  ASSERT_TRUE(Bar("scrCurrentOffset").hasFocus());
  QTest::keyClick(&Bar("scrCurrentOffset"), Qt::Key_Up);
  EXPECT_EQ(meter.CurrentOffset(), 497);
  EXPECT_EQ(Text("lblCurrentOffset"), "497 counts");
  QTest::keyClick(&form, Qt::Key_Return);
  EXPECT_EQ(Button("cmdNext").text(), "Save");
  ASSERT_TRUE(Bar("scrCurrentScaler").hasFocus());
  Bar("scrCurrentScaler").setValue(-100);
  EXPECT_EQ(meter.CurrentScaler(), 1.25 / 15.5);
  EXPECT_EQ(Text("lblCurrentScaler"), "0.0806451612903226 amps/bit");
  form.SetStep(1);
  EXPECT_EQ(Button("cmdNext").text(), "Next");
  EXPECT_EQ(Bar("scrVoltageScaler").value(), 10) << "a step revisited shows what was set";
  form.SetStep(3);
  QTest::keyClick(&form, Qt::Key_Return);
  EXPECT_FALSE(form.isVisible());
  EXPECT_FALSE(form.Cancelled());
  EXPECT_EQ(meter.CurrentOffset(), 497);
}

TEST_F(frmCalibrateKillAWattTest, RestoresTheMeterUnlessItsFrameCloses) {
  int position = 0;
  for (const char* end : {"frame", "button", "key"}) {
    SCOPED_TRACE(end);
    Second();
    position += 10;
    for (const char* bar : {"scrVoltageScaler", "scrCurrentOffset", "scrCurrentScaler"}) {
      Bar(bar).setValue(position);
    }
    EXPECT_FALSE(HasStartingValues());
    for (int i = 0; i < 5 && *end == 'k'; ++i) Second(false);
    if (*end == 'b') Click(form, "cmdCancel");
    if (*end == 'k') QTest::keyClick(&form, Qt::Key_Escape);
    if (*end == 'f') form.close();
    EXPECT_EQ(HasStartingValues(), *end != 'f');
    EXPECT_EQ(form.Cancelled(), *end != 'f');
    EXPECT_FALSE(form.isVisible());
    meter.ResetCalibration();
    form.SetKillAWatt(meter);
    form.show();
  }
}

}  // namespace
}  // namespace wattlark
