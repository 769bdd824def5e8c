#include "update/forms/frmSoftwareUpdate.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "platform/qtwidgets/Controls.h"
#include "platform/qtwidgets/Icons.h"

namespace wattlark {

namespace {

constexpr int kMargin = 16;
constexpr int kGap = 8;
constexpr int kIconSize = 48;
constexpr int kAroundText = 24;
constexpr int kWidthInCharacters = 64;
constexpr int kNotesLines = 9;
constexpr double kTitleScale = 1.2;

QLabel* Text(const std::string& text, const QString& name) {
  auto* label = new QLabel(QString::fromStdString(text));
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

}  // namespace

frmSoftwareUpdate::frmSoftwareUpdate(const UpdateOffer& offer, QWidget* parent) : QDialog(parent) {
  setObjectName("frmSoftwareUpdate");
  setWindowTitle("Software Update");
  setWindowIcon(ApplicationIcon());
  txtReleaseNotes_ = new QPlainTextEdit(QString::fromStdString(offer.releaseNotes));
  txtReleaseNotes_->setObjectName("txtReleaseNotes");
  txtReleaseNotes_->setAccessibleName("Release Notes");
  txtReleaseNotes_->setPlaceholderText("There are no release notes.");
  txtReleaseNotes_->setReadOnly(true);
  txtReleaseNotes_->setTextInteractionFlags(Qt::TextSelectableByMouse |
                                            Qt::TextSelectableByKeyboard);
  txtReleaseNotes_->setTabChangesFocus(true);
  txtReleaseNotes_->document()->setDocumentMargin(kGap);
  auto* lblReleaseNotes = new QLabel("&Release Notes:");
  lblReleaseNotes->setObjectName("lblReleaseNotes");
  lblReleaseNotes->setBuddy(txtReleaseNotes_);

  auto* notes = new QVBoxLayout;
  notes->setSpacing(kGap / 2);
  notes->addWidget(lblReleaseNotes);
  notes->addWidget(txtReleaseNotes_, 1);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  column->setSpacing(kMargin);
  column->addWidget(BuildHeading(offer));
  column->addLayout(notes, 1);
  column->addWidget(BuildButtons());
  FitToFont();
  findChild<QPushButton*>("cmdCancel")->setFocus();
}

QWidget* frmSoftwareUpdate::BuildHeading(const UpdateOffer& offer) {
  picAppIcon_ = new QLabel;
  picAppIcon_->setObjectName("picAppIcon");
  picAppIcon_->setFixedSize(kIconSize, kIconSize);
  picAppIcon_->setPixmap(
      ApplicationIcon().pixmap(QSize(kIconSize, kIconSize), devicePixelRatioF()));
  lblTitle_ = Text(offer.title, "lblTitle");
  lblMessage_ = Text(offer.message, "lblMessage");
  auto* heading = new QWidget;
  auto* texts = new QVBoxLayout;
  texts->setSpacing(kGap);
  texts->addWidget(lblTitle_);
  texts->addWidget(lblMessage_);
  texts->addStretch(1);
  auto* row = new QHBoxLayout(heading);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(kMargin);
  row->addWidget(picAppIcon_, 0, Qt::AlignTop);
  row->addLayout(texts, 1);
  return heading;
}

QWidget* frmSoftwareUpdate::BuildButtons() {
  QPushButton* cmdSkip =
      Button("Skip This Version", "cmdSkipThisVersion", UpdateAnswer::SkipThisVersion);
  QPushButton* cmdCancel = Button("Remind Me Later", "cmdCancel", UpdateAnswer::RemindLater);
  QPushButton* cmdOK = Button("Download Update", "cmdOK", UpdateAnswer::Download);
  cmdCancel->setDefault(true);
  auto* bar = new QWidget;
  auto* row = new QHBoxLayout(bar);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(kGap);
  row->addWidget(cmdSkip);
  row->addStretch(1);
  row->addWidget(cmdCancel);
  row->addWidget(cmdOK);
  return bar;
}

QPushButton* frmSoftwareUpdate::Button(const QString& caption, const QString& name,
                                       UpdateAnswer answer) {
  auto* button = new QPushButton(caption, this);
  button->setObjectName(name);
  button->setAccessibleName(caption);
  connect(button, &QPushButton::clicked, this, [this, answer] {
    answer_ = answer;
    accept();
  });
  return button;
}

void frmSoftwareUpdate::FitToFont() {
  QFont title = font();
  title.setWeight(QFont::DemiBold);
  title.setPointSizeF(QFontInfo(font()).pointSizeF() * kTitleScale);
  if (lblTitle_->font() != title) lblTitle_->setFont(title);
  const QFontMetrics metrics = fontMetrics();
  txtReleaseNotes_->setMinimumSize(metrics.averageCharWidth() * kWidthInCharacters,
                                   metrics.lineSpacing() * kNotesLines);
  for (auto* button : findChildren<QPushButton*>()) {
    const int text = button->fontMetrics().horizontalAdvance(button->text());
    button->setMinimumSize(text + kAroundText, ControlHeight(*button));
  }
}

void frmSoftwareUpdate::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  const bool isFont = event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange;
  if (isFont && lblTitle_ != nullptr) FitToFont();
}

UpdateAnswer OfferUpdate(const UpdateOffer& offer, QWidget* owner) {
  frmSoftwareUpdate form(offer, owner);
  form.exec();
  return form.Answer();
}

}  // namespace wattlark
