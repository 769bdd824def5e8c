#include <qcustomplot.h>

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <cmath>

#include "app/forms/RecentPage.h"
#include "forms/PageFixture.h"
#include "support/NoValue.h"

namespace wattlark {
namespace {

class RecentPageTest : public PageFixture {
 protected:
  static QCustomPlot& Chart(const QWidget& page) { return Find<QCustomPlot>(page, "chtRecent"); }
  static QCPGraph& Graph(const QWidget& page, const QString& name) {
    auto* graph = Chart(page).findChild<QCPGraph*>(name);
    if (graph == nullptr) throw std::logic_error("no graph " + name.toStdString());
    return *graph;
  }
  static bool IsZoneVisible(const QWidget& page, const QString& name) {
    return Chart(page).findChild<QCPItemRect*>(name)->visible();
  }
  static void Paint() { QCoreApplication::processEvents(); }

  /// Fills the series of demand and usage of an interval.
  static void SetSeries(clsKillAWatt& meter, int interval, const std::vector<double>& values) {
    meter.Statistics().SetDemandRecent(interval, values);
    meter.Statistics().SetUsageRecent(interval, values);
  }
};

TEST_F(RecentPageTest, ShowsTheHeaderOfTheUnit) {
  Settings().Mils = 0.106;
  clsKillAWatt& meter = AddMeter("Kitchen");
  SetSeries(meter, Week, {500, 0, 500, 500, 500, 0, 500});
  Settings().RecentInterval = Week;
  RecentPage page(monitor_, selection_);
  Show(page);
  auto& header = Find<QLabel>(page, "elaRecentHeader");
  EXPECT_EQ(header.text().toStdString(), "357 W (average)");
  QTest::mouseClick(&Find<QPushButton>(page, "elaRecentUnit2"), Qt::LeftButton);
  // 2500 Wh at 0.106 a kWh.
  EXPECT_EQ(header.text().toStdString(), "$0.26500 (total)");
  EXPECT_EQ(Settings().RecentUnit, 2);
  QTest::mouseClick(&Find<QPushButton>(page, "elaRecentInterval0"), Qt::LeftButton);
  EXPECT_EQ(header.text().toStdString(), " (total)");
  EXPECT_EQ(Settings().RecentInterval, 0);
}

TEST_F(RecentPageTest, IgnoresChoicesOutsideTheRows) {
  Settings().RecentUnit = 4;
  Settings().RecentInterval = 6;
  RecentPage page(monitor_, selection_);
  EXPECT_EQ(page.RecentUnit(), 0);
  EXPECT_EQ(page.RecentInterval(), 0);
  page.SetRecentUnit(3);
  page.SetRecentUnit(4);
  page.SetRecentInterval(5);
  page.SetRecentInterval(-1);
  EXPECT_EQ(Settings().RecentUnit, 3);
  EXPECT_EQ(Settings().RecentInterval, 5);
}

TEST_F(RecentPageTest, PowerIsALineAndEnergyFilledSteps) {
  SetSeries(AddMeter("Kitchen"), Minute, std::vector<double>(60, 100));
  RecentPage page(monitor_, selection_);
  Show(page);
  const QCPGraph& graph = Graph(page, "values");
  EXPECT_EQ(graph.lineStyle(), QCPGraph::lsLine);
  EXPECT_EQ(graph.brush().style(), Qt::NoBrush);
  for (int unit = 1; unit <= 3; ++unit) {
    page.SetRecentUnit(unit);
    Paint();
    EXPECT_EQ(graph.lineStyle(), QCPGraph::lsStepLeft);
    EXPECT_EQ(graph.brush().style(), Qt::SolidPattern);
  }
}

TEST_F(RecentPageTest, MissingValuesAreGaps) {
  clsKillAWatt& meter = AddMeter("Kitchen");
  SetSeries(meter, Week, {1, 2, NoValue, 4, NoValue, 6, 7});
  Settings().RecentInterval = Week;
  RecentPage page(monitor_, selection_);
  Show(page);
  const auto gaps = [&] {
    std::vector<int> places;
    int place = 0;
    for (const QCPGraphData& point : *Graph(page, "values").data()) {
      if (std::isnan(point.value)) places.push_back(place);
      ++place;
    }
    return places;
  };
  EXPECT_EQ(gaps(), (std::vector<int>{2, 4}));
  // No line leads to the value between the gaps: it is a dot.
  ASSERT_EQ(Graph(page, "loners").dataCount(), 1);
  EXPECT_EQ(Graph(page, "loners").data()->constBegin()->value, 4);
  page.SetRecentUnit(1);
  Paint();
  EXPECT_EQ(gaps(), (std::vector<int>{2, 4}));
  EXPECT_EQ(Graph(page, "loners").dataCount(), 0);
}

struct ZoneCase {
  int unit;
  bool active;
  bool visible;
};

class ZoneTest : public RecentPageTest, public testing::WithParamInterface<ZoneCase> {};

TEST_P(ZoneTest, AreShownForPowerWithAnActiveAlarm) {
  const ZoneCase& c = GetParam();
  clsKillAWatt& meter = AddMeter("Kitchen");
  SetSeries(meter, Minute, std::vector<double>(60, 2000));
  meter.Alarm().SetAlarmActive(c.active);
  meter.Alarm().SetAlarmLowerLimit(100);
  meter.Alarm().SetAlarmUpperLimit(1500);
  RecentPage page(monitor_, selection_);
  Show(page);
  page.SetRecentUnit(c.unit);
  Paint();
  EXPECT_EQ(IsZoneVisible(page, "Lower"), c.visible);
  EXPECT_EQ(IsZoneVisible(page, "Upper"), c.visible);
  if (!c.visible) return;
  EXPECT_EQ(Chart(page).findChild<QCPItemRect*>("Lower")->topLeft->value(), 100);
  EXPECT_EQ(Chart(page).findChild<QCPItemRect*>("Upper")->bottomRight->value(), 1500);
}

INSTANTIATE_TEST_SUITE_P(UnitsAndAlarms, ZoneTest,
                         testing::Values(ZoneCase{0, true, true}, ZoneCase{0, false, false},
                                         ZoneCase{1, true, false}, ZoneCase{2, true, false},
                                         ZoneCase{3, true, false}));

TEST_F(RecentPageTest, SpeaksOfThePointUnderThePointerOnly) {
  ReadSteadily(AddMeter("Kitchen"), 600);
  RecentPage page(monitor_, selection_);
  Show(page, {340, 400});
  QCustomPlot& chart = Chart(page);
  const QSignalSpy spoken(&page, &RecentPage::hoverText);
  const double x = Graph(page, "values").data()->constBegin()->key + 59;
  const QPoint point(qRound(chart.xAxis->coordToPixel(x)), qRound(chart.yAxis->coordToPixel(600)));
  QTest::mouseMove(&chart, point - QPoint(100, 0));
  QTest::mouseMove(&chart, point + QPoint(0, 60));
  EXPECT_EQ(spoken.count(), 0);
  QTest::mouseMove(&chart, point + QPoint(2, 2));
  ASSERT_EQ(spoken.count(), 1);
  EXPECT_EQ(spoken.at(0).at(0).toString().toStdString(), "600.0 W (avg.) @ 8:10:01 PM");
  QTest::mouseMove(&chart, QPoint(2, 2));
  EXPECT_EQ(spoken.count(), 1);
}

TEST_F(RecentPageTest, APointOfStepsIsTheWholeBar) {
  clsKillAWatt& meter = AddMeter("Kitchen");
  Read(meter, 120, 5, 600);
  SetSeries(meter, Week, {NoValue, 2000, 100, 100, 100, 100, 900});
  Settings().RecentInterval = Week;
  Settings().RecentUnit = 1;
  RecentPage page(monitor_, selection_);
  Show(page, {340, 400});
  QCustomPlot& chart = Chart(page);
  const QSignalSpy spoken(&page, &RecentPage::hoverText);
  const auto at = [&](double slot, double value) {
    return QPoint(qRound(chart.xAxis->coordToPixel(chart.xAxis->range().lower + 0.5 + slot)),
                  qRound(chart.yAxis->coordToPixel(value)));
  };
  QTest::mouseMove(&chart, at(6, 1500));
  QTest::mouseMove(&chart, at(0, 1000));
  EXPECT_EQ(spoken.count(), 0);
  QTest::mouseMove(&chart, at(6.3, 200));
  ASSERT_EQ(spoken.count(), 1);
  EXPECT_EQ(spoken.at(0).at(0).toString().toStdString(), "900.0 Wh (total) for Monday");
}

TEST_F(RecentPageTest, ArrowKeysWalkFromPointToPoint) {
  clsKillAWatt& meter = AddMeter("Kitchen");
  Read(meter, 120, 5, 600);
  SetSeries(meter, Week, {NoValue, 200, NoValue, NoValue, NoValue, 700, 900});
  Settings().RecentInterval = Week;
  RecentPage page(monitor_, selection_);
  Show(page);
  QCustomPlot& chart = Chart(page);
  EXPECT_TRUE(chart.focusPolicy() & Qt::TabFocus);
  const QSignalSpy spoken(&page, &RecentPage::hoverText);
  for (const auto key : {Qt::Key_Left, Qt::Key_Left, Qt::Key_Left, Qt::Key_Left, Qt::Key_Right,
                         Qt::Key_Home, Qt::Key_End}) {
    QTest::keyClick(&chart, key);
  }
  std::vector<std::string> said;
  for (const auto& call : spoken) said.push_back(call.at(0).toString().toStdString());
  EXPECT_THAT(said,
              testing::ElementsAre("900.0 W (avg.) for Monday", "700.0 W (avg.) for Sunday",
                                   "200.00 W (avg.) for Wednesday", "700.0 W (avg.) for Sunday",
                                   "200.00 W (avg.) for Wednesday", "900.0 W (avg.) for Monday"));
}

class CountsPaints : public QObject {
 public:
  int count = 0;
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++count;
    return false;
  }
};

TEST_F(RecentPageTest, IsDrawnOnceForAnyNumberOfRefreshesAndNotWhileHidden) {
  clsKillAWatt& meter = AddMeter("Kitchen");
  Read(meter, 120, 5, 600);
  RecentPage page(monitor_, selection_);
  Show(page);
  QCustomPlot& chart = Chart(page);
  const int plottables = chart.plottableCount();
  CountsPaints paints;
  chart.installEventFilter(&paints);
  const QSignalSpy replots(&chart, &QCustomPlot::afterReplot);
  for (int i = 0; i < 3; ++i) page.Refresh();
  Paint();
  Paint();
  EXPECT_EQ(replots.count(), 1);
  EXPECT_EQ(paints.count, 1);
  page.hide();
  page.Refresh();
  Paint();
  EXPECT_EQ(replots.count(), 1);
  page.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&page));
  Paint();
  EXPECT_EQ(replots.count(), 2);
  EXPECT_EQ(chart.plottableCount(), plottables);
}

class TimeLabelTest : public RecentPageTest,
                      public testing::WithParamInterface<std::tuple<int, int>> {};

TEST_P(TimeLabelTest, NeitherOverlapNorLeaveTheChart) {
  const auto [interval, width] = GetParam();
  Read(AddMeter("Kitchen"), 120, 5, 600);
  Settings().RecentInterval = interval;
  RecentPage page(monitor_, selection_);
  Show(page, {width, 400});
  const QCustomPlot& chart = Chart(page);
  const QVector<double> ticks = chart.xAxis->tickVector();
  const QVector<QString> labels = chart.xAxis->tickVectorLabels();
  ASSERT_GE(labels.size(), 2);
  ASSERT_EQ(labels.size(), ticks.size());
  const QFontMetrics metrics(chart.xAxis->tickLabelFont());
  double end = 0;
  for (qsizetype i = 0; i < ticks.size(); ++i) {
    const double half = metrics.horizontalAdvance(labels[i]) / 2.0;
    const double centre = chart.xAxis->coordToPixel(ticks[i]);
    EXPECT_GE(centre - half, end) << labels[i].toStdString();
    end = centre + half;
  }
  EXPECT_LE(end, chart.width());
}

INSTANTIATE_TEST_SUITE_P(IntervalsAndWidths, TimeLabelTest,
                         testing::Combine(testing::Range(0, 6), testing::Values(300, 340, 900)));

TEST_F(RecentPageTest, FollowsThePalette) {
  SetSeries(AddMeter("Kitchen"), Minute, std::vector<double>(60, 100));
  RecentPage page(monitor_, selection_);
  QPalette palette;
  palette.setColor(QPalette::Base, Qt::white);
  palette.setColor(QPalette::Window, Qt::white);
  palette.setColor(QPalette::WindowText, Qt::black);
  page.setPalette(palette);
  Show(page);
  const QRect corner(Chart(page).geometry().topRight() - QPoint(2, 0), QSize(2, 2));
  const QColor line = Graph(page, "values").pen().color();
  EXPECT_EQ(page.grab(corner).toImage().pixelColor(0, 0), QColor(Qt::white));
  palette.setColor(QPalette::Base, Qt::black);
  palette.setColor(QPalette::Window, Qt::black);
  palette.setColor(QPalette::WindowText, Qt::white);
  page.setPalette(palette);
  Paint();
  EXPECT_EQ(page.grab(corner).toImage().pixelColor(0, 0), QColor(Qt::black));
  EXPECT_GT(Graph(page, "values").pen().color().lightness(), line.lightness());
}

}  // namespace
}  // namespace wattlark
