#pragma once

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QObject>
#include <functional>
#include <vector>

#include "app/MenuView.h"

namespace wattlark {

/// What the menu items do, one function each. The item of an empty one is disabled. `fromTray` says
/// that the item was chosen in the notification area's menu.
struct MenuActions {
  using Action = std::function<void(bool fromTray)>;

  Action writeCSVLog;
  Action postToPachube;
  Action postToGoogleDocs;
  Action postToPowerMeter;
  Action postToTwitter;
  Action hide;
  Action exit;
  Action showCurrentPage;
  Action showRecentPage;
  Action showTotalsPage;
  Action showPacketPage;
  Action toggleAlwaysOnTop;
  Action addMeter;
  Action editMeter;
  Action removeMeter;
  Action resetData;
  Action calibrate;
  Action resetCalibration;
  Action showOptions;
  Action openHelp;
  Action openWebsite;
  Action checkForUpdates;
  Action showAbout;
  Action showWindow;
};

/// The menu bar and the notification area's menu. Menus are named "mnuFile", "mnuEdit", "mnuView",
/// "mnuTools", "mnuHelp" and "mnuSysTray", their items by the menu's name and their index.
class MainMenus : public QObject {
 public:
  /// `state` is asked whenever a menu opens. `bar` must outlive this object.
  MainMenus(QMenuBar& bar, MenuActions actions, std::function<MenuView()> state);

  QMenu& TrayMenu() { return mnuSysTray_; }
  /// Enables what the present state allows.
  void Refresh();
  void CheckPage(int page);  ///< 1..4
  void CheckAlwaysOnTop(bool on);

  struct Item;

 private:
  struct Entry {
    QAction* action;
    const Item* item;
  };

  void Fill(QMenu& menu, const QString& name, const std::vector<Item>& items, bool isTray);
  void Choose(const Item& item, bool fromTray);
  bool IsEnabled(const Item& item, const MenuView& view) const;
  QAction* Find(MenuActions::Action MenuActions::*action) const;

  MenuActions actions_;
  std::function<MenuView()> state_;
  QMenu mnuSysTray_;
  std::vector<Entry> entries_;
};

}  // namespace wattlark
