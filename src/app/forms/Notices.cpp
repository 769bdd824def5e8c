#include "app/forms/Notices.h"

#include <QGuiApplication>
#include <QPalette>

namespace wattlark {

namespace {

constexpr int kAlarmMilliseconds = 7000;

}  // namespace

void Notices::ScrollNotice(const NoticeContent& content) {
  if (notice_ == nullptr || notice_->IsGone()) notice_ = new frmNotice(desktop_, prompts_);
  notice_->ScrollNotice(content);
}

void Notices::ShowAlarm(const AlarmNotice& notice, QWidget& owner) {
  ScrollNotice({.title = "Alarm!",
                .text = notice.text,
                .clickText = "Click here for details...",
                .address = "",
                .headerColor = QGuiApplication::palette().color(QPalette::ToolTipBase),
                .displayMilliseconds = kAlarmMilliseconds,
                .owner = &owner});
}

}  // namespace wattlark
