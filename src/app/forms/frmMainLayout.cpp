#include <QShortcut>
#include <QVBoxLayout>
#include <type_traits>

#include "app/HelpActions.h"
#include "app/WebPublishers.h"
#include "app/forms/CurrentPage.h"
#include "app/forms/PacketPage.h"
#include "app/forms/RecentPage.h"
#include "app/forms/TotalsPage.h"
#include "app/forms/frmMain.h"

namespace wattlark {

void frmMain::BuildContent() {
  auto* content = new QWidget;
  tabKillAWatt_ = new MeterTabs(selection_);
  auto* header = new TabHeader(tabKillAWatt_, content);
  elaScroller_ = new PageStrip(Pages(), content);
  pageBar_ = new PageBar(content);
  auto* column = new QVBoxLayout(content);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(header);
  column->addWidget(elaScroller_, 1);
  column->addWidget(pageBar_);
  elaWindow_ = new MainArea(content, this);
  sbStatusBar_ = new StatusBar(this);
  setCentralWidget(elaWindow_);
  setStatusBar(sbStatusBar_);

  connect(tabKillAWatt_, &MeterTabs::Chosen, this, [this] {
    menus_.Refresh();
    UpdateStatus();
  });
  connect(tabKillAWatt_, &QTabBar::tabBarDoubleClicked, this, [this] { EditKillAWatt(); });
  connect(elaScroller_, &PageStrip::PageShown, this, [this](int page) {
    menus_.CheckPage(page);
    pageBar_->ShowPage(page);
  });
  connect(pageBar_, &PageBar::Stepped, this,
          [this](int pages) { ShowPage(elaScroller_->CurrentPage() + pages); });
  connect(pageBar_, &PageBar::Chosen, this, [this](int page) { ShowPage(page); });
  connect(elaWindow_, &MainArea::DoubleClicked, this, [this] { DoubleClickMainArea(); });
  connect(sbStatusBar_, &StatusBar::PanelClicked, this,
          [this](const QString& key) { ClickStatusPanel(key); });
}

std::vector<PageStrip::Page> frmMain::Pages() {
  const auto page = [](auto make) -> PageStrip::Page {
    using Widget = std::remove_pointer_t<decltype(make(nullptr))>;
    return {make, [](QWidget& widget) { static_cast<Widget&>(widget).Refresh(); }};
  };
  Monitor& monitor = ports_.monitor;
  return {page([this, &monitor](QWidget* parent) {
            return new CurrentPage(monitor, selection_, parent);
          }),
          page([this, &monitor](QWidget* parent) {
            auto* recent = new RecentPage(monitor, selection_, parent);
            connect(recent, &RecentPage::hoverText, this,
                    [&monitor](const QString& text) { monitor.SetInfoText(text.toStdString()); });
            return recent;
          }),
          page([this, &monitor](QWidget* parent) {
            return new TotalsPage(monitor, selection_, ports_.prompts, parent);
          }),
          page([this, &monitor](QWidget* parent) {
            return new PacketPage(monitor, selection_, parent);
          })};
}

FirstStartPanel* frmMain::MakeFirstStartPanel() {
  auto* panel = new FirstStartPanel;
  FirstStart& guide = *options_.firstStart;
  const auto later = [this](const std::function<void()>& act) {
    WhenIdle([this, act] {
      act();
      UpdateStatus();
    });
  };
  connect(panel, &FirstStartPanel::DeviceChosen, this, [&guide, later](const QString& path) {
    later([&guide, path] { guide.UseDevice(path.toStdString()); });
  });
  connect(panel, &FirstStartPanel::MeterChosen, this, [this, later](int address) {
    later([this, address] { AddKillAWatt(static_cast<std::int16_t>(address)); });
  });
  connect(panel, &FirstStartPanel::AddingChosen, this,
          [this, later] { later([this] { AddKillAWatt(); }); });
  connect(panel, &FirstStartPanel::DemoChosen, this, [this, &guide, later] {
    later([this, &guide] {
      if (ports_.monitor.IsDemoMode()) {
        guide.LeaveDemoMode();
      } else if (guide.StartDemoMode()) {
        AddKillAWatt();  // only meters show readings
      }
    });
  });
  return panel;
}

void frmMain::BuildShortcuts() {
  const auto step = [this](const QKeySequence& keys, int pages) {
    connect(new QShortcut(keys, this), &QShortcut::activated, this, [this, pages] {
      if (elaWindow_->Caption().isEmpty()) ShowPage(elaScroller_->CurrentPage() + pages);
    });
  };
  step(Qt::CTRL | Qt::Key_PageUp, -1);
  step(Qt::ALT | Qt::Key_Left, -1);
  step(Qt::CTRL | Qt::Key_PageDown, 1);
  step(Qt::ALT | Qt::Key_Right, 1);
}

MenuActions frmMain::Actions(MenuActions actions) {
  const auto afterwards = [this](bool changed) {
    if (changed) RefreshTabs();
  };
  actions.writeCSVLog = [this](bool) { ports_.monitor.PublishNow(PublishTarget::CSV, true); };
  if (ports_.monitor.UsesWeb()) {
    // From the notification area, errors are not to open windows.
    const auto post = [this](PublishTarget target) -> MenuActions::Action {
      return [this, target](bool fromTray) { ports_.monitor.PublishNow(target, fromTray); };
    };
    actions.postToPachube = post(PublishTarget::Pachube);
    actions.postToGoogleDocs = post(PublishTarget::GoogleDocs);
    actions.postToPowerMeter = post(PublishTarget::PowerMeter);
    actions.postToTwitter = post(PublishTarget::Twitter);
  }
  actions.hide = [this](bool) { HideWindow(); };
  actions.exit = [this](bool) { Exit(); };
  actions.showCurrentPage = [this](bool) { ShowPage(1); };
  actions.showRecentPage = [this](bool) { ShowPage(2); };
  actions.showTotalsPage = [this](bool) { ShowPage(3); };
  actions.showPacketPage = [this](bool) { ShowPage(4); };
  actions.toggleAlwaysOnTop = [this](bool) { ToggleAlwaysOnTop(); };
  actions.addMeter = [this](bool) { AddKillAWatt(); };
  actions.editMeter = [this](bool) { EditKillAWatt(); };
  actions.removeMeter = [this, afterwards](bool) { afterwards(meterActions_.RemoveSelected()); };
  actions.resetData = [this, afterwards](bool) { afterwards(meterActions_.ResetSelectedData()); };
  if (options_.dialogs.calibrateMeter) {
    actions.calibrate = [this](bool) { CalibrateKillAWatt(); };
  }
  actions.resetCalibration = [this, afterwards](bool) {
    afterwards(meterActions_.ResetSelectedCalibration());
  };
  actions.openHelp = [this](bool) {
    OpenURL(options_.helpAddress, ports_.desktop, ports_.prompts);
  };
  actions.openWebsite = [this](bool) {
    OpenURL(options_.websiteAddress, ports_.desktop, ports_.prompts);
  };
  if (ports_.monitor.UsesWeb()) {
    actions.checkForUpdates = [this](bool) { ports_.monitor.CheckForUpdates(true); };
  }
  actions.showAbout = [this](bool) { ShowAbout(WATTLARK_VERSION, ports_.prompts); };
  actions.showWindow = [this](bool) { ShowWindow(); };
  for (MenuActions::Action MenuActions::*opens :
       {&MenuActions::addMeter, &MenuActions::editMeter, &MenuActions::removeMeter,
        &MenuActions::resetData, &MenuActions::calibrate, &MenuActions::resetCalibration,
        &MenuActions::showOptions, &MenuActions::showAbout}) {
    if (!(actions.*opens)) continue;
    actions.*opens = [this, open = std::move(actions.*opens)](bool fromTray) {
      WhenIdle([open, fromTray] { open(fromTray); });
    };
  }
  return actions;
}

}  // namespace wattlark
