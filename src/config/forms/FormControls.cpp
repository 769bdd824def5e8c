#include "config/forms/FormControls.h"

#include <QDialogButtonBox>
#include <QEvent>
#include <QPushButton>

#include "platform/qtwidgets/Controls.h"

namespace wattlark {

QString SpokenName(QString caption) {
  return caption.remove('&').remove(':');
}

QGridLayout* MakeGrid(QWidget* owner, int margin) {
  auto* grid = new QGridLayout(owner);
  grid->setContentsMargins(margin, margin, margin, margin);
  grid->setHorizontalSpacing(DialogGap);
  grid->setVerticalSpacing(DialogRowGap);
  return grid;
}

QGroupBox* MakeFrame(const QString& caption, const QString& name, QGridLayout*& grid) {
  auto* frame = Named(new QGroupBox(caption), name);
  grid = MakeGrid(frame, DialogGap);
  return frame;
}

QLabel* MakeLabel(const QString& caption, QWidget* control) {
  auto* label = new QLabel(caption);
  label->setBuddy(control);
  control->setAccessibleName(SpokenName(caption));
  return label;
}

void GuardWheel(QComboBox& list) {
  class Guard : public QObject {
   public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override {
      if (event->type() != QEvent::Wheel || static_cast<QWidget*>(watched)->hasFocus())
        return false;
      event->ignore();
      return true;
    }
  };
  list.setFocusPolicy(Qt::StrongFocus);
  list.installEventFilter(new Guard(&list));
}

QComboBox* MakeList(const QString& name, std::span<const ListEntry> entries) {
  auto* list = Named(new QComboBox, name);
  GuardWheel(*list);
  for (const ListEntry& entry : entries) list->addItem(entry.text, entry.number);
  return list;
}

QComboBox* MakeList(const QString& name, std::span<const char* const> entries) {
  auto* list = Named(new QComboBox, name);
  GuardWheel(*list);
  for (const char* entry : entries) list->addItem(entry);
  return list;
}

QWidget* MakeOKCancel(QDialog& dialog, const std::function<void()>& onOK) {
  auto* cmdOK = Named(new QPushButton("OK"), "cmdOK");
  auto* cmdCancel = Named(new QPushButton("Cancel"), "cmdCancel");
  cmdOK->setAccessibleName("OK");
  cmdCancel->setAccessibleName("Cancel");
  cmdOK->setDefault(true);
  QObject::connect(cmdOK, &QPushButton::clicked, &dialog, onOK);
  QObject::connect(cmdCancel, &QPushButton::clicked, &dialog, &QDialog::reject);
  auto* buttons = new QDialogButtonBox;
  buttons->addButton(cmdOK, QDialogButtonBox::AcceptRole);
  buttons->addButton(cmdCancel, QDialogButtonBox::RejectRole);
  return buttons;
}

void FitHeights(QWidget& form) {
  for (QWidget* control : form.findChildren<QWidget*>()) {
    // The text box within a list has the list's height.
    const bool isPart = qobject_cast<QComboBox*>(control->parentWidget()) != nullptr;
    if (control->focusPolicy() != Qt::NoFocus && !isPart) {
      control->setMinimumHeight(ControlHeight(*control));
    }
  }
}

void TextBox::Show(const std::string& stored) {
  stored_ = stored;
  const QString text = QString::fromStdString(stored);
  const bool isNew = text != this->text();
  setText(text);
  if (!isNew) emit textChanged(text);  // for whoever judges what is shown
  setCursorPosition(0);
  shown_ = this->text();
}

std::string TextBox::Entered() const {
  return text() == shown_ ? stored_ : text().toStdString();
}

PasswordBox::PasswordBox(const QString& name) : TextBox(name) {
  HidePassword(*this);
}

}  // namespace wattlark
