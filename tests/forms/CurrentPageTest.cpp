#include <QAccessible>
#include <QImage>
#include <QPushButton>

#include "app/forms/CurrentPage.h"
#include "forms/PageFixture.h"

namespace wattlark {
namespace {

using CurrentPageTest = PageFixture;

TEST_F(CurrentPageTest, ShowsAMeterWhileItReceives) {
  CurrentPage page(*monitor, selection);
  Show(page);
  EXPECT_EQ(Text(page, "lblCurrentValue"), "");
  QTest::mouseDClick(&Find(page, "picMeter"), Qt::LeftButton);
  clsKillAWatt& meter = AddMeter("Kitchen");
  Read(meter, 120.1, 3.2, 460);
  meter.Statistics().SetPeak(SinceReset, 1840);
  page.Refresh();
  EXPECT_EQ(Text(page, "lblCurrentVolts"), "120.1 Volts");
  EXPECT_EQ(Text(page, "lblCurrentAmps"), "3.2 Amps");
  EXPECT_EQ(Text(page, "lblMax"), "1.8400 kW");
  EXPECT_FALSE(Find(page, "picAlarm").isVisible());
  const QWidget& scale = Find(page, "picMeter");
  const QWidget& pointer = Find(page, "picIndicator");
  EXPECT_EQ(scale.toolTip().toStdString(), "Peak: 1.8400 kW Load Factor: 25.00%");
  EXPECT_NEAR(pointer.geometry().center().x(), scale.x() + scale.width() * 0.25, 1.5);
  // The pointer follows the size and stays on the scale.
  meter.Statistics().SetPeak(SinceReset, 400);
  page.Refresh();
  Show(page, {700, 500});
  EXPECT_TRUE(pointer.isVisible());
  EXPECT_NEAR(pointer.geometry().center().x(), scale.geometry().right(), 1.5);
  clock.Advance(5000);
  page.Refresh();
  EXPECT_EQ(Text(page, "lblCurrentValue"), "--- W");
  EXPECT_FALSE(pointer.isVisible());
  EXPECT_TRUE(scale.toolTip().isEmpty());
}

TEST_F(CurrentPageTest, AClickShowsTheValueAndStoresTheChoiceAndTheAlarmIsASignAndAWord) {
  Settings().Mils = 0.106;
  Settings().CurrentUnit = 7;  // which no button stands for
  clsKillAWatt& meter = AddMeter("Kitchen");
  meter.Alarm().SetAlarmActive(true);
  meter.Alarm().SetAlarmUpperLimit(100);
  meter.Alarm().SetAlarmDuration(0);
  for (const int milliseconds : {-1000, 1000}) {  // the first one of all counts for no average
    clock.Advance(milliseconds);
    Read(meter, 120, 4, 500);
  }
  CurrentPage page(*monitor, selection);
  Show(page);
  EXPECT_EQ(page.CurrentUnit(), 0);
  EXPECT_TRUE(Find(page, "picAlarm").isVisible());
  EXPECT_EQ(Text(page, "lblAlarm"), "Alarm");
  using Row = std::tuple<int, int, const char*, const char*>;
  for (const auto& [unit, interval, value, text] :
       {Row{2, 2, "$1.2720", "per Day"}, Row{0, 5, "500.0 W", "Sampled @ 8:10:00 PM"}}) {
    Click(page, "elaCurrentUnit" + QString::number(unit));
    Click(page, "elaCurrentInterval" + QString::number(interval));
    EXPECT_EQ(Text(page, "lblCurrentValue"), value);
    EXPECT_EQ(Text(page, "lblCurrentInterval"), text);
    EXPECT_EQ(Settings().CurrentUnit, unit);
    EXPECT_EQ(Settings().CurrentInterval, interval);
  }
}

TEST_F(CurrentPageTest, TheButtonsOfARowAreRadioButtonsToTheArrowKeysAndToAssistivePrograms) {
  CurrentPage page(*monitor, selection);
  Show(page);
  page.SetCurrentUnit(1);
  auto& chosen = Find<QPushButton>(page, "elaCurrentUnit1");
  chosen.setFocus();
  QTest::keyClick(&chosen, Qt::Key_Right);
  EXPECT_EQ(Settings().CurrentUnit, 2);
  for (QPushButton* button : page.findChildren<QPushButton*>()) {
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(button);
    EXPECT_EQ(accessible->role(), QAccessible::RadioButton);
    EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty());
  }
}

TEST_F(CurrentPageTest, ADoubleClickOrADeletionResetsThePeakOfTheMeterShown) {
  MeterStatistics& kitchen = AddMeter("Kitchen").Statistics();
  MeterStatistics& total = monitor->Profile().Total().Statistics();
  CurrentPage page(*monitor, selection);
  Show(page);
  QWidget& scale = Find(page, "picMeter");
  for (MeterStatistics* statistics : {&kitchen, &total}) statistics->SetPeak(SinceReset, 700);
  QTest::mouseDClick(&scale, Qt::RightButton);
  EXPECT_EQ(kitchen.Peak(SinceReset), 700);
  QTest::mouseDClick(&scale, Qt::LeftButton);
  EXPECT_EQ(kitchen.Peak(SinceReset), 0);
  EXPECT_EQ(total.Peak(SinceReset), 0) << "the only meter is the Total";
  EXPECT_TRUE(prompts.asked.empty());
  MeterStatistics& office = AddMeter("Office").Statistics();
  for (MeterStatistics* statistics : {&total, &office}) statistics->SetPeak(SinceReset, 700);
  selection.SelectTab(2);
  QTest::keyClick(&scale, Qt::Key_Delete);
  EXPECT_EQ(office.Peak(SinceReset), 0);
  EXPECT_EQ(total.Peak(SinceReset), 700);
}

TEST_F(CurrentPageTest, AValueShrinksUntilItFits) {
  CurrentPage page(*monitor, selection);
  Show(page, {300, 360});
  auto& value = Find<QLabel>(page, "lblCurrentValue");
  for (const char* text : {"$ 12,345.6789", "$1,234,567,890,123,456.00"}) {
    value.setText(text);
    QCoreApplication::processEvents();
    EXPECT_EQ(page.width(), 300) << "a long value must not widen the window";
    // Text that is cut reaches the edge.
    const QImage image = page.grab(value.geometry()).toImage();
    for (int y = 0; y < image.height(); ++y) {
      EXPECT_EQ(image.pixel(0, y), image.pixel(0, 0));
      EXPECT_EQ(image.pixel(image.width() - 1, y), image.pixel(0, 0));
    }
  }
}

}  // namespace
}  // namespace wattlark
