#include "app/forms/MainMenus.h"

#include <QApplication>
#include <QKeySequence>
#include <utility>

namespace wattlark {

namespace {

using Actions = MenuActions;

// What must be there for an item to be enabled.
enum class Group { Always, Publish, Pages, AddMeter, Meter };

}  // namespace

struct MainMenus::Item {
  const char* caption = nullptr;                       ///< null for a separator
  MenuActions::Action MenuActions::*action = nullptr;  ///< null for an item without one
  Group group = Group::Always;
  bool isCheckable = false;
  QKeySequence shortcut = {};
};

namespace {

using Item = MainMenus::Item;

const Item kSeparator;

const std::vector<Item>& FileItems() {
  static const std::vector<Item> items{
      {"Write Current Loads to the CSV Log File", &Actions::writeCSVLog, Group::Publish},
      {"Post Current Loads to Pachube", &Actions::postToPachube, Group::Publish},
      {"Post Current Loads to GoogleDoc Spreadsheet", &Actions::postToGoogleDocs, Group::Publish},
      {"Post Total Load to Google PowerMeter", &Actions::postToPowerMeter, Group::Publish},
      {"Tweet My Current Stats", &Actions::postToTwitter, Group::Publish},
      kSeparator,
      {"&Close", &Actions::hide, Group::Always, false, QKeySequence::Close},
      {"E&xit", &Actions::exit, Group::Always, false, QKeySequence::Quit},
  };
  return items;
}

const std::vector<Item>& EditItems() {
  static const std::vector<Item> items{{"Cu&t"}, {"&Copy"}, {"&Paste"}};
  return items;
}

const std::vector<Item>& ViewItems() {
  static const std::vector<Item> items{
      {"&Current Conditions", &Actions::showCurrentPage, Group::Pages, true},
      {"&Graph of Recent Values", &Actions::showRecentPage, Group::Pages, true},
      {"&Total Usage", &Actions::showTotalsPage, Group::Pages, true},
      {"&Last Kill-A-Watt Packet", &Actions::showPacketPage, Group::Pages, true},
      kSeparator,
      {"&Always on Top", &Actions::toggleAlwaysOnTop, Group::Always, true},
  };
  return items;
}

const std::vector<Item>& ToolsItems() {
  static const std::vector<Item> items{
      {"&Add a Kill-A-Watt Meter...", &Actions::addMeter, Group::AddMeter},
      {"&Edit Kill-A-Watt Properties...", &Actions::editMeter, Group::Meter},
      {"&Remove Selected Kill-A-Watt...", &Actions::removeMeter, Group::Meter},
      kSeparator,
      {"Reset Selected Kill-A-Watt &Data...", &Actions::resetData, Group::Meter},
      kSeparator,
      {"&Calibrate Selected Kill-A-Watt...", &Actions::calibrate, Group::Meter},
      {"Reset Kill-A-Watt Calibration to De&fault...", &Actions::resetCalibration, Group::Meter},
      kSeparator,
      {"&Options...", &Actions::showOptions},
  };
  return items;
}

const std::vector<Item>& HelpItems() {
  static const std::vector<Item> items{
      {"Wattlark Help (online)...", &Actions::openHelp, Group::Always, false,
       QKeySequence::HelpContents},
      {"Fennick Labs Website...", &Actions::openWebsite},
      kSeparator,
      {"Check for Wattlark Updates...", &Actions::checkForUpdates},
      kSeparator,
      {"About Wattlark...", &Actions::showAbout},
  };
  return items;
}

const std::vector<Item>& SysTrayItems() {
  static const std::vector<Item> items{
      {"&Show Main Window...", &Actions::showWindow},
      {"&Options...", &Actions::showOptions},
      kSeparator,
      {"Write Current Loads to the CSV Log File", &Actions::writeCSVLog, Group::Publish},
      {"Post Current Loads to Pachube", &Actions::postToPachube, Group::Publish},
      {"Post Current Loads to GoogleDoc Spreadsheet", &Actions::postToGoogleDocs, Group::Publish},
      {"Post Total Load to Google PowerMeter", &Actions::postToPowerMeter, Group::Publish},
      {"Tweet My Current Stats", &Actions::postToTwitter, Group::Publish},
      kSeparator,
      {"Wattlark Help (online)...", &Actions::openHelp},
      {"About Wattlark...", &Actions::showAbout},
      kSeparator,
      {"E&xit", &Actions::exit},
  };
  return items;
}

}  // namespace

MainMenus::MainMenus(QMenuBar& bar, MenuActions actions, std::function<MenuView()> state)
    : actions_(std::move(actions)), state_(std::move(state)) {
  Fill(*bar.addMenu("&File"), "mnuFile", FileItems(), false);
  Fill(*bar.addMenu("&Edit"), "mnuEdit", EditItems(), false);
  Fill(*bar.addMenu("&View"), "mnuView", ViewItems(), false);
  Fill(*bar.addMenu("&Tools"), "mnuTools", ToolsItems(), false);
  Fill(*bar.addMenu("&Help"), "mnuHelp", HelpItems(), false);
  Fill(mnuSysTray_, "mnuSysTray", SysTrayItems(), true);
  mnuSysTray_.setTitle("SysTray");
  Refresh();
}

void MainMenus::Fill(QMenu& menu, const QString& name, const std::vector<Item>& items,
                     bool isTray) {
  menu.setObjectName(name);
  for (std::size_t index = 0; index < items.size(); ++index) {
    const Item& item = items[index];
    QAction* action =
        item.caption == nullptr ? menu.addSeparator() : menu.addAction(QString(item.caption));
    action->setObjectName(name + QString::number(index));
    if (item.caption == nullptr) continue;
    action->setCheckable(item.isCheckable);
    action->setShortcut(item.shortcut);
    action->setMenuRole(QAction::NoRole);
    QObject::connect(action, &QAction::triggered, this,
                     [this, &item, isTray] { Choose(item, isTray); });
    entries_.push_back({action, &item});
  }
  QObject::connect(&menu, &QMenu::aboutToShow, this, [this] { Refresh(); });
}

void MainMenus::Choose(const Item& item, bool fromTray) {
  QWidget* dialog = QApplication::activeModalWidget();
  const bool opensNoWindow =
      item.group == Group::Publish || item.action == &MenuActions::showWindow;
  if (dialog != nullptr && !opensNoWindow) {
    // The menu of the notification area, and a menu bar that the desktop shows in its panel, are in
    // reach while a dialog waits for its answer.
    dialog->raise();
    dialog->activateWindow();
    return;
  }
  if (item.action == nullptr) return;
  if (IsEnabled(item, state_())) (actions_.*item.action)(fromTray);
  Refresh();
}

void MainMenus::Refresh() {
  const MenuView view = state_();
  for (const Entry& entry : entries_) entry.action->setEnabled(IsEnabled(*entry.item, view));
}

bool MainMenus::IsEnabled(const Item& item, const MenuView& view) const {
  if (item.action != nullptr && !(actions_.*item.action)) return false;
  switch (item.group) {
    case Group::Always:
      return true;
    case Group::Publish:
      return view.publish;
    case Group::Pages:
      return view.pages;
    case Group::AddMeter:
      return view.addMeter;
    case Group::Meter:
      return view.meter;
  }
  return false;
}

void MainMenus::CheckPage(int page) {
  Find(&Actions::showCurrentPage)->setChecked(page == 1);
  Find(&Actions::showRecentPage)->setChecked(page == 2);
  Find(&Actions::showTotalsPage)->setChecked(page == 3);
  Find(&Actions::showPacketPage)->setChecked(page == 4);
}

void MainMenus::CheckAlwaysOnTop(bool on) {
  Find(&Actions::toggleAlwaysOnTop)->setChecked(on);
}

QAction* MainMenus::Find(MenuActions::Action MenuActions::*action) const {
  for (const Entry& entry : entries_) {
    if (entry.item->action == action) return entry.action;
  }
  return nullptr;
}

}  // namespace wattlark
