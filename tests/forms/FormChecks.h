#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QKeySequence>
#include <QLabel>
#include <QTest>
#include <set>
#include <stdexcept>

namespace wattlark {

/// The only widget of that type and name below `form`.
template <typename Widget = QWidget>
Widget& Find(const QWidget& form, const QString& name) {
  const auto found = form.findChildren<Widget*>(name);
  if (found.size() != 1) throw std::logic_error("not one " + name.toStdString());
  return *found.front();
}

inline void Click(const QWidget& form, const QString& button) {
  Find<QAbstractButton>(form, button).click();
}

/// Chooses an entry of a list by its text, as a user would.
inline void ChooseEntry(const QWidget& form, const QString& list, const QString& entry) {
  auto& box = Find<QComboBox>(form, list);
  const int index = box.findText(entry);
  ASSERT_NE(index, -1) << entry.toStdString();
  box.setCurrentIndex(index);
  emit box.activated(index);
}

/// Each control of the part has a spoken name and room for a finger, and each caption a key that is
/// not among `keys`.
inline void ExpectNamesAndKeys(const QWidget& part, std::set<QKeySequence>& keys) {
  for (const QWidget* control : part.findChildren<QWidget*>()) {
    const auto* label = qobject_cast<const QLabel*>(control);
    const auto* button = qobject_cast<const QAbstractButton*>(control);
    const QString caption = label != nullptr && label->buddy() != nullptr ? label->text()
                            : button != nullptr                           ? button->text()
                                                                          : QString();
    if (!caption.isEmpty()) {
      const QKeySequence key = QKeySequence::mnemonic(caption);
      EXPECT_FALSE(key.isEmpty()) << caption.toStdString();
      EXPECT_TRUE(keys.insert(key).second) << caption.toStdString();
    }
    bool isPartOfList = false;
    for (const QWidget* above = control->parentWidget(); above != nullptr;
         above = above->parentWidget()) {
      isPartOfList = isPartOfList || qobject_cast<const QComboBox*>(above) != nullptr;
    }
    if (control->focusPolicy() == Qt::NoFocus || isPartOfList) continue;
    EXPECT_FALSE(control->accessibleName().isEmpty()) << control->objectName().toStdString();
    EXPECT_GE(control->minimumHeight(), 26) << control->objectName().toStdString();
  }
}

}  // namespace wattlark
