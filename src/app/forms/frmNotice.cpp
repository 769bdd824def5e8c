#include "app/forms/frmNotice.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QTextLayout>
#include <QTextOption>
#include <algorithm>
#include <cmath>

#include "app/HelpActions.h"
#include "app/forms/ClickLabel.h"
#include "config/WindowPlacement.h"
#include "platform/qtwidgets/Icons.h"
#include "platform/qtwidgets/Theme.h"

namespace wattlark {

namespace {

constexpr int kMargin = 16;
constexpr int kGap = 8;
constexpr int kBorder = 1;
constexpr int kIconSize = 16;
constexpr double kTextScale = 1.2;
constexpr auto kWrapping = QTextOption::WrapAtWordBoundaryOrAnywhere;
constexpr int kSmallestWidth = 320;
constexpr int kWidthInCharacters = 44;
// The click text is never placed above this.
constexpr int kClickTextTop = static_cast<int>(2220 / TwipsPerPixel);

// What the box wants beyond its lines, so that it does not scroll.
constexpr int kBoxSlack = 4;

QRect WorkArea() {
  const QScreen* screen = QGuiApplication::primaryScreen();
  return screen == nullptr ? QRect(0, 0, 640, 480) : screen->availableGeometry();
}

QColor ReadableOn(const QColor& ground, const QColor& preferred) {
  if (ContrastRatio(preferred, ground) >= 4.5) return preferred;
  return ContrastRatio(Qt::black, ground) >= ContrastRatio(Qt::white, ground) ? Qt::black
                                                                              : Qt::white;
}

// Of a text box that wraps where it has to.
int TextHeight(const QString& text, const QFont& font, int width) {
  double height = 0;
  for (const QString& paragraph : text.split('\n')) {
    QTextLayout layout(paragraph, font);
    QTextOption wrapping;
    wrapping.setWrapMode(kWrapping);
    layout.setTextOption(wrapping);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
      line.setLineWidth(width);
      height += line.height();
    }
    layout.endLayout();
  }
  return static_cast<int>(std::ceil(height)) + kBoxSlack;
}

class Sheet : public QWidget {
 public:
  using QWidget::QWidget;

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    const Theme theme = Theme::FromPalette(palette());
    QPainter painter(this);
    painter.fillRect(rect(), theme.mutedText);
    painter.fillRect(rect().adjusted(kBorder, kBorder, -kBorder, -kBorder), theme.base);
  }
};

}  // namespace

frmNotice::frmNotice(Desktop& desktop, Prompts& prompts, int slideMilliseconds)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      desktop_(desktop),
      prompts_(prompts),
      sheet_(new Sheet(this)) {
  setObjectName("frmNotice");
  setAttribute(Qt::WA_ShowWithoutActivating);
  setAttribute(Qt::WA_QuitOnClose, false);
  tmrScrollForm_.setObjectName("tmrScrollForm");
  tmrScrollForm_.setSingleShot(true);
  slide_.setDuration(slideMilliseconds);
  slide_.setEasingCurve(QEasingCurve::OutCubic);
  column_ = new QVBoxLayout(sheet_);
  column_->setContentsMargins(kBorder, kBorder, kBorder, kBorder);
  column_->setSpacing(0);
  BuildHeader();
  BuildText();
  connect(&tmrScrollForm_, &QTimer::timeout, this, [this] { SlideTo(0); });
  connect(&slide_, &QVariantAnimation::valueChanged, this,
          [this](const QVariant& height) { Place(height.toInt()); });
  connect(&slide_, &QVariantAnimation::finished, this, [this] { OnSlid(); });
}

void frmNotice::BuildHeader() {
  shpHeader_ = new QWidget;
  shpHeader_->setObjectName("shpHeader");
  shpHeader_->setAutoFillBackground(true);
  picAlarm_ = new QLabel;
  lblTitle_ = new QLabel;
  lblTitle_->setObjectName("lblTitle");
  lblTitle_->setTextFormat(Qt::PlainText);
  QFont bold = lblTitle_->font();
  bold.setBold(true);
  lblTitle_->setFont(bold);
  auto* row = new QHBoxLayout(shpHeader_);
  row->setContentsMargins(kMargin - kBorder, kGap, kMargin - kBorder, kGap);
  row->setSpacing(kGap);
  row->addWidget(picAlarm_);
  row->addWidget(lblTitle_, 1);
  column_->addWidget(shpHeader_);
}

void frmNotice::BuildText() {
  lblNoticeText_ = new QPlainTextEdit;
  lblNoticeText_->setObjectName("lblNoticeText");
  QFont larger = font();
  larger.setPixelSize(static_cast<int>(std::lround(fontInfo().pixelSize() * kTextScale)));
  lblNoticeText_->setFont(larger);
  lblNoticeText_->setReadOnly(true);
  lblNoticeText_->setFrameShape(QFrame::NoFrame);
  lblNoticeText_->setWordWrapMode(kWrapping);
  lblNoticeText_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  lblNoticeText_->setTabChangesFocus(true);
  lblNoticeText_->viewport()->setCursor(Qt::ArrowCursor);
  lblNoticeText_->viewport()->setAutoFillBackground(false);
  lblNoticeText_->document()->setDocumentMargin(0);
  lblClickText_ = new ClickLabel;
  lblClickText_->setObjectName("lblClickText");
  connect(lblClickText_, &QPushButton::clicked, this, [this] { lblClickText_Click(); });
  auto* body = new QVBoxLayout;
  body->setContentsMargins(kMargin - kBorder - kGap, kMargin, kMargin - kBorder, kMargin - kBorder);
  body->setSpacing(kGap);
  // The click text starts where the text does: its own padding lies in the margin.
  auto* textRow = new QHBoxLayout;
  textRow->setContentsMargins(kGap, 0, 0, 0);
  textRow->addWidget(lblNoticeText_);
  body->addLayout(textRow);
  auto* clickRow = new QHBoxLayout;
  clickRow->addWidget(lblClickText_);
  clickRow->addStretch(1);
  body->addLayout(clickRow);
  column_->addLayout(body);
}

void frmNotice::ScrollNotice(const NoticeContent& content) {
  const bool isUp =
      isVisible() && slide_.endValue().toInt() > 0 && slide_.state() == QAbstractAnimation::Stopped;
  Fill(content);
  Arrange();
  if (isUp) {
    Place(sheet_->height());
    tmrScrollForm_.start();
  } else {
    SlideTo(sheet_->height());
  }
  QAccessibleEvent alert(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

void frmNotice::Fill(const NoticeContent& content) {
  const QString title = QString::fromStdString(content.title);
  const QString text = QString::fromStdString(content.text).replace("\r\n", "\n").trimmed();
  address_ = content.address;
  owner_ = content.owner;
  tmrScrollForm_.stop();
  tmrScrollForm_.setInterval(std::max(0, content.displayMilliseconds));
  setWindowTitle(title);
  setAccessibleName(title);
  setAccessibleDescription(text);
  lblTitle_->setText(title);
  lblNoticeText_->setPlainText(text);
  lblNoticeText_->setAccessibleName(title);
  lblClickText_->setText(QString::fromStdString(content.clickText));
  lblClickText_->setAccessibleName(lblClickText_->text());
  lblClickText_->setVisible(!content.clickText.empty());
  ColorHeader(content.headerColor);
}

void frmNotice::ColorHeader(const QColor& color) {
  const QColor words = ReadableOn(color, QGuiApplication::palette().color(QPalette::ToolTipText));
  QPalette header = QGuiApplication::palette();
  header.setColor(QPalette::Window, color);
  header.setColor(QPalette::WindowText, words);
  shpHeader_->setPalette(header);
  const int side = std::max(kIconSize, fontMetrics().ascent());
  picAlarm_->setPixmap(TintedPixmap("alarm", words, QSize(side, side), devicePixelRatioF()));
}

// Width first, then as much height as the text needs and the work area has.
void frmNotice::Arrange() {
  const QRect area = WorkArea();
  const int wide = std::max(kSmallestWidth, fontMetrics().averageCharWidth() * kWidthInCharacters);
  const int width = std::min(wide, area.width());
  const int header = shpHeader_->sizeHint().height();
  const int click = lblClickText_->isHidden() ? 0 : kGap + lblClickText_->sizeHint().height();
  const int around = kBorder + header + kMargin + click + kMargin;
  const int needed =
      TextHeight(lblNoticeText_->toPlainText(), lblNoticeText_->font(), width - 2 * kMargin);
  const int least = kClickTextTop - kBorder - header - kMargin - kGap;
  // Whole lines only.
  const int line = lblNoticeText_->fontMetrics().lineSpacing();
  const int most = std::max(1, (area.height() - around - kBoxSlack) / line) * line + kBoxSlack;
  const bool fits = needed <= most;
  lblNoticeText_->setFixedHeight(std::min(std::max(needed, least), most));
  lblNoticeText_->setVerticalScrollBarPolicy(fits ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAsNeeded);
  lblNoticeText_->setFocusPolicy(fits ? Qt::NoFocus : Qt::StrongFocus);
  sheet_->setFixedWidth(width);
  column_->activate();
  sheet_->resize(width, column_->totalSizeHint().height());
}

void frmNotice::SlideTo(int height) {
  const int from = isVisible() ? this->height() : 1;
  slide_.stop();
  Place(from);
  slide_.setStartValue(from);
  slide_.setEndValue(height);
  slide_.start();
}

// What is not yet in view has not come up behind the work area's lower edge.
void frmNotice::Place(int height) {
  if (height <= 0) {
    hide();
    return;
  }
  const QRect area = WorkArea();
  setGeometry(area.right() + 1 - sheet_->width(), area.bottom() + 1 - height, sheet_->width(),
              height);
  show();
}

void frmNotice::OnSlid() {
  if (slide_.endValue().toInt() > 0) {
    tmrScrollForm_.start();
  } else {
    isGone_ = true;
    hide();
    deleteLater();
  }
}

void frmNotice::lblClickText_Click() {
  if (!address_.empty()) {
    OpenURL(address_, desktop_, prompts_);
  } else if (owner_ != nullptr) {
    owner_->showNormal();
    owner_->raise();
    owner_->activateWindow();
  }
  tmrScrollForm_.stop();
  SlideTo(0);
}

void frmNotice::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    tmrScrollForm_.stop();
    SlideTo(0);
  } else {
    QWidget::keyPressEvent(event);
  }
}

}  // namespace wattlark
