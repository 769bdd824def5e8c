#include <qcustomplot.h>

#include <QSignalSpy>
#include <cmath>

#include "app/forms/PacketPage.h"
#include "app/forms/RecentPage.h"
#include "forms/PageFixture.h"
#include "support/NoValue.h"

namespace wattlark {
namespace {

QCPGraph& Graph(const QWidget& page, const QString& name) {
  const auto found = page.findChildren<QCPGraph*>(name);
  if (found.size() != 1) throw std::logic_error("not one graph " + name.toStdString());
  return *found.front();
}

struct RecentPageTest : PageFixture {
  static QCustomPlot& Chart(const QWidget& page) { return Find<QCustomPlot>(page, "chtRecent"); }
  static void Paint() { QCoreApplication::processEvents(); }
  static std::vector<std::string> Said(const QSignalSpy& spoken) {
    std::vector<std::string> said;
    for (const auto& call : spoken) said.push_back(call.at(0).toString().toStdString());
    return said;
  }
  /// A meter, heard now, with these values in the series of demand and usage of the week.
  clsKillAWatt& AddMeterOfWeek(const std::vector<double>& values) {
    clsKillAWatt& meter = AddMeter("Kitchen");
    Read(meter, 120, 5, 600);
    meter.Statistics().SetDemandRecent(Week, values);
    meter.Statistics().SetUsageRecent(Week, values);
    Settings().RecentInterval = Week;
    return meter;
  }
};

TEST_F(RecentPageTest, PowerIsALineWithAlarmZonesAndEnergyFilledStepsBothWithGaps) {
  MeterAlarm& alarm = AddMeterOfWeek({1, 2, NoValue, 4, NoValue, 6, 7}).Alarm();
  alarm.SetAlarmActive(true);
  alarm.SetAlarmLowerLimit(3);
  alarm.SetAlarmUpperLimit(5);
  RecentPage page(*monitor, selection);
  Show(page);
  const QCPGraph& graph = Graph(page, "values");
  const auto hasGap = [&graph](int place) { return std::isnan(graph.data()->at(place)->value); };
  EXPECT_EQ(Text(page, "elaRecentHeader"), "4 W (average)");
  EXPECT_EQ(graph.lineStyle(), QCPGraph::lsLine);
  EXPECT_TRUE(hasGap(2) && !hasGap(3) && hasGap(4));
  // No line leads to the value between the gaps: it is a dot.
  ASSERT_EQ(Graph(page, "loners").dataCount(), 1);
  EXPECT_EQ(Graph(page, "loners").data()->constBegin()->value, 4);
  const auto& lower = *Chart(page).findChild<QCPItemRect*>("Lower");
  const auto& upper = *Chart(page).findChild<QCPItemRect*>("Upper");
  EXPECT_TRUE(lower.visible() && upper.visible());
  EXPECT_EQ(lower.topLeft->value(), 3);
  EXPECT_EQ(upper.bottomRight->value(), 5);
  Click(page, "elaRecentUnit1");
  Paint();
  EXPECT_EQ(Text(page, "elaRecentHeader"), "20 Wh (total)");
  EXPECT_EQ(Settings().RecentUnit, 1);
  EXPECT_EQ(graph.lineStyle(), QCPGraph::lsStepLeft);
  EXPECT_TRUE(hasGap(2) && !hasGap(3) && hasGap(4));
  EXPECT_EQ(Graph(page, "loners").dataCount(), 0);
  EXPECT_FALSE(lower.visible() || upper.visible());
  Click(page, "elaRecentInterval0");
  EXPECT_EQ(Text(page, "elaRecentHeader"), "--- Wh (total)");
  EXPECT_EQ(Settings().RecentInterval, 0);
}

TEST_F(RecentPageTest, SpeaksOfThePointThatAnArrowKeyOrThePointerReachesAndABarIsAPointAsAWhole) {
  AddMeterOfWeek({NoValue, 200, 300, NoValue, NoValue, 700, 900});
  RecentPage page(*monitor, selection);
  Show(page, {340, 400});
  QCustomPlot& chart = Chart(page);
  EXPECT_TRUE(chart.focusPolicy() & Qt::TabFocus);
  const QSignalSpy spoken(&page, &RecentPage::hoverText);
  for (const auto key : {Qt::Key_Left, Qt::Key_Left, Qt::Key_Left, Qt::Key_Left, Qt::Key_Left,
                         Qt::Key_Right, Qt::Key_End, Qt::Key_Home}) {
    QTest::keyClick(&chart, key);
  }
  const auto move = [&](double slot, double value) {
    const double x = Graph(page, "values").data()->constBegin()->key + slot;
    QTest::mouseMove(
        &chart, {qRound(chart.xAxis->coordToPixel(x)), qRound(chart.yAxis->coordToPixel(value))});
  };
  for (const auto& [slot, value] : {std::pair(5.5, 900), {6.0, 300}, {6.0, 890}}) {
    move(slot, value);
  }
  page.SetRecentUnit(1);
  Paint();
  for (const auto& [slot, value] : {std::pair(5.0, 900), {0.0, 100}, {6.3, 200}}) {
    move(slot, value);
  }
  EXPECT_THAT(Said(spoken),
              testing::ElementsAre("900.0 W (avg.) for Monday", "700.0 W (avg.) for Sunday",
                                   "300.00 W (avg.) for Thursday", "200.00 W (avg.) for Wednesday",
                                   "300.00 W (avg.) for Thursday", "900.0 W (avg.) for Monday",
                                   "200.00 W (avg.) for Wednesday", "900.0 W (avg.) for Monday",
                                   "900.0 Wh (total) for Monday"));
}

TEST_F(RecentPageTest, IsDrawnOnceForAnyNumberOfRefreshesAndNotWhileHidden) {
  AddMeterOfWeek(std::vector<double>(7, 100));
  RecentPage page(*monitor, selection);
  Show(page);
  const QSignalSpy replots(&Chart(page), &QCustomPlot::afterReplot);
  for (int i = 0; i < 3; ++i) page.Refresh();
  Paint();
  EXPECT_EQ(replots.count(), 1);
  page.hide();
  page.Refresh();
  Paint();
  EXPECT_EQ(replots.count(), 1);
  Show(page);
  EXPECT_EQ(replots.count(), 2);
}

TEST_F(RecentPageTest, TimeLabelsNeitherOverlapNorLeaveTheChart) {
  Read(AddMeter("Kitchen"), 120, 5, 600);
  for (int interval = 0; interval < IntervalCount; ++interval) {
    Settings().RecentInterval = interval;
    RecentPage page(*monitor, selection);
    Show(page, {300, 400});
    const QCPAxis& axis = *Chart(page).xAxis;
    const QVector<QString> labels = axis.tickVectorLabels();
    ASSERT_GE(labels.size(), 2);
    double end = 0;
    for (qsizetype i = 0; i < labels.size(); ++i) {
      const double width = QFontMetrics(axis.tickLabelFont()).horizontalAdvance(labels[i]);
      const double left = axis.coordToPixel(axis.tickVector().at(i)) - width / 2;
      EXPECT_GE(left, end) << interval << labels[i].toStdString();
      end = left + width;
    }
    EXPECT_LE(end, Chart(page).width());
  }
}

struct PacketPageTest : PageFixture {
  static int Samples(PacketPage& page) {
    page.Refresh();
    QCoreApplication::processEvents();
    return Graph(page, "Volts").dataCount();
  }
};

TEST_F(PacketPageTest, DrawsBothWaveformsEachOnItsOwnAxis) {
  PacketPage page(*monitor, selection);
  Show(page);
  EXPECT_EQ(Text(page, "elaPacketHeader"), "No Data");
  clsKillAWatt& meter = AddMeter("Kitchen");
  Arrive(MeterFrame(1, {300, 512, 700, 512, 300}, {480, 498, 520, 498, 480}));
  EXPECT_EQ(Samples(page), 5);
  const QCPGraph& volts = Graph(page, "Volts");
  const QCPGraph& amps = Graph(page, "Amps");
  EXPECT_NE(volts.valueAxis(), amps.valueAxis());
  for (const QCPGraph* graph : {&volts, &amps}) {
    double key = 0;
    for (const QCPGraphData& point : *graph->data()) {
      EXPECT_EQ(point.key, ++key);
      EXPECT_TRUE(graph->valueAxis()->range().contains(point.value));
    }
  }
  // A reading without samples leaves the waveforms.
  meter.ProcessPacket(clsXBee(clock));
  clock.Advance(2000);
  Read(meter, 120, 1, 100);
  EXPECT_EQ(Samples(page), 5);
  EXPECT_EQ(Text(page, "elaPacketHeader"), "Sampled @ 8:10:02 PM");
}

TEST_F(PacketPageTest, WaveformsOfAnotherMeterOrARemovedOneAreNotKept) {
  const clsKillAWatt& kitchen = AddMeter("Kitchen");
  clsKillAWatt& office = AddMeter("Office");
  Read(office, 120, 1, 100);  // without samples
  Arrive(MeterFrame(1, {300, 512, 700}, {480, 498, 520}));
  PacketPage page(*monitor, selection);
  Show(page);
  for (const int tab : {1, 2, 1}) {
    selection.SelectTab(tab);
    EXPECT_EQ(Samples(page), tab == 1 ? 3 : 0);
  }
  monitor->Profile().Meters().Remove(office);
  monitor->Profile().Meters().Remove(kitchen);
  AddMeter("Cellar");
  EXPECT_EQ(Samples(page), 0);
}

}  // namespace
}  // namespace wattlark
