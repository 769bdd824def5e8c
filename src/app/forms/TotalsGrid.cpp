#include "app/forms/TotalsGrid.h"

#include <QEvent>
#include <QFontMetrics>
#include <QHeaderView>
#include <QPainter>
#include <QStyledItemDelegate>
#include <algorithm>

#include "app/forms/PageFrame.h"

namespace wattlark {

namespace {

constexpr int kColumns = 2;
constexpr int kPadding = 4;
constexpr int kHeaderHeight = 28;
constexpr int kLeastRowHeight = 28;
constexpr int kLargestRowHeight = 48;
constexpr int kLeastWidth = 200;
constexpr int kLeastPixels = 6;
constexpr double kSmallFont = 0.85;
constexpr const char* kTimeMark = " @ ";

QFont ValueFont(QFont font) {
  font.setWeight(QFont::DemiBold);
  return font;
}

QFont SmallFont(QFont font) {
  font.setPixelSize(std::max(8, qRound(QFontInfo(font).pixelSize() * kSmallFont)));
  return font;
}

// A value and the time behind it, which may be missing.
struct Parts {
  QString value;
  QString time;
};

Parts Split(const QString& text) {
  const qsizetype mark = text.indexOf(kTimeMark);
  return mark < 0 ? Parts{text, {}} : Parts{text.left(mark), text.mid(mark + 1)};
}

int WidthOf(const QFont& font, const QString& text) {
  return QFontMetrics(font).horizontalAdvance(text);
}

// Smaller where the text would be cut.
void DrawFitted(QPainter& painter, const QRect& space, int flags, QFont font, const QString& text) {
  int pixels = QFontInfo(font).pixelSize();
  while (pixels > kLeastPixels && WidthOf(font, text) > space.width()) font.setPixelSize(--pixels);
  painter.setFont(font);
  painter.drawText(space, flags | Qt::TextSingleLine, text);
}

}  // namespace

class TotalsGrid::Cells : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override {
    const Theme theme = Theme::FromPalette(option.palette);
    painter->save();
    painter->setPen(theme.hairline);
    painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
    const QRect space = option.rect.adjusted(kPadding, 0, -kPadding, -1);
    const QString text = index.data().toString();
    const Qt::Alignment side = QStyle::visualAlignment(
        option.direction, index.column() == 0 ? Qt::AlignLeft : Qt::AlignRight);
    const int flags = static_cast<int>(side | Qt::AlignVCenter);
    if (index.row() == 0) {
      painter->setPen(theme.mutedText);
      DrawFitted(*painter, space, flags, option.font, text);
    } else if (index.column() == 0) {
      painter->setPen(theme.text);
      DrawFitted(*painter, space, flags, option.font, text);
    } else {
      PaintValue(*painter, option, space, side, Split(text), theme);
    }
    if ((option.state & QStyle::State_HasFocus) != 0) {
      PaintFocus(*painter, *option.widget, option.rect.adjusted(0, 1, 0, -2), theme);
    }
    painter->restore();
  }

 private:
  void PaintValue(QPainter& painter, const QStyleOptionViewItem& option, const QRect& space,
                  Qt::Alignment side, const Parts& parts, const Theme& theme) const {
    const QFont small = SmallFont(option.font);
    const QFont font = ValueFont(option.font);
    QRect value = space;
    QRect time = space;
    const int flags = static_cast<int>(side | Qt::AlignVCenter);
    if (!parts.time.isEmpty()) {
      const int first = QFontMetrics(font).height();
      const int second = QFontMetrics(small).height();
      value.setTop(space.top() + (space.height() - first - second) / 2);
      value.setHeight(first);
      time.setTop(value.bottom() + 1);
      time.setHeight(second);
    }
    painter.setPen(theme.text);
    DrawFitted(painter, value, flags, font, parts.value);
    if (parts.time.isEmpty()) return;
    painter.setPen(theme.mutedText);
    DrawFitted(painter, time, flags, small, parts.time);
  }
};

TotalsGrid::TotalsGrid(QWidget* parent) : QTableWidget(PeriodCount + 1, kColumns, parent) {
  setObjectName("flxTotals");
  setAccessibleName("Totals");
  setItemDelegate(new Cells(this));
  setFrameShape(QFrame::NoFrame);
  setShowGrid(false);
  setEditTriggers(NoEditTriggers);
  setSelectionMode(NoSelection);
  setTabKeyNavigation(false);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  horizontalHeader()->hide();
  horizontalHeader()->setMinimumSectionSize(1);
  horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  for (int row = 0; row <= PeriodCount; ++row) {
    for (int column = 0; column < kColumns; ++column) {
      setItem(row, column, new QTableWidgetItem);
    }
  }
  setCurrentCell(1, 1);
}

void TotalsGrid::SetView(const TotalsGridView& view) {
  SetCell(0, 1, QString::fromStdString(view.header));
  for (int period = 0; period < PeriodCount; ++period) {
    const TotalsGridView::Row& row = view.rows[static_cast<std::size_t>(period)];
    SetCell(period + 1, 0, QString::fromStdString(row.label));
    SetCell(period + 1, 1, QString::fromStdString(row.value));
  }
  Arrange();
}

void TotalsGrid::SetCell(int row, int column, const QString& text) {
  item(row, column)->setText(text);
}

void TotalsGrid::Arrange() {
  int labels = 0;
  for (int row = 1; row <= PeriodCount; ++row) {
    labels = std::max(labels, WidthOf(font(), item(row, 0)->text()));
  }
  const int firstColumn = std::min(labels + 4 * kPadding, viewport()->width() / 2);
  const int secondColumn = viewport()->width() - firstColumn;
  bool isStacked = false;
  for (int row = 1; row <= PeriodCount; ++row) {
    isStacked = isStacked || !Split(item(row, 1)->text()).time.isEmpty();
  }
  if (isStacked != isStacked_) {
    isStacked_ = isStacked;
    updateGeometry();
  }
  setColumnWidth(0, firstColumn);
  setColumnWidth(1, secondColumn);
  const int perRow = (viewport()->height() - kHeaderHeight) / PeriodCount;
  const int least = (minimumSizeHint().height() - kHeaderHeight) / PeriodCount;
  setRowHeight(0, kHeaderHeight);
  for (int row = 1; row <= PeriodCount; ++row) {
    setRowHeight(row, std::clamp(perRow, least, std::max(least, kLargestRowHeight)));
  }
}

QSize TotalsGrid::minimumSizeHint() const {
  const int stacked =
      QFontMetrics(ValueFont(font())).height() + QFontMetrics(SmallFont(font())).height() + 2;
  const int row = std::max(kLeastRowHeight, isStacked_ ? stacked : 0);
  return {kLeastWidth, kHeaderHeight + PeriodCount * row};
}

void TotalsGrid::resizeEvent(QResizeEvent* event) {
  QTableWidget::resizeEvent(event);
  Arrange();
}

void TotalsGrid::changeEvent(QEvent* event) {
  QTableWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange) Arrange();
}

}  // namespace wattlark
