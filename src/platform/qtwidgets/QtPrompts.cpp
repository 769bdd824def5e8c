#include "platform/qtwidgets/QtPrompts.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QMessageBox>

#include "platform/qtwidgets/Controls.h"

namespace wattlark {

namespace {

constexpr int kLongestWord = 40;
constexpr int kMostLines = 20;
constexpr int kMostCharacters = 1000;
constexpr QChar kZeroWidthSpace(0x200B);

// A window that comes and goes by itself, as a notice does, would take its child along.
QWidget* Owner() {
  if (QWidget* dialog = QApplication::activeModalWidget()) return dialog;
  QWidget* active = QApplication::activeWindow();
  return active == nullptr || active->windowType() == Qt::Tool ? nullptr : active;
}

QMessageBox::Icon IconOf(PromptIcon icon) {
  switch (icon) {
    case PromptIcon::Information:
      return QMessageBox::Information;
    case PromptIcon::Exclamation:
      return QMessageBox::Warning;
    case PromptIcon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons ButtonsOf(PromptButtons buttons) {
  switch (buttons) {
    case PromptButtons::OKCancel:
      return QMessageBox::Ok | QMessageBox::Cancel;
    case PromptButtons::YesNo:
      return QMessageBox::Yes | QMessageBox::No;
    case PromptButtons::OK:
      break;
  }
  return QMessageBox::Ok;
}

QMessageBox::StandardButton ButtonOf(PromptAnswer answer) {
  switch (answer) {
    case PromptAnswer::Cancel:
      return QMessageBox::Cancel;
    case PromptAnswer::Yes:
      return QMessageBox::Yes;
    case PromptAnswer::No:
      return QMessageBox::No;
    case PromptAnswer::OK:
      break;
  }
  return QMessageBox::Ok;
}

PromptAnswer AnswerOf(int button, PromptButtons buttons) {
  if (button == QMessageBox::Yes) return PromptAnswer::Yes;
  if (buttons == PromptButtons::YesNo) return PromptAnswer::No;
  if (buttons == PromptButtons::OKCancel && button != QMessageBox::Ok) return PromptAnswer::Cancel;
  return PromptAnswer::OK;
}

}  // namespace

QString BoxText(const std::string& text) {
  const QString plain = QString::fromStdString(text).replace("\r\n", "\n").trimmed();
  QString result;
  int run = 0;
  for (const QChar c : plain) {
    run = c.isSpace() ? 0 : run + 1;
    if (run > kLongestWord && !c.isLowSurrogate()) {
      result += kZeroWidthSpace;
      run = 1;
    }
    result += c;
  }
  return result;
}

PromptAnswer QtPrompts::Ask(const PromptMessage& message) {
  QMessageBox box(Owner());
  box.setIcon(IconOf(message.icon));
  box.setWindowTitle(QString::fromStdString(message.caption));
  box.setTextFormat(Qt::PlainText);
  const QString text = BoxText(message.text);
  const QString shown = text.section('\n', 0, kMostLines - 1).left(kMostCharacters);
  if (shown.size() < text.size()) {
    box.setText(shown + "\n\u2026");
    box.setDetailedText(text);
  } else {
    box.setText(text);
  }
  box.setStandardButtons(ButtonsOf(message.buttons));
  for (QAbstractButton* button : box.buttons()) button->setMinimumHeight(ControlHeight(*button));
  box.setDefaultButton(ButtonOf(message.defaultAnswer));
  if (message.buttons == PromptButtons::YesNo) box.setEscapeButton(QMessageBox::No);
  return AnswerOf(box.exec(), message.buttons);
}

std::optional<std::string> QtPrompts::ChooseSaveFile(const SaveFileQuestion& question) {
  QString file = QFile::decodeName(question.file.c_str());
  for (;;) {
    file = QFileDialog::getSaveFileName(
        Owner(), QString::fromStdString(question.caption), file,
        QString::fromStdString(question.filter), nullptr,
        question.appends ? QFileDialog::DontConfirmOverwrite : QFileDialog::Options());
    if (file.isEmpty()) return std::nullopt;
    const bool isAgreed = !question.appends || QFile::exists(file) ||
                          Ask({file.toStdString() + "\nThis file does not exist. Create the file?",
                               question.caption, PromptIcon::Exclamation, PromptButtons::YesNo,
                               PromptAnswer::Yes}) == PromptAnswer::Yes;
    if (isAgreed) return QFile::encodeName(file).toStdString();
  }
}

bool QtPrompts::SignIn(const std::string& caption, std::string& userName, std::string& password) {
  return signIn && signIn(caption, userName, password, Owner());
}

UpdateAnswer QtPrompts::OfferUpdate(const UpdateOffer& offer) {
  return offerUpdate ? offerUpdate(offer, Owner()) : UpdateAnswer::RemindLater;
}

}  // namespace wattlark
