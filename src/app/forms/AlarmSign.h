#pragma once

#include <QWidget>

class QLabel;

namespace wattlark {

/// `picAlarm`: a warning sign and the word "Alarm". Keeps its place when hidden.
class AlarmSign : public QWidget {
 public:
  explicit AlarmSign(QWidget* parent);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void SetPicture();

  QLabel* picture_;
};

}  // namespace wattlark
