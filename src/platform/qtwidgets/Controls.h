#pragma once

#include <QFontMetrics>
#include <QLineEdit>
#include <QWidget>
#include <algorithm>

namespace wattlark {

/// Height of a button or an entry field in the widget's font, in device-independent pixels: room
/// to aim at, in steps of 4.
inline int ControlHeight(const QWidget& widget) {
  constexpr int kLeast = 28;
  constexpr int kStep = 4;
  constexpr int kAroundText = 10;
  const int needed = QFontMetrics(widget.font()).height() + kAroundText;
  return std::max(kLeast, (needed + kStep - 1) / kStep * kStep);
}

/// Makes a box show dots for what is typed. Its text can then be pasted into it, but neither copied
/// nor dragged out of it, and no input method learns it.
inline void HidePassword(QLineEdit& box) {
  box.setEchoMode(QLineEdit::Password);
  box.setInputMethodHints(Qt::ImhHiddenText | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText |
                          Qt::ImhNoAutoUppercase);
}

}  // namespace wattlark
