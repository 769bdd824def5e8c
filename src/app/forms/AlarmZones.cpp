#include "app/forms/AlarmZones.h"

#include <algorithm>

namespace wattlark {

namespace {

constexpr double kZoneEnd = 50000;

QCPItemRect* AddZone(QCustomPlot& plot, const char* name) {
  auto* zone = new QCPItemRect(&plot);
  zone->setObjectName(name);
  zone->setLayer("background");
  zone->setVisible(false);
  return zone;
}

}  // namespace

AlarmZones::AlarmZones(QCustomPlot& plot)
    : plot_(plot), lower_(AddZone(plot, "Lower")), upper_(AddZone(plot, "Upper")) {}

void AlarmZones::ApplyTheme(const Theme& theme) {
  edge_ = theme.warning;
  lower_->setBrush(theme.zone);
  upper_->setBrush(theme.zone);
}

void AlarmZones::Show(const std::optional<RecentChartView::Zones>& zones) {
  lower_->setVisible(zones.has_value());
  upper_->setVisible(zones.has_value());
  if (!zones) return;
  Place(*lower_, zones->lower, -kZoneEnd, zones->lower);
  Place(*upper_, kZoneEnd, zones->upper, zones->upper);
}

// A band may reach far beyond the plot; what is drawn of it does not, or its dashes take long.
void AlarmZones::Place(QCPItemRect& zone, double top, double bottom, double limit) {
  const QCPRange x = plot_.xAxis->range();
  const QCPRange y = plot_.yAxis->range();
  const auto near = [&y](double value) {
    return std::clamp(value, y.lower - y.size(), y.upper + y.size());
  };
  zone.topLeft->setCoords(x.lower - x.size(), near(top));
  zone.bottomRight->setCoords(x.upper + x.size(), near(bottom));
  // The dashed edge says where the limit is to those who do not see the band's colour.
  const bool isOnScreen = limit > y.lower && limit < y.upper;
  zone.setPen(isOnScreen ? QPen(edge_, 1, Qt::DashLine) : QPen(Qt::NoPen));
}

}  // namespace wattlark
