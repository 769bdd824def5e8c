#include "app/forms/RecentPage.h"

#include <QVBoxLayout>

#include "app/RecentChartView.h"
#include "app/Units.h"
#include "app/forms/FitLabel.h"
#include "app/forms/PageFrame.h"
#include "app/forms/RecentChart.h"
#include "app/forms/SelectorGroup.h"

namespace wattlark {

RecentPage::RecentPage(Monitor& monitor, MeterSelection& selection, QWidget* parent)
    : QWidget(parent),
      monitor_(monitor),
      selection_(selection),
      elaRecentUnit_(SelectorGroup::Units("elaRecentUnit", this)),
      elaRecentInterval_(nullptr),
      elaRecentHeader_(
          new FitLabel("elaRecentHeader", FitLabel::Size::Heading, Qt::AlignLeft, this)),
      chtRecent_(new RecentChart(monitor.Regional(), this)) {
  // Made last, so that the tab key comes to it after the chart above it.
  elaRecentInterval_ = SelectorGroup::Intervals("elaRecentInterval", this);
  setObjectName("RecentPage");
  BuildLayout();
  const AppSettings& settings = monitor_.Profile().Settings();
  elaRecentUnit_->Show(settings.RecentUnit);
  elaRecentInterval_->Show(settings.RecentInterval);
  connect(elaRecentUnit_, &SelectorGroup::Chosen, this, [this](int unit) {
    monitor_.Profile().Settings().RecentUnit = unit;
    Refresh();
  });
  connect(elaRecentInterval_, &SelectorGroup::Chosen, this, [this](int interval) {
    monitor_.Profile().Settings().RecentInterval = interval;
    Refresh();
  });
  connect(chtRecent_, &RecentChart::PointReached, this, &RecentPage::hoverText);
  Refresh();
}

void RecentPage::BuildLayout() {
  QVBoxLayout* column = PageColumn(*this);
  column->addWidget(elaRecentUnit_);
  column->addSpacing(4);
  column->addWidget(elaRecentHeader_);
  column->addWidget(chtRecent_, 1);
  column->addWidget(elaRecentInterval_);
}

void RecentPage::Refresh() {
  const clsKillAWatt* meter = selection_.SelectedKillAWatt(false);
  if (meter == nullptr) return;
  const AppSettings& settings = monitor_.Profile().Settings();
  RecentChartView view = MakeRecentChartView(*meter, settings, monitor_.Regional(), monitor_.Now());
  elaRecentHeader_->setText(QString::fromStdString(view.header));
  chtRecent_->SetView(std::move(view), ChosenIndex(settings.RecentUnit, UnitCount),
                      ChosenIndex(settings.RecentInterval, IntervalCount));
}

int RecentPage::RecentUnit() const {
  return elaRecentUnit_->Selected();
}

void RecentPage::SetRecentUnit(int unit) {
  elaRecentUnit_->Select(unit);
}

int RecentPage::RecentInterval() const {
  return elaRecentInterval_->Selected();
}

void RecentPage::SetRecentInterval(int interval) {
  elaRecentInterval_->Select(interval);
}

}  // namespace wattlark
