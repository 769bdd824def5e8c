#include <QAccessible>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <cmath>

#include "app/forms/CurrentPage.h"
#include "app/forms/FitLabel.h"
#include "forms/PageFixture.h"

namespace wattlark {
namespace {

class CurrentPageTest : public PageFixture {
 protected:
  static std::string Text(const QWidget& page, const QString& name) {
    return Find<QLabel>(page, name).text().toStdString();
  }
};

TEST_F(CurrentPageTest, ShowsAMeterThatReceives) {
  clsKillAWatt& meter = AddMeter("Kitchen");
  Read(meter, 120.1, 3.2, 460);
  meter.Statistics().SetPeak(SinceReset, 1840);
  CurrentPage page(monitor_, selection_);
  Show(page);
  EXPECT_EQ(Text(page, "lblCurrentValue"), "460.0 W");
  EXPECT_EQ(Text(page, "lblCurrentInterval"), "Sampled @ 8:10:00 PM");
  EXPECT_EQ(Text(page, "lblCurrentVolts"), "120.1 Volts");
  EXPECT_EQ(Text(page, "lblCurrentAmps"), "3.2 Amps");
  EXPECT_EQ(Text(page, "lblMax"), "1.8400 kW");
  EXPECT_FALSE(Find(page, "picAlarm").isVisible());
  const QWidget& scale = Find(page, "picMeter");
  EXPECT_EQ(scale.toolTip().toStdString(), "Peak: 1.8400 kW Load Factor: 25.00%");
  const QWidget& pointer = Find(page, "picIndicator");
  EXPECT_TRUE(pointer.isVisible());
  EXPECT_NEAR(pointer.geometry().center().x(), scale.x() + scale.width() * 0.25, 1.5);
}

TEST_F(CurrentPageTest, ThePointerFollowsTheSizeAndStaysOnTheScale) {
  clsKillAWatt& meter = AddMeter("Kitchen");
  Read(meter, 120, 4, 500);
  meter.Statistics().SetPeak(SinceReset, 400);
  CurrentPage page(monitor_, selection_);
  for (const QSize size : {QSize(300, 360), QSize(700, 500)}) {
    Show(page, size);
    const QWidget& scale = Find(page, "picMeter");
    EXPECT_NEAR(Find(page, "picIndicator").geometry().center().x(), scale.geometry().right(), 1.5);
  }
}

TEST_F(CurrentPageTest, ShowsNoReadingOfASilentMeter) {
  clsKillAWatt& meter = AddMeter("Kitchen");
  Read(meter, 120.1, 3.2, 460);
  CurrentPage page(monitor_, selection_);
  Show(page);
  clock_.Advance(5000);
  page.Refresh();
  EXPECT_EQ(Text(page, "lblCurrentValue"), "--- W");
  EXPECT_EQ(Text(page, "lblCurrentInterval"), "Sampled @ 8:10:00 PM");
  EXPECT_EQ(Text(page, "lblCurrentVolts"), "--- Volts");
  EXPECT_EQ(Text(page, "lblCurrentAmps"), "--- Amps");
  EXPECT_FALSE(Find(page, "picIndicator").isVisible());
  EXPECT_TRUE(Find(page, "picMeter").toolTip().isEmpty());
}

TEST_F(CurrentPageTest, StaysAsItIsWithoutMeters) {
  CurrentPage page(monitor_, selection_);
  Show(page);
  page.Refresh();
  EXPECT_EQ(Text(page, "lblCurrentValue"), "");
  QTest::mouseDClick(&Find(page, "picMeter"), Qt::LeftButton);
}

TEST_F(CurrentPageTest, TheAlarmIsASignAndAWord) {
  clsKillAWatt& meter = AddMeter("Kitchen");
  meter.Alarm().SetAlarmActive(true);
  meter.Alarm().SetAlarmUpperLimit(100);
  meter.Alarm().SetAlarmDuration(0);
  Read(meter, 120, 4, 500);
  clock_.Advance(1000);
  Read(meter, 120, 4, 500);
  CurrentPage page(monitor_, selection_);
  Show(page);
  const QWidget& alarm = Find(page, "picAlarm");
  EXPECT_TRUE(alarm.isVisible());
  EXPECT_EQ(Text(alarm, "lblAlarm"), "Alarm");
}

struct UnitCase {
  const char* unitButton;
  const char* intervalButton;
  double watts;
  const char* value;
  const char* interval;
};

class CurrentUnitTest : public CurrentPageTest, public testing::WithParamInterface<UnitCase> {};

TEST_P(CurrentUnitTest, AClickShowsTheValueAndStoresTheChoice) {
  const UnitCase& c = GetParam();
  Settings().Mils = 0.106;
  Settings().CO2perKWh = 1.5;
  ReadSteadily(AddMeter("Kitchen"), c.watts);
  CurrentPage page(monitor_, selection_);
  Show(page);
  auto& unit = Find<QPushButton>(page, c.unitButton);
  auto& interval = Find<QPushButton>(page, c.intervalButton);
  QTest::mouseClick(&unit, Qt::LeftButton);
  QTest::mouseClick(&interval, Qt::LeftButton);
  EXPECT_EQ(Text(page, "lblCurrentValue"), c.value);
  EXPECT_EQ(Text(page, "lblCurrentInterval"), c.interval);
  EXPECT_EQ("elaCurrentUnit" + QString::number(Settings().CurrentUnit), c.unitButton);
  EXPECT_EQ("elaCurrentInterval" + QString::number(Settings().CurrentInterval), c.intervalButton);
  EXPECT_TRUE(unit.isChecked());
  EXPECT_TRUE(interval.isChecked());
}

INSTANTIATE_TEST_SUITE_P(Units, CurrentUnitTest,
                         testing::Values(UnitCase{"elaCurrentUnit1", "elaCurrentInterval4", 100,
                                                  "72.00 kWh", "per Month"},
                                         UnitCase{"elaCurrentUnit2", "elaCurrentInterval2", 500,
                                                  "$1.2720", "per Day"},
                                         UnitCase{"elaCurrentUnit3", "elaCurrentInterval1", 500,
                                                  "0.7500 lbs", "per Hour"},
                                         UnitCase{"elaCurrentUnit0", "elaCurrentInterval5", 1000.5,
                                                  "1.0005 kW", "Sampled @ 8:10:00 PM"}));

TEST_F(CurrentPageTest, IgnoresChoicesOutsideTheRows) {
  Settings().CurrentUnit = 7;
  Settings().CurrentInterval = -1;
  CurrentPage page(monitor_, selection_);
  EXPECT_EQ(page.CurrentUnit(), 0);
  EXPECT_EQ(page.CurrentInterval(), 0);
  page.SetCurrentUnit(2);
  page.SetCurrentUnit(7);
  page.SetCurrentUnit(-1);
  page.SetCurrentInterval(3);
  page.SetCurrentInterval(6);
  EXPECT_EQ(page.CurrentUnit(), 2);
  EXPECT_EQ(Settings().CurrentUnit, 2);
  EXPECT_EQ(page.CurrentInterval(), 3);
  EXPECT_EQ(Settings().CurrentInterval, 3);
}

TEST_F(CurrentPageTest, ArrowKeysChooseAndTheTabKeyReachesTheChosenButtonOnly) {
  AddMeter("Kitchen");
  CurrentPage page(monitor_, selection_);
  Show(page);
  page.SetCurrentUnit(1);
  page.SetCurrentInterval(3);
  auto& chosen = Find<QPushButton>(page, "elaCurrentUnit1");
  chosen.setFocus();
  QTest::keyClick(&chosen, Qt::Key_Right);
  EXPECT_EQ(Settings().CurrentUnit, 2);
  EXPECT_EQ(page.focusWidget()->objectName(), "elaCurrentUnit2");
  QTest::keyClick(page.focusWidget(), Qt::Key_Left);
  EXPECT_EQ(Settings().CurrentUnit, 1);
  QStringList order;
  for (int i = 0; i < 3; ++i) {
    order.append(page.focusWidget()->objectName());
    QTest::keyClick(page.focusWidget(), Qt::Key_Tab);
  }
  EXPECT_EQ(order, QStringList({"elaCurrentUnit1", "picMeter", "elaCurrentInterval3"}));
}

TEST_F(CurrentPageTest, AssistiveProgramsFindNamedRadioButtons) {
  CurrentPage page(monitor_, selection_);
  const auto buttons = page.findChildren<QPushButton*>();
  ASSERT_EQ(buttons.size(), 10);
  for (QPushButton* button : buttons) {
    const QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(button);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::RadioButton);
    EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty());
    EXPECT_GE(button->sizeHint().height(), 26);
  }
}

class PeakResetTest : public CurrentPageTest, public testing::WithParamInterface<bool> {
 protected:
  void ResetPeak(CurrentPage& page) {
    QWidget& scale = Find(page, "picMeter");
    if (GetParam()) {
      QTest::mouseDClick(&scale, Qt::LeftButton);
    } else {
      QTest::keyClick(&scale, Qt::Key_Delete);
    }
  }
};

TEST_P(PeakResetTest, TakesTheTotalsPeakAlongWithTheOnlyMeters) {
  clsKillAWatt& meter = AddMeter("Kitchen");
  Read(meter, 120, 4, 500);
  clsKillAWatt& total = monitor_.Profile().Total();
  total.Statistics().SetPeak(SinceReset, 700);
  CurrentPage page(monitor_, selection_);
  Show(page);
  ResetPeak(page);
  EXPECT_EQ(meter.Statistics().Peak(SinceReset), 0);
  EXPECT_EQ(total.Statistics().Peak(SinceReset), 0);
  EXPECT_EQ(meter.Statistics().Peak(Today), 500);
  EXPECT_FALSE(Find(page, "picIndicator").isVisible());
  EXPECT_TRUE(prompts_.asked.empty());
}

TEST_P(PeakResetTest, LeavesTheTotalOfTwoMeters) {
  clsKillAWatt& kitchen = AddMeter("Kitchen");
  clsKillAWatt& office = AddMeter("Office");
  clsKillAWatt& total = monitor_.Profile().Total();
  for (clsKillAWatt* meter : {&kitchen, &office, &total}) {
    meter->Statistics().SetPeak(SinceReset, 700);
  }
  selection_.SelectTab(2);
  CurrentPage page(monitor_, selection_);
  Show(page);
  QTest::mouseDClick(&Find(page, "picMeter"), Qt::RightButton);
  EXPECT_EQ(office.Statistics().Peak(SinceReset), 700);
  ResetPeak(page);
  EXPECT_EQ(kitchen.Statistics().Peak(SinceReset), 700);
  EXPECT_EQ(office.Statistics().Peak(SinceReset), 0);
  EXPECT_EQ(total.Statistics().Peak(SinceReset), 700);
}

INSTANTIATE_TEST_SUITE_P(MouseOrKeyboard, PeakResetTest, testing::Bool());

// Columns of an image with anything on its ground; text that is cut reaches the image's edge.
std::pair<int, int> InkedColumns(const QImage& image) {
  int first = image.width();
  int last = -1;
  for (int x = 0; x < image.width(); ++x) {
    for (int y = 0; y < image.height(); ++y) {
      if (image.pixel(x, y) == image.pixel(0, 0)) continue;
      first = std::min(first, x);
      last = std::max(last, x);
    }
  }
  return {first, last};
}

class LongValueTest : public CurrentPageTest, public testing::WithParamInterface<const char*> {};

TEST_P(LongValueTest, ShrinksUntilItFits) {
  AddMeter("Kitchen");
  CurrentPage page(monitor_, selection_);
  Show(page, {300, 360});
  auto& value = static_cast<FitLabel&>(Find<QLabel>(page, "lblCurrentValue"));
  value.setText("1.0 W");
  const int full = value.FittedFont().pixelSize();
  value.setText(GetParam());
  QCoreApplication::processEvents();
  EXPECT_EQ(page.width(), 300) << "a long value must not widen the window";
  EXPECT_LT(value.FittedFont().pixelSize(), full);
  const QImage image = page.grab(value.geometry()).toImage();
  const auto [first, last] = InkedColumns(image);
  EXPECT_GE(first, 1);
  EXPECT_LE(last, image.width() - 2);
  EXPECT_GT(last - first, image.width() / 2);
}

INSTANTIATE_TEST_SUITE_P(Texts, LongValueTest,
                         testing::Values("1,234.5 kWh", "$ 12,345.6789", "-12,345.678 lbs",
                                         "$1,234,567,890,123,456.00"));

TEST_F(CurrentPageTest, TheValueIsTheLargestText) {
  Read(AddMeter("Kitchen"), 120, 4, 612.4);
  CurrentPage page(monitor_, selection_);
  Show(page, {300, 360});
  const auto pixels = [&](const QString& name) {
    const QFont font = static_cast<FitLabel&>(Find<QLabel>(page, name)).FittedFont();
    return QFontInfo(font).pixelSize();
  };
  for (const char* name : {"lblCurrentInterval", "lblCurrentVolts", "lblCurrentAmps", "lblMax"}) {
    EXPECT_GT(pixels("lblCurrentValue"), 2 * pixels(name)) << name;
  }
}

TEST_F(CurrentPageTest, FiguresAreEquallyWide) {
  FitLabel label("label", FitLabel::Size::Normal, Qt::AlignLeft, nullptr);
  label.setText("111.1 W");
  const QSize narrow = label.sizeHint();
  label.setText("848.0 W");
  EXPECT_EQ(label.sizeHint(), narrow);
}

}  // namespace
}  // namespace wattlark
