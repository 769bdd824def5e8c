#pragma once

#include <gmock/gmock.h>

#include <QAction>

#include "app/MonitorFixture.h"
#include "app/MonitorRelay.h"
#include "app/forms/frmMain.h"
#include "forms/FormChecks.h"

namespace wattlark {

/// A main window over scripted ports; what it opens and whether it ends is recorded.
struct MainWindowTest : MonitorTest {
  MainWindowTest() {
    options.endProgram = [this] { ++ends; };
    options.isTrayAvailable = [this] { return hasTray; };
    options.dialogs.editMeter = [this](clsKillAWatt& meter, const std::string& caption) {
      edited.push_back(caption + ": " + meter.Name());
      return false;
    };
    options.dialogs.showText = [this](const std::string& text, const std::string& caption,
                                      int buttons) {
      texts.push_back(caption + std::to_string(buttons) + ":" + text);
    };
  }
  /// Loads what was put, builds the window and starts to run; `meterCount` meters are put first.
  frmMain& Start(int meterCount = 0) {
    static constexpr const char* kNames[] = {"Kitchen", "Office", "Solar"};
    for (int i = 0; i < meterCount; ++i) PutMeter(kNames[i], 5 + i);
    monitor = std::make_unique<Monitor>(
        Monitor::Ports{clock, port, registry, random, desktop, prompts, web}, region,
        Monitor::Options{}, relay);
    monitor->Load();
    Prepare();
    window = std::make_unique<frmMain>(frmMain::Ports{*monitor, store, desktop, prompts}, options);
    relay.SendTo(window.get());
    monitor->StartRunning();
    return *window;
  }
  /// What a test adds to the options once there is a monitor.
  virtual void Prepare() {}
  void TearDown() override {
    relay.SendTo(nullptr);
    window.reset();
    monitor.reset();  // it hears of the clients of `web` to its end
  }

  template <class T = QWidget>
  T& Control(const QString& name) const {
    return Find<T>(*window, name);
  }
  /// An item of the menu bar's or the notification area's menus.
  QAction& Item(const QString& name) const {
    if (auto* action = window->findChild<QAction*>(name)) return *action;
    if (auto* action = window->TrayMenu().findChild<QAction*>(name)) return *action;
    throw std::runtime_error("no item " + name.toStdString());
  }
  void Choose(const QString& name) const { Item(name).trigger(); }

  MonitorRelay relay;
  frmMain::Options options;
  std::unique_ptr<frmMain> window;
  bool hasTray = true;
  int ends = 0;
  std::vector<std::string> edited;
  std::vector<std::string> texts;
};

}  // namespace wattlark
