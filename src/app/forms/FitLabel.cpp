#include "app/forms/FitLabel.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QStyle>
#include <algorithm>
#include <vector>

#include "platform/qtwidgets/Theme.h"

namespace wattlark {

namespace {

constexpr double kSmallFont = 0.9;
constexpr double kHeadingFont = 1.2;
constexpr double kUnitFont = 0.5;
constexpr double kLargestShareOfWidth = 0.2;
constexpr int kLeastPixels = 6;
constexpr int kLeastLargestHeight = 48;

int PixelSize(const QFont& font) {
  return QFontInfo(font).pixelSize();
}

QFont WithPixels(QFont font, int pixels) {
  font.setPixelSize(std::max(kLeastPixels, pixels));
  return font;
}

// A stretch of the text in one font: a single figure in its cell, or anything else as it comes.
struct Piece {
  QString text;
  QFont font;
  double width;
  double indent;  ///< of a figure within its cell
};

double FigureCell(const QFontMetricsF& metrics) {
  double widest = 0;
  for (char digit = '0'; digit <= '9'; ++digit) {
    widest = std::max(widest, metrics.horizontalAdvance(QLatin1Char(digit)));
  }
  return widest;
}

void AppendPieces(std::vector<Piece>& pieces, const QString& text, const QFont& font) {
  const QFontMetricsF metrics(font);
  const double cell = FigureCell(metrics);
  QString other;
  const auto flush = [&] {
    if (other.isEmpty()) return;
    pieces.push_back({other, font, metrics.horizontalAdvance(other), 0});
    other.clear();
  };
  for (const QChar character : text) {
    if (character < QLatin1Char('0') || character > QLatin1Char('9')) {
      other += character;
      continue;
    }
    flush();
    pieces.push_back({character, font, cell, (cell - metrics.horizontalAdvance(character)) / 2});
  }
  flush();
}

// Where the unit behind the number begins; the text's length when there is none.
qsizetype UnitStart(const QString& text) {
  for (qsizetype i = text.size(); i > 1; --i) {
    const QChar character = text.at(i - 1);
    if (character.isDigit()) break;
    if (character.isSpace()) return i - 1;
  }
  return text.size();
}

std::vector<Piece> Pieces(const QString& text, const QFont& font, bool smallUnit) {
  std::vector<Piece> pieces;
  const qsizetype unit = smallUnit ? UnitStart(text) : text.size();
  AppendPieces(pieces, text.left(unit), font);
  if (unit < text.size()) {
    QFont unitFont = WithPixels(font, static_cast<int>(PixelSize(font) * kUnitFont));
    unitFont.setWeight(QFont::DemiBold);
    AppendPieces(pieces, text.mid(unit), unitFont);
  }
  return pieces;
}

double WidthOf(const std::vector<Piece>& pieces) {
  double width = 0;
  for (const Piece& piece : pieces) width += piece.width;
  return width;
}

}  // namespace

FitLabel::FitLabel(const QString& objectName, Size size, Qt::Alignment alignment, QWidget* parent)
    : QLabel(parent), size_(size) {
  setObjectName(objectName);
  setTextFormat(Qt::PlainText);
  setAlignment(alignment | Qt::AlignVCenter);
  setSizePolicy(size == Size::Largest ? QSizePolicy::Ignored : QSizePolicy::Preferred,
                size == Size::Largest ? QSizePolicy::Expanding : QSizePolicy::Fixed);
}

void FitLabel::SetTone(Tone tone) {
  if (tone == tone_) return;
  tone_ = tone;
  update();
}

QFont FitLabel::FullFont() const {
  QFont full = font();
  const int pixels = PixelSize(full);
  switch (size_) {
    case Size::Small:
      return WithPixels(full, qRound(pixels * kSmallFont));
    case Size::Heading:
      full.setWeight(QFont::DemiBold);
      return WithPixels(full, qRound(pixels * kHeadingFont));
    case Size::Largest:
      full.setWeight(QFont::Bold);
      return WithPixels(full, std::max(pixels * 2, qRound(width() * kLargestShareOfWidth)));
    default:
      return full;
  }
}

bool FitLabel::IsFitting(const QFont& font) const {
  const QRect space = contentsRect();
  return QFontMetricsF(font).height() <= space.height() &&
         WidthOf(Pieces(text(), font, size_ == Size::Largest)) <= space.width();
}

QFont FitLabel::FittedFont() const {
  const QFont full = FullFont();
  if (IsFitting(full)) return full;
  int fits = kLeastPixels;
  int tooLarge = PixelSize(full);
  while (tooLarge - fits > 1) {
    const int middle = (fits + tooLarge) / 2;
    (IsFitting(WithPixels(full, middle)) ? fits : tooLarge) = middle;
  }
  return WithPixels(full, fits);
}

QSize FitLabel::sizeHint() const {
  // The largest one takes whatever width it is given.
  const double width = size_ == Size::Largest ? 0 : WidthOf(Pieces(text(), FullFont(), false));
  const QMargins margins = contentsMargins();
  return {qCeil(width) + margins.left() + margins.right(), minimumSizeHint().height()};
}

QSize FitLabel::minimumSizeHint() const {
  const int height =
      size_ == Size::Largest ? kLeastLargestHeight : qCeil(QFontMetricsF(FullFont()).height());
  const QMargins margins = contentsMargins();
  return {0, height + margins.top() + margins.bottom()};
}

void FitLabel::paintEvent(QPaintEvent* /*event*/) {
  const Theme theme = Theme::FromPalette(palette());
  const QColor color = tone_ == Tone::Warning ? theme.warning
                       : tone_ == Tone::Muted ? theme.mutedText
                                              : theme.text;
  const QFont font = FittedFont();
  const std::vector<Piece> pieces = Pieces(text(), font, size_ == Size::Largest);
  const QFontMetricsF metrics(font);
  const QRectF space(contentsRect());
  const double spare = space.width() - WidthOf(pieces);
  const Qt::Alignment side = QStyle::visualAlignment(layoutDirection(), alignment());
  double x = space.left();
  if (side & Qt::AlignRight) x += spare;
  if (side & Qt::AlignHCenter) x += spare / 2;
  const double baseline = space.top() + (space.height() - metrics.height()) / 2 + metrics.ascent();
  QPainter painter(this);
  painter.setPen(color);
  for (const Piece& piece : pieces) {
    painter.setFont(piece.font);
    painter.drawText(QPointF(x + piece.indent, baseline), piece.text);
    x += piece.width;
  }
}

}  // namespace wattlark
