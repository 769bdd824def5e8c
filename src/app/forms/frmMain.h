#pragma once

#include <QMainWindow>
#include <QTimer>
#include <functional>
#include <string>
#include <vector>

#include "app/FirstStart.h"
#include "app/MeterActions.h"
#include "app/MeterSelection.h"
#include "app/Monitor.h"
#include "app/forms/FirstStartPanel.h"
#include "app/forms/MainArea.h"
#include "app/forms/MainMenus.h"
#include "app/forms/MeterTabs.h"
#include "app/forms/NotificationIcon.h"
#include "app/forms/PageBar.h"
#include "app/forms/PageStrip.h"
#include "app/forms/StatusBar.h"

namespace wattlark {

/// The other windows that the main window opens.
struct MainDialogs {
  /// Lets the user edit a meter's properties; false when that was cancelled.
  std::function<bool(clsKillAWatt& meter, const std::string& caption)> editMeter;
  std::function<void(const std::string& text, const std::string& caption, int options)> showText;
  std::function<void(const AlarmNotice& notice)> showNotice;
  std::function<void(clsKillAWatt& meter)> calibrateMeter;
};

/// The main window: puts on screen what a monitor says and hands on what the user does. It is
/// hidden rather than closed while the program has work; without a notification area it is
/// minimised instead, so that it never gets out of reach.
class frmMain : public QMainWindow, public MonitorListener {
  Q_OBJECT

 public:
  /// All must outlive the window.
  struct Ports {
    Monitor& monitor;
    modRegistry& store;
    Desktop& desktop;
    Prompts& prompts;
  };
  struct Options {
    MenuActions features = {};  ///< actions that the window does not have itself
    MainDialogs dialogs = {};
    std::string helpAddress;
    std::string websiteAddress;
    FirstStart* firstStart = nullptr;  ///< null for no guide; must outlive the window
    std::function<void()> endProgram;
    std::function<void()> exitApplication;  ///< ends it for an update
    std::function<bool()> isTrayAvailable = &QSystemTrayIcon::isSystemTrayAvailable;
  };

  /// The monitor has loaded. The window is built and placed, not shown; its icon is added to the
  /// notification area.
  frmMain(const Ports& ports, Options options);

  /// After the monitor has started to run: shows the window, unless the settings say otherwise.
  void ShowAtLaunch();
  /// Brings the window to the front, in its normal state.
  void ShowWindow();
  /// Brings the window to the front, as large as it is.
  void BringForward();
  /// Out of sight, with the icon left to reach it; to the task bar when there is no such icon.
  void HideWindow();
  /// The user logs off: for a while the window closes without being hidden, and the program ends.
  /// `onKept` is called when the session goes on after all.
  void EndSession(std::function<void()> onKept);
  /// Saves everything and closes the port; the answer is the monitor's.
  bool Unload();
  void ShowPage(int page) { elaScroller_->ShowPage(page); }

  QMenu& TrayMenu() { return menus_.TrayMenu(); }

  void OnInfoText(const std::string& text) override;
  void OnCommImage(CommImage image) override;
  bool CanShowNotice() override;
  void OnAlarmNotice(const AlarmNotice& notice) override;
  void OnUpdateStatus() override;
  void OnUpdateTimer(bool enabled) override;
  void OnExitApplication() override;
  bool OnSave(modRegistry& store) override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void BuildContent();
  std::vector<PageStrip::Page> Pages();
  void BuildShortcuts();
  MenuActions Actions(MenuActions features);
  void UpdateStatus();
  void WatchTray();
  bool IsOnScreen() const { return isVisible() && !isMinimized(); }
  void RefreshTabs();
  FirstStartPanel* MakeFirstStartPanel();
  /// The dialog begins with that address.
  void AddKillAWatt(std::int16_t address = 0);
  void EditKillAWatt();
  void CalibrateKillAWatt();
  /// Opens a window now, or once no web server is waited for: the wait beneath it could not end
  /// before the window does, and until then there would be no readings.
  void WhenIdle(std::function<void()> open);
  void DoubleClickMainArea();
  void OpenWhatIsMissing();
  void ClickStatusPanel(const QString& key);
  void ShowErrors(const QString& key);
  void ToggleAlwaysOnTop();
  void Exit();

  Ports ports_;
  Options options_;
  MeterSelection selection_;
  MeterActions meterActions_;
  QTimer tmrUpdate_{this};
  MeterTabs* tabKillAWatt_ = nullptr;
  PageStrip* elaScroller_ = nullptr;
  PageBar* pageBar_ = nullptr;
  FirstStartPanel* firstStartPanel_ = nullptr;
  MainArea* elaWindow_ = nullptr;
  StatusBar* sbStatusBar_ = nullptr;
  MainMenus menus_;
  NotificationIcon icon_;
  std::function<void()> postponed_;
  int ticksToLook_ = 0;
  int looksWithoutTray_ = 0;
  bool sessionEnds_ = false;
  bool unloads_ = false;
};

}  // namespace wattlark
