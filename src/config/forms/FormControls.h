#pragma once

#include <QComboBox>
#include <QDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QString>
#include <functional>
#include <span>
#include <string>

#include "config/ListEntries.h"

namespace wattlark {

// How the dialogs of the configuration are made: sizes in device-independent pixels, and controls
// that bear their name.

inline constexpr int DialogMargin = 16;
inline constexpr int DialogGap = 12;
inline constexpr int DialogRowGap = 8;

template <typename Control>
Control* Named(Control* control, const QString& name) {
  control->setObjectName(name);
  return control;
}

/// A caption without its mnemonic and colon, as a screen reader is to say it.
QString SpokenName(QString caption);
/// A grid with the dialogs' spacing, in `owner`.
QGridLayout* MakeGrid(QWidget* owner, int margin);
/// A captioned frame with a grid of its own.
QGroupBox* MakeFrame(const QString& caption, const QString& name, QGridLayout*& grid);
/// A label whose mnemonic leads to `control`, and whose text becomes its accessible name.
QLabel* MakeLabel(const QString& caption, QWidget* control);
/// Lets the wheel change a list only while it has the focus: someone who scrolls the page means the
/// page.
void GuardWheel(QComboBox& list);
/// A list of entries that carry numbers, or of mere texts. Guarded from the wheel.
QComboBox* MakeList(const QString& name, std::span<const ListEntry> entries);
QComboBox* MakeList(const QString& name, std::span<const char* const> entries);
/// The buttons "OK", which Enter presses, and "Cancel", which rejects the dialog.
QWidget* MakeOKCancel(QDialog& dialog, const std::function<void()>& onOK);
/// Gives every control below `form` the height that its font needs.
void FitHeights(QWidget& form);

/// A text box for a stored text: one that nobody touches keeps its bytes, whatever the box can show
/// of them.
class TextBox : public QLineEdit {
 public:
  explicit TextBox(const QString& name) { setObjectName(name); }

  void Show(const std::string& stored);
  std::string Entered() const;

 private:
  std::string stored_;
  QString shown_;
};

/// A text box that shows dots for a password and never gives it away: it can be typed and pasted,
/// not copied.
class PasswordBox : public TextBox {
 public:
  explicit PasswordBox(const QString& name);
};

}  // namespace wattlark
