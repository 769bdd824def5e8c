#include <qcustomplot.h>

#include "app/forms/PacketPage.h"
#include "forms/PageFixture.h"

namespace wattlark {
namespace {

struct PacketPageTest : PageFixture {
  static const QCPGraph& Graph(const QWidget& page, const QString& name) {
    return *Find<QCustomPlot>(page, "chtPacket").findChild<QCPGraph*>(name);
  }
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
  EXPECT_EQ(Text(page, "elaPacketHeader"), "Sampled @ 8:10:00 PM");
  const QCPGraph& volts = Graph(page, "Volts");
  const QCPGraph& amps = Graph(page, "Amps");
  for (const QCPGraph* graph : {&volts, &amps}) {
    const QCPRange range = graph->valueAxis()->range();
    EXPECT_EQ(range.lower, -range.upper);
    double key = 0;
    for (const QCPGraphData& point : *graph->data()) {
      EXPECT_EQ(point.key, ++key);
      EXPECT_TRUE(range.contains(point.value));
    }
  }
  EXPECT_NE(volts.valueAxis(), amps.valueAxis());
  EXPECT_EQ(volts.pen().style(), Qt::SolidLine);
  EXPECT_EQ(amps.pen().style(), Qt::DashLine);

  // A reading without samples leaves the waveforms.
  meter.ProcessPacket(clsXBee(clock));
  clock.Advance(2000);
  Read(meter, 120, 1, 100);
  EXPECT_EQ(Samples(page), 5);
  EXPECT_EQ(Text(page, "elaPacketHeader"), "Sampled @ 8:10:02 PM");
}

TEST_F(PacketPageTest, WaveformsOfAnotherMeterOrARemovedOneAreNotKept) {
  const clsKillAWatt& kitchen = AddMeter("Kitchen");
  const clsKillAWatt& office = AddMeter("Office");
  Arrive(MeterFrame(1, {300, 512, 700}, {480, 498, 520}));
  PacketPage page(*monitor, selection);
  Show(page);
  selection.SelectTab(1);
  ASSERT_EQ(Samples(page), 3);
  selection.SelectTab(2);
  EXPECT_EQ(Samples(page), 0);
  EXPECT_EQ(Text(page, "elaPacketHeader"), "No Data");
  monitor->Profile().Meters().Remove(office);
  selection.RefreshTabs();
  ASSERT_EQ(Samples(page), 3);
  monitor->Profile().Meters().Remove(kitchen);
  AddMeter("Cellar");
  EXPECT_EQ(Samples(page), 0);
}

}  // namespace
}  // namespace wattlark
