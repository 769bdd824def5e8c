#pragma once

#include <QPointer>

#include "app/Monitor.h"
#include "app/forms/frmNotice.h"

namespace wattlark {

/// The one place on screen where notices appear: a new one takes the place of the present one.
class Notices {
 public:
  /// Both must outlive this object.
  Notices(Desktop& desktop, Prompts& prompts) : desktop_(desktop), prompts_(prompts) {}
  ~Notices() { delete notice_; }
  Notices(const Notices&) = delete;
  Notices& operator=(const Notices&) = delete;

  void ScrollNotice(const NoticeContent& content);
  /// The alarms of one tick so far; a click brings up `owner`.
  void ShowAlarm(const AlarmNotice& notice, QWidget& owner);

 private:
  Desktop& desktop_;
  Prompts& prompts_;
  QPointer<frmNotice> notice_;
};

}  // namespace wattlark
