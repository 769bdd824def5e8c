#pragma once

#include <QIcon>
#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>
#include <QTimer>
#include <functional>
#include <string>

#include "app/StatusViews.h"

namespace wattlark {

/// The icon in the notification area. A double click shows the main window; a single click, told
/// from it by `tmrLeftButtonClick`, and the right button open the menu.
class NotificationIcon : public QObject {
 public:
  struct Options {
    std::function<QIcon(const std::string& key)> icon;
    std::function<void()> showWindow;
    std::function<bool()> isAreaAvailable = &QSystemTrayIcon::isSystemTrayAvailable;
    std::function<void(QMenu& menu)> popUp = &PopUpAtPointer;
  };

  /// `menu` must outlive this object.
  NotificationIcon(QMenu& menu, Options options);

  /// Puts the icon into the area, now or as soon as there is one, until `Delete`.
  void Add(const TrayView& view);
  void Modify(const TrayView& view);
  void Delete();
  /// The icon is added and there is an area that shows it. Asks the system.
  bool IsReachable() const;
  /// To be called every few seconds: an area that came since the last call gets the icon.
  void LookForArea();

  static void PopUpAtPointer(QMenu& menu);

 private:
  void OnActivated(QSystemTrayIcon::ActivationReason reason);

  QMenu& menu_;
  Options options_;
  QSystemTrayIcon icon_{this};
  QTimer tmrLeftButtonClick_{this};
  TrayView shown_;
  bool isAdded_ = false;
  bool hadArea_ = false;
};

}  // namespace wattlark
