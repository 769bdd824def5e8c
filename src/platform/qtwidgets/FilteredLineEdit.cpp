#include "platform/qtwidgets/FilteredLineEdit.h"

#include <QInputMethodEvent>
#include <QKeyEvent>
#include <utility>

namespace wattlark {

FilteredLineEdit::FilteredLineEdit(std::function<bool(char32_t)> accepts, QWidget* parent)
    : QLineEdit(parent), accepts_(std::move(accepts)) {}

QString FilteredLineEdit::Accepted(const QString& typed) const {
  QString accepted;
  for (const char32_t character : typed.toStdU32String()) {
    if (!QChar::isPrint(character) || accepts_(character)) {
      accepted += QString::fromUcs4(&character, 1);
    }
  }
  return accepted;
}

void FilteredLineEdit::keyPressEvent(QKeyEvent* event) {
  // Control and Alt together are how some systems deliver AltGr, which types.
  const Qt::KeyboardModifiers held = event->modifiers();
  const bool isCommand = (held & Qt::ControlModifier) != 0 && (held & Qt::AltModifier) == 0;
  if (isCommand || Accepted(event->text()) == event->text()) {
    QLineEdit::keyPressEvent(event);
  } else {
    event->accept();
  }
}

void FilteredLineEdit::inputMethodEvent(QInputMethodEvent* event) {
  QInputMethodEvent accepted(event->preeditString(), event->attributes());
  accepted.setCommitString(Accepted(event->commitString()), event->replacementStart(),
                           event->replacementLength());
  QLineEdit::inputMethodEvent(&accepted);
}

}  // namespace wattlark
