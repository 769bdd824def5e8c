#pragma once

#include <QLabel>
#include <string>

namespace wattlark {

/// Says, next to a field, why what it holds is not taken as it stands; a screen reader says it with
/// the field. It takes no room while there is nothing to say.
class FieldNote : public QLabel {
 public:
  /// Named after the field. Hidden at first.
  explicit FieldNote(QWidget& field);

  void Show(const std::string& text);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QWidget& field_;
};

}  // namespace wattlark
