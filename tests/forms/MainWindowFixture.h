#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAction>
#include <QCoreApplication>
#include <memory>
#include <string>
#include <vector>

#include "app/MonitorRelay.h"
#include "app/forms/frmMain.h"
#include "twins/HandClock.h"
#include "twins/MemoryRegistry.h"
#include "twins/RecordingDesktop.h"
#include "twins/ScriptedPort.h"
#include "twins/ScriptedPrompts.h"
#include "twins/ScriptedRandom.h"

namespace wattlark {

/// A main window over scripted ports; what it opens and whether it ends is recorded.
struct MainWindowTest : testing::Test {
  MainWindowTest() {
    random.repeats = true;
    Put("Settings", "LogToCSV", "False");
  }

  void Put(const std::string& section, const std::string& name, const std::string& value) {
    ASSERT_TRUE(store.SaveAppSetting("", section, name, value));
  }
  std::string Get(const std::string& section, const std::string& name) const {
    return store.GetAppSetting("", section, name, "(none)");
  }
  void PutMeter(const std::string& name, int address) {
    Put("KillAWatts\\" + name, "XBeeAddress", std::to_string(address));
  }
  /// Loads what was put, builds the window and starts to run; `meterCount` meters are put first.
  frmMain& Start(int meterCount = 0) {
    static constexpr const char* kNames[] = {"Kitchen", "Office", "Solar"};
    for (int i = 0; i < meterCount; ++i) PutMeter(kNames[i], 5 + i);
    monitor = std::make_unique<Monitor>(
        Monitor::Ports{clock, port, registry, random, desktop, prompts, web},
        RegionalSettings::UnitedStates(), Monitor::Options{}, relay);
    monitor->Load();
    options.endProgram = [this] { ++ends; };
    options.isTrayAvailable = [this] { return hasTray; };
    if (!options.dialogs.editMeter) {
      options.dialogs.editMeter = [this](clsKillAWatt& meter, const std::string& caption) {
        edited.push_back(caption + ": " + meter.Name());
        return false;
      };
    }
    if (!options.dialogs.showText) {
      options.dialogs.showText = [this](const std::string& text, const std::string& caption,
                                        int buttons) {
        texts.push_back(caption + std::to_string(buttons) + ":" + text);
      };
    }
    window = std::make_unique<frmMain>(frmMain::Ports{*monitor, store, desktop, prompts}, options);
    relay.SendTo(window.get());
    monitor->StartRunning();
    return *window;
  }
  void TearDown() override { relay.SendTo(nullptr); }

  void Tick(int count = 1) {
    for (int i = 0; i < count; ++i) {
      clock.Advance(1000);
      monitor->UpdateCycle();
    }
  }
  template <class T>
  T& Control(const QString& name) const {
    T* control = window->findChild<T*>(name);
    if (control == nullptr) throw std::runtime_error("no control " + name.toStdString());
    return *control;
  }
  /// An item of the menu bar's or the notification area's menus.
  QAction& Item(const QString& name) const {
    if (auto* action = window->findChild<QAction*>(name)) return *action;
    for (QAction* action : window->TrayMenu().actions()) {
      if (action->objectName() == name) return *action;
    }
    throw std::runtime_error("no item " + name.toStdString());
  }
  void Choose(const QString& name) const { Item(name).trigger(); }

  HandClock clock;
  ScriptedPort port;
  MemoryRegistry registry;
  ScriptedRandom random{{0.5}};
  RecordingDesktop desktop;
  ScriptedPrompts prompts;
  modRegistry store{registry};
  const WebPorts* web = nullptr;
  MonitorRelay relay;
  frmMain::Options options;
  std::unique_ptr<Monitor> monitor;
  std::unique_ptr<frmMain> window;
  bool hasTray = true;
  int ends = 0;
  std::vector<std::string> edited;
  std::vector<std::string> texts;
};

}  // namespace wattlark
