#include "app/forms/MeterTabs.h"

#include <QCursor>
#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QStyleOptionFocusRect>
#include <algorithm>

#include "app/forms/modForm.h"
#include "platform/qtwidgets/Theme.h"

namespace wattlark {

namespace {

constexpr int kWidestTab = 160;  // a longer name is cut; its tool tip has it whole
constexpr int kTabHeight = 32;
constexpr int kTabMargin = 12;
constexpr double kRadius = 6;

void PaintBottomLine(QPainter& painter, const QRect& area, const Theme& theme) {
  painter.fillRect(QRect(area.left(), area.bottom(), area.width(), 1), theme.hairline);
}

}  // namespace

MeterTabs::MeterTabs(MeterSelection& selection, QWidget* parent)
    : QTabBar(parent), selection_(selection) {
  setObjectName("tabKillAWatt");
  setAccessibleName("Meters");
  setDocumentMode(true);
  setDrawBase(false);
  setMouseTracking(true);
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
    setTabToolTip(index, PlainToolTip(name));
    setTabData(index, QString::fromStdString(tab.key));
    setTabVisible(index, tab.visible);
  }
  setCurrentIndex(selection_.SelectedTab());
  // Out of sight a strip tells nobody that its first tab has given it a height.
  updateGeometry();
}

QString MeterTabs::TabName(int index) const {
  return tabText(index).replace("&&", "&");
}

QFont MeterTabs::TabFont(int index) const {
  QFont result = font();
  result.setBold(index == currentIndex());
  return result;
}

// Every tab has room for its name in bold, so that a choice moves nothing.
QSize MeterTabs::tabSizeHint(int index) const {
  QFont bold = font();
  bold.setBold(true);
  const QFontMetrics metrics(bold);
  const int width = metrics.horizontalAdvance(TabName(index)) + 2 * kTabMargin;
  return {std::min(width, kWidestTab), std::max(metrics.height() + kTabMargin, kTabHeight)};
}

QSize MeterTabs::minimumTabSizeHint(int index) const {
  return tabSizeHint(index);
}

void MeterTabs::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  PaintBottomLine(painter, rect(), Theme::FromPalette(palette()));
  for (int index = 0; index < count(); ++index) {
    if (isTabVisible(index)) PaintTab(painter, index);
  }
}

void MeterTabs::PaintTab(QPainter& painter, int index) const {
  const Theme theme = Theme::FromPalette(palette());
  const QRect tab = tabRect(index);
  const bool isSelected = index == currentIndex();
  if (isSelected) {
    // The frame's lower edge lies below the tab: it is open towards the page.
    painter.setPen(QPen(theme.hairline, 1));
    painter.setBrush(theme.base);
    painter.setClipRect(rect());
    painter.drawRoundedRect(QRectF(tab).adjusted(0.5, 0.5, -0.5, kRadius + 1), kRadius, kRadius);
  }
  const QRect inner = tab.adjusted(kTabMargin / 2, 0, -kTabMargin / 2, 0);
  const bool isPointedAt = underMouse() && tab.contains(mapFromGlobal(QCursor::pos()));
  painter.setFont(TabFont(index));
  painter.setPen(isSelected || isPointedAt ? theme.text : theme.mutedText);
  painter.drawText(inner, Qt::AlignCenter | Qt::TextSingleLine,
                   painter.fontMetrics().elidedText(TabName(index), elideMode(), inner.width()));
  if (isSelected && hasFocus()) {
    QStyleOptionFocusRect option;
    option.initFrom(this);
    option.rect = tab.adjusted(4, 4, -4, -2);
    option.backgroundColor = theme.base;
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
  }
}

TabHeader::TabHeader(MeterTabs* tabs, QWidget* parent) : QWidget(parent) {
  setObjectName("elaHeader");
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(8, 4, 8, 0);
  row->addWidget(tabs);
}

void TabHeader::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  PaintBottomLine(painter, rect(), Theme::FromPalette(palette()));
}

}  // namespace wattlark
