#pragma once

#include <QLineEdit>
#include <functional>

namespace wattlark {

/// A text box that discards typed characters which `accepts` refuses. Keys that edit or move are
/// no characters, and pasted or dropped text is not filtered.
class FilteredLineEdit : public QLineEdit {
  Q_OBJECT

 public:
  explicit FilteredLineEdit(std::function<bool(char32_t)> accepts, QWidget* parent = nullptr);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void inputMethodEvent(QInputMethodEvent* event) override;

 private:
  QString Accepted(const QString& typed) const;

  std::function<bool(char32_t)> accepts_;
};

}  // namespace wattlark
