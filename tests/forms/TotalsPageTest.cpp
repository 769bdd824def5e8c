#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>

#include "app/forms/TotalsPage.h"
#include "forms/PageFixture.h"
#include "support/NoValue.h"

namespace wattlark {
namespace {

class TotalsPageTest : public PageFixture {
 protected:
  static std::string Cell(const QWidget& page, int row, int column) {
    return Find<QTableWidget>(page, "flxTotals").item(row, column)->text().toStdString();
  }
};

TEST_F(TotalsPageTest, ShowsTheSevenPeriodsInEachUnit) {
  Settings().Mils = 0.106;
  Settings().CO2perKWh = 1.5;
  clsKillAWatt& meter = AddMeter("Kitchen");
  meter.Statistics().SetUsage(Today, 3200);
  meter.Statistics().SetUsage(ThisYear, NoValue);
  meter.Statistics().SetPeak(ToDate, 1840);
  meter.Statistics().SetPeakTime(ToDate, At("2026-11-14T18:22:09"));
  TotalsPage page(monitor_, selection_, prompts_);
  page.Refresh();
  Show(page);
  const std::vector<std::string> labels{"Yesterday", "Today",   "This Week",  "This Month",
                                        "This Year", "To Date", "Since Reset"};
  for (int row = 1; row <= PeriodCount; ++row) {
    EXPECT_EQ(Cell(page, row, 0), labels[static_cast<std::size_t>(row - 1)]);
  }
  EXPECT_EQ(Cell(page, 0, 1), "Peak Power Demand");
  EXPECT_EQ(Cell(page, 6, 1), "1.8400 kW @ 6:22:09 PM on 11/14/2026");
  struct {
    const char* button;
    const char *header, *today, *thisYear;
  } const kUnits[]{{"elaTotalUnit1", "Total Usage", "3.200 kWh", "--- Wh"},
                   {"elaTotalUnit2", "Total Cost", "$0.3392", "$ ---"},
                   {"elaTotalUnit3", "Total Production", "4.800 lbs", "---"}};
  for (const auto& unit : kUnits) {
    QTest::mouseClick(&Find<QPushButton>(page, unit.button), Qt::LeftButton);
    EXPECT_EQ(Cell(page, 0, 1), unit.header);
    EXPECT_EQ(Cell(page, 2, 1), unit.today);
    EXPECT_EQ(Cell(page, 5, 1), unit.thisYear);
  }
  EXPECT_EQ(Settings().TotalUnit, 3);
}

TEST_F(TotalsPageTest, IgnoresUnitsOutsideTheRow) {
  Settings().TotalUnit = -3;
  TotalsPage page(monitor_, selection_, prompts_);
  EXPECT_EQ(page.TotalUnit(), 0);
  page.SetTotalUnit(4);
  EXPECT_EQ(page.TotalUnit(), 0);
  page.SetTotalUnit(2);
  EXPECT_EQ(Settings().TotalUnit, 2);
}

TEST_F(TotalsPageTest, AllRowsAreOnScreenInTheSmallestPage) {
  clsKillAWatt& meter = AddMeter("Kitchen");
  for (int period = 0; period < PeriodCount; ++period) {
    meter.Statistics().SetPeak(period, 12345.6);
    meter.Statistics().SetPeakTime(period, At("2026-11-14T18:22:09"));
  }
  TotalsPage page(monitor_, selection_, prompts_);
  Show(page, {300, 360});
  const auto& grid = Find<QTableWidget>(page, "flxTotals");
  const QRect last = grid.visualItemRect(grid.item(PeriodCount, 1));
  EXPECT_LE(last.bottom(), grid.viewport()->height());
  EXPECT_LE(last.right(), grid.viewport()->width());
  EXPECT_GE(Find(page, "elaReset").height(), 26);
}

struct ResetCase {
  int unit;
  PromptAnswer answer;
  const char* question;
  double usage, peak;  ///< since reset, after the answer
};

class ResetTest : public TotalsPageTest, public testing::WithParamInterface<ResetCase> {};

TEST_P(ResetTest, AsksFirstAndResetsWhatIsShown) {
  const ResetCase& c = GetParam();
  clsKillAWatt& meter = AddMeter("Kitchen");
  meter.Statistics().SetUsage(SinceReset, 5000);
  meter.Statistics().SetPeak(SinceReset, 900);
  Settings().TotalUnit = c.unit;
  TotalsPage page(monitor_, selection_, prompts_);
  Show(page);
  prompts_.answers = {c.answer};
  QTest::mouseClick(&Find<QPushButton>(page, "elaReset"), Qt::LeftButton);
  ASSERT_EQ(prompts_.asked.size(), 1U);
  const PromptMessage& asked = prompts_.asked.front();
  EXPECT_EQ(asked.text, c.question);
  EXPECT_EQ(asked.caption, ApplicationTitle);
  EXPECT_EQ(asked.icon, PromptIcon::Exclamation);
  EXPECT_EQ(asked.buttons, PromptButtons::YesNo);
  EXPECT_EQ(asked.defaultAnswer, PromptAnswer::No);
  EXPECT_EQ(meter.Statistics().Usage(SinceReset), c.usage);
  EXPECT_EQ(meter.Statistics().Peak(SinceReset), c.peak);
}

constexpr const char* kPeakQuestion = "Are you sure you want to reset the peak demand?";
constexpr const char* kUsageQuestion = "Are you sure you want to reset the usage?";

INSTANTIATE_TEST_SUITE_P(UnitsAndAnswers, ResetTest,
                         testing::Values(ResetCase{0, PromptAnswer::Yes, kPeakQuestion, 5000, 0},
                                         ResetCase{0, PromptAnswer::No, kPeakQuestion, 5000, 900},
                                         ResetCase{1, PromptAnswer::Yes, kUsageQuestion, 0, 900},
                                         ResetCase{1, PromptAnswer::No, kUsageQuestion, 5000, 900},
                                         ResetCase{2, PromptAnswer::Yes, kUsageQuestion, 0, 900},
                                         ResetCase{3, PromptAnswer::Yes, kUsageQuestion, 0, 900}));

TEST_F(TotalsPageTest, AsksNothingWithoutMeters) {
  TotalsPage page(monitor_, selection_, prompts_);
  Show(page);
  QTest::mouseClick(&Find<QPushButton>(page, "elaReset"), Qt::LeftButton);
  EXPECT_TRUE(prompts_.asked.empty());
}

}  // namespace
}  // namespace wattlark
