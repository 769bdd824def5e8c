#include <QTableWidget>

#include "app/forms/TotalsPage.h"
#include "forms/PageFixture.h"

namespace wattlark {
namespace {

struct TotalsPageTest : PageFixture {
  static std::string Cell(const QWidget& page, int row, int column) {
    return Find<QTableWidget>(page, "flxTotals").item(row, column)->text().toStdString();
  }
};

TEST_F(TotalsPageTest, ShowsAllPeriodsInTheUnitThatIsChosen) {
  Settings().TotalUnit = 3;
  Settings().CO2perKWh = 1.5;
  MeterStatistics& statistics = AddMeter("Kitchen").Statistics();
  statistics.SetUsage(Today, 3200);
  statistics.SetPeak(ToDate, 12345.6);
  statistics.SetPeakTime(ToDate, At("2026-11-14T18:22:09"));
  TotalsPage page(*monitor, selection, prompts);
  page.Refresh();
  Show(page, {300, 360});
  const auto& grid = Find<QTableWidget>(page, "flxTotals");
  const QRect last = grid.visualItemRect(grid.item(PeriodCount, 1));
  EXPECT_LE(last.bottom(), grid.viewport()->height());
  EXPECT_LE(last.right(), grid.viewport()->width());
  EXPECT_EQ(Cell(page, 1, 0), "Yesterday");
  EXPECT_EQ(Cell(page, 0, 1), "Total Production");
  EXPECT_EQ(Cell(page, 2, 1), "4.800 lbs");
  Click(page, "elaTotalUnit0");
  EXPECT_EQ(Cell(page, 0, 1), "Peak Power Demand");
  EXPECT_EQ(Cell(page, 6, 0), "To Date");
  EXPECT_EQ(Cell(page, 6, 1), "12.346 kW @ 6:22:09 PM on 11/14/2026");
  EXPECT_EQ(Settings().TotalUnit, 0);
}

TEST_F(TotalsPageTest, AsksFirstAndResetsWhatIsShown) {
  TotalsPage page(*monitor, selection, prompts);
  Show(page);
  Click(page, "elaReset");
  EXPECT_TRUE(prompts.asked.empty()) << "without a meter";
  MeterStatistics& statistics = AddMeter("Kitchen").Statistics();
  for (int unit = 0; unit < 4; ++unit) {
    for (const PromptAnswer answer : {PromptAnswer::No, PromptAnswer::Yes}) {
      statistics.SetUsage(SinceReset, 5000);
      statistics.SetPeak(SinceReset, 900);
      page.SetTotalUnit(unit);
      prompts.asked.clear();
      prompts.answers = {answer};
      Click(page, "elaReset");
      EXPECT_THAT(prompts.asked, testing::ElementsAre(testing::FieldsAre(
                                     unit == 0 ? "Are you sure you want to reset the peak demand?"
                                               : "Are you sure you want to reset the usage?",
                                     "Wattlark", PromptIcon::Exclamation, PromptButtons::YesNo,
                                     PromptAnswer::No)));
      const bool isReset = answer == PromptAnswer::Yes;
      EXPECT_EQ(statistics.Usage(SinceReset), isReset && unit != 0 ? 0 : 5000) << unit;
      EXPECT_EQ(statistics.Peak(SinceReset), isReset && unit == 0 ? 0 : 900) << unit;
    }
  }
}

}  // namespace
}  // namespace wattlark
