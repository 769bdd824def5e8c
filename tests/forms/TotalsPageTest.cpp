#include <QPushButton>
#include <QTableWidget>

#include "app/forms/TotalsPage.h"
#include "forms/PageFixture.h"
#include "support/NoValue.h"

namespace wattlark {
namespace {

struct TotalsPageTest : PageFixture {
  static std::string Cell(const QWidget& page, int row, int column) {
    return Find<QTableWidget>(page, "flxTotals").item(row, column)->text().toStdString();
  }
};

TEST_F(TotalsPageTest, ShowsTheSevenPeriodsInEachUnit) {
  Settings().CO2perKWh = 1.5;
  clsKillAWatt& meter = AddMeter("Kitchen");
  meter.Statistics().SetUsage(Today, 3200);
  meter.Statistics().SetUsage(ThisYear, NoValue);
  for (int period = 0; period < PeriodCount; ++period) {
    meter.Statistics().SetPeak(period, 12345.6);
    meter.Statistics().SetPeakTime(period, At("2026-11-14T18:22:09"));
  }
  Settings().TotalUnit = 2;
  TotalsPage page(*monitor, selection, prompts);
  EXPECT_EQ(page.TotalUnit(), 2);
  page.SetTotalUnit(0);
  Show(page, {300, 360});
  const auto& grid = Find<QTableWidget>(page, "flxTotals");
  const QRect last = grid.visualItemRect(grid.item(PeriodCount, 1));
  EXPECT_LE(last.bottom(), grid.viewport()->height());
  EXPECT_LE(last.right(), grid.viewport()->width());
  EXPECT_GE(Find(page, "elaReset").height(), 26);
  EXPECT_EQ(Cell(page, 1, 0), "Yesterday");
  EXPECT_EQ(Cell(page, PeriodCount, 0), "Since Reset");
  EXPECT_EQ(Cell(page, 0, 1), "Peak Power Demand");
  EXPECT_EQ(Cell(page, 6, 1), "12.346 kW @ 6:22:09 PM on 11/14/2026");
  Click(page, "elaTotalUnit3");
  EXPECT_EQ(Cell(page, 0, 1), "Total Production");
  EXPECT_EQ(Cell(page, 2, 1), "4.800 lbs");
  EXPECT_EQ(Cell(page, 5, 1), "---");
  EXPECT_EQ(Settings().TotalUnit, 3);
}

TEST_F(TotalsPageTest, AsksFirstAndResetsWhatIsShown) {
  TotalsPage page(*monitor, selection, prompts);
  Show(page);
  Click(page, "elaReset");
  EXPECT_TRUE(prompts.asked.empty()) << "without a meter";
  clsKillAWatt& meter = AddMeter("Kitchen");
  for (int unit = 0; unit < 4; ++unit) {
    for (const PromptAnswer answer : {PromptAnswer::No, PromptAnswer::Yes}) {
      SCOPED_TRACE(unit);
      meter.Statistics().SetUsage(SinceReset, 5000);
      meter.Statistics().SetPeak(SinceReset, 900);
      page.SetTotalUnit(unit);
      prompts.asked.clear();
      prompts.answers = {answer};
      Click(page, "elaReset");
      ASSERT_EQ(prompts.asked.size(), 1U);
      const PromptMessage& asked = prompts.asked.front();
      EXPECT_EQ(asked.text, unit == 0 ? "Are you sure you want to reset the peak demand?"
                                      : "Are you sure you want to reset the usage?");
      EXPECT_EQ(asked.caption, ApplicationTitle);
      EXPECT_EQ(asked.icon, PromptIcon::Exclamation);
      EXPECT_EQ(asked.buttons, PromptButtons::YesNo);
      EXPECT_EQ(asked.defaultAnswer, PromptAnswer::No);
      const bool isReset = answer == PromptAnswer::Yes;
      EXPECT_EQ(meter.Statistics().Usage(SinceReset), isReset && unit != 0 ? 0 : 5000);
      EXPECT_EQ(meter.Statistics().Peak(SinceReset), isReset && unit == 0 ? 0 : 900);
    }
  }
}

}  // namespace
}  // namespace wattlark
