#include <qcustomplot.h>

#include <QLabel>
#include <QSignalSpy>

#include "app/forms/PacketPage.h"
#include "forms/PageFixture.h"

namespace wattlark {
namespace {

class PacketPageTest : public PageFixture {
 protected:
  static QCPGraph& Graph(const QWidget& page, const QString& name) {
    return *Find<QCustomPlot>(page, "chtPacket").findChild<QCPGraph*>(name);
  }
  static std::string Header(const QWidget& page) {
    return Find<QLabel>(page, "elaPacketHeader").text().toStdString();
  }
  static void Paint() { QCoreApplication::processEvents(); }
};

TEST_F(PacketPageTest, SaysThatThereIsNothing) {
  PacketPage page(monitor_, selection_);
  Show(page);
  EXPECT_EQ(Header(page), "No Data");
  AddMeter("Kitchen");
  page.Refresh();
  EXPECT_EQ(Header(page), "No Data");
}

TEST_F(PacketPageTest, DrawsBothWaveformsEachOnItsOwnAxis) {
  AddMeter("Kitchen");
  Receive(1, {300, 512, 700, 512, 300}, {480, 498, 520, 498, 480});
  PacketPage page(monitor_, selection_);
  Show(page);
  EXPECT_EQ(Header(page), "Sampled @ 8:10:00 PM");
  const QCPGraph& volts = Graph(page, "Volts");
  const QCPGraph& amps = Graph(page, "Amps");
  for (const QCPGraph* graph : {&volts, &amps}) {
    QVector<double> keys;
    for (const QCPGraphData& point : *graph->data()) keys.append(point.key);
    EXPECT_EQ(keys, QVector<double>({1, 2, 3, 4, 5}));
    const QCPRange range = graph->valueAxis()->range();
    EXPECT_EQ(range.lower, -range.upper);
    for (const QCPGraphData& point : *graph->data()) EXPECT_TRUE(range.contains(point.value));
  }
  EXPECT_NE(volts.valueAxis(), amps.valueAxis());
  EXPECT_EQ(volts.pen().style(), Qt::SolidLine);
  EXPECT_EQ(amps.pen().style(), Qt::DashLine);
}

TEST_F(PacketPageTest, AReadingWithoutSamplesLeavesTheWaveforms) {
  clsKillAWatt& meter = AddMeter("Kitchen");
  Receive(1, {300, 512, 700}, {480, 498, 520});
  PacketPage page(monitor_, selection_);
  Show(page);
  meter.ProcessPacket(clsXBee(clock_));
  clock_.Advance(2000);
  Read(meter, 120, 1, 100);
  page.Refresh();
  Paint();
  EXPECT_EQ(Header(page), "Sampled @ 8:10:02 PM");
  EXPECT_EQ(Graph(page, "Volts").dataCount(), 3);
}

TEST_F(PacketPageTest, AnotherMetersWaveformsAreNotKept) {
  AddMeter("Kitchen");
  AddMeter("Office");
  Receive(1, {300, 512, 700}, {480, 498, 520});
  selection_.SelectTab(1);
  PacketPage page(monitor_, selection_);
  Show(page);
  ASSERT_EQ(Graph(page, "Volts").dataCount(), 3);
  selection_.SelectTab(2);
  page.Refresh();
  Paint();
  EXPECT_EQ(Header(page), "No Data");
  EXPECT_EQ(Graph(page, "Volts").dataCount(), 0);
}

TEST_F(PacketPageTest, ARemovedMetersWaveformsAreNotKept) {
  const clsKillAWatt& removed = AddMeter("Kitchen");
  Receive(1, {300, 512, 700}, {480, 498, 520});
  PacketPage page(monitor_, selection_);
  Show(page);
  ASSERT_EQ(Graph(page, "Volts").dataCount(), 3);
  monitor_.Profile().Meters().Remove(removed);
  AddMeter("Office");
  page.Refresh();
  Paint();
  EXPECT_EQ(Graph(page, "Volts").dataCount(), 0);
}

TEST_F(PacketPageTest, IsDrawnOnceForAnyNumberOfRefreshes) {
  AddMeter("Kitchen");
  Receive(1, {300, 512, 700}, {480, 498, 520});
  PacketPage page(monitor_, selection_);
  Show(page);
  const QSignalSpy replots(&Find<QCustomPlot>(page, "chtPacket"), &QCustomPlot::afterReplot);
  for (int i = 0; i < 3; ++i) page.Refresh();
  Paint();
  EXPECT_EQ(replots.count(), 1);
}

}  // namespace
}  // namespace wattlark
