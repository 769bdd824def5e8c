#include "app/forms/NotificationIcon.h"

#include <QCursor>
#include <utility>

namespace wattlark {

namespace {

constexpr int kDoubleClickMilliseconds = 500;

}  // namespace

NotificationIcon::NotificationIcon(QMenu& menu, Options options)
    : menu_(menu), options_(std::move(options)) {
  icon_.setObjectName("trayIcon");
  icon_.setContextMenu(&menu);
  tmrLeftButtonClick_.setObjectName("tmrLeftButtonClick");
  tmrLeftButtonClick_.setSingleShot(true);
  tmrLeftButtonClick_.setInterval(kDoubleClickMilliseconds);
  QObject::connect(&tmrLeftButtonClick_, &QTimer::timeout, this, [this] { options_.popUp(menu_); });
  QObject::connect(&icon_, &QSystemTrayIcon::activated, this,
                   [this](QSystemTrayIcon::ActivationReason reason) { OnActivated(reason); });
}

void NotificationIcon::Add(const TrayView& view) {
  isAdded_ = true;
  hadArea_ = options_.isAreaAvailable();
  Modify(view);
  icon_.show();
}

void NotificationIcon::Modify(const TrayView& view) {
  if (!isAdded_) return;
  if (view.image != shown_.image) icon_.setIcon(options_.icon(view.image));
  if (view.tooltip != shown_.tooltip) {
    icon_.setToolTip(QString::fromStdString(view.tooltip).replace("\r\n", "\n"));
  }
  shown_ = view;
}

void NotificationIcon::Delete() {
  isAdded_ = false;
  tmrLeftButtonClick_.stop();
  icon_.hide();
}

bool NotificationIcon::IsReachable() const {
  return isAdded_ && options_.isAreaAvailable();
}

void NotificationIcon::LookForArea() {
  if (!isAdded_) return;
  const bool hasArea = options_.isAreaAvailable();
  if (hasArea && !hadArea_) {
    icon_.hide();
    icon_.show();
  }
  hadArea_ = hasArea;
}

void NotificationIcon::PopUpAtPointer(QMenu& menu) {
  menu.popup(QCursor::pos());
}

void NotificationIcon::OnActivated(QSystemTrayIcon::ActivationReason reason) {
  // Some areas report a double click as such, others as two single ones.
  const bool isSecondClick = reason == QSystemTrayIcon::Trigger && tmrLeftButtonClick_.isActive();
  if (reason == QSystemTrayIcon::DoubleClick || isSecondClick) {
    tmrLeftButtonClick_.stop();
    options_.showWindow();
  } else if (reason == QSystemTrayIcon::Trigger) {
    tmrLeftButtonClick_.start();
  }
}

}  // namespace wattlark
