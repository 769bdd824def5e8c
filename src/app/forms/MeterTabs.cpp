#include "app/forms/MeterTabs.h"

#include <QSignalBlocker>
#include <algorithm>

namespace wattlark {

namespace {

constexpr int kWidestTab = 160;  // a longer name is cut; its tool tip has it whole
constexpr int kTabHeight = 32;

}  // namespace

MeterTabs::MeterTabs(MeterSelection& selection, QWidget* parent)
    : QTabBar(parent), selection_(selection) {
  setObjectName("tabKillAWatt");
  setAccessibleName("Meters");
  setDocumentMode(true);
  setDrawBase(false);
  setExpanding(false);
  setUsesScrollButtons(true);
  setElideMode(Qt::ElideRight);
  connect(this, &QTabBar::currentChanged, this, [this](int tab) {
    selection_.SelectTab(tab);
    emit Chosen();
  });
}

void MeterTabs::ShowTabs() {
  const QSignalBlocker blocker(this);
  const std::vector<MeterTab> tabs = selection_.Tabs();
  while (count() > static_cast<int>(tabs.size())) removeTab(count() - 1);
  while (count() < static_cast<int>(tabs.size())) addTab(QString());
  for (int index = 0; index < count(); ++index) {
    const MeterTab& tab = tabs[static_cast<std::size_t>(index)];
    const QString name = QString::fromStdString(tab.caption);
    setTabText(index, QString(name).replace("&", "&&"));
    setTabToolTip(index, name);
    setTabData(index, QString::fromStdString(tab.key));
    setTabVisible(index, tab.visible);
  }
  setCurrentIndex(selection_.SelectedTab());
}

QSize MeterTabs::tabSizeHint(int index) const {
  const QSize size = QTabBar::tabSizeHint(index);
  return {std::min(size.width(), kWidestTab), std::max(size.height(), kTabHeight)};
}

QSize MeterTabs::minimumTabSizeHint(int index) const {
  return tabSizeHint(index);
}

}  // namespace wattlark
