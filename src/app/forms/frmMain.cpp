#include "app/forms/frmMain.h"

#include <QApplication>
#include <QCloseEvent>
#include <memory>
#include <utility>

#include "app/forms/modForm.h"
#include "config/WindowPlacement.h"
#include "platform/qtwidgets/Icons.h"

namespace wattlark {

namespace {

constexpr const char* kWindowName = "frmMain";
constexpr QSize kFirstSize(360, 520);
constexpr int kUpdateMilliseconds = 1000;
constexpr int kUnhurriedMilliseconds = 300;
constexpr int kSessionEndMilliseconds = 30000;
constexpr int kTicksBetweenLooks = 5;
constexpr int kSaveButton = 2;  // of the information window
// A panel that restarts takes its area away for a moment.
constexpr int kPatientLooks = 2;

}  // namespace

frmMain::frmMain(const Ports& ports, Options options)
    : ports_(ports),
      options_(std::move(options)),
      selection_(ports.monitor.Profile()),
      meterActions_(ports.monitor, selection_, ports.prompts),
      menus_(*menuBar(), Actions(options_.features),
             [this] {
               return MakeMenuView(ports_.monitor.Profile(), selection_.SelectedKillAWatt(false),
                                   ports_.monitor.IsFlowing());
             }),
      icon_(menus_.TrayMenu(),
            {[](const std::string& key) { return TrayIcon(key); }, [this] { ShowWindow(); },
             options_.isTrayAvailable, &NotificationIcon::PopUpAtPointer}) {
  setObjectName(kWindowName);
  setWindowTitle(ApplicationTitle);
  setWindowIcon(ApplicationIcon());
  resize(kFirstSize);
  tmrUpdate_.setObjectName("tmrUpdate");
  tmrUpdate_.setSingleShot(true);
  tmrUpdate_.setTimerType(Qt::PreciseTimer);
  tmrUpdate_.setInterval(kUpdateMilliseconds);
  connect(&tmrUpdate_, &QTimer::timeout, this, [this] { ports_.monitor.UpdateCycle(); });
  BuildContent();
  BuildShortcuts();
  selection_.RefreshTabs();
  RefreshTabs();
  ShowPage(1);
  RestoreWindowSettings(*this, ports_.store, kWindowName, NormalWindow);
  const bool onTop = ports_.monitor.Profile().Settings().AlwaysOnTop;
  SetAlwaysOnTop(*this, onTop);
  menus_.CheckAlwaysOnTop(onTop);
  icon_.Add({ApplicationTitle, "KILLAWATT"});
}

void frmMain::ShowAtLaunch() {
  if (ports_.monitor.Profile().Settings().ShowAtLaunch && !isMinimized()) {
    show();
  } else {
    HideWindow();
  }
}

void frmMain::ShowWindow() {
  setWindowState(Qt::WindowNoState);
  BringForward();
}

void frmMain::BringForward() {
  setWindowState(windowState() & ~Qt::WindowMinimized);
  show();
  raise();
  activateWindow();
  if (QWidget* dialog = QApplication::activeModalWidget()) dialog->activateWindow();
}

void frmMain::HideWindow() {
  if (icon_.IsReachable()) {
    hide();
  } else {
    showMinimized();
  }
}

void frmMain::EndSession(std::function<void()> onKept) {
  sessionEnds_ = true;
  // A session that is still there after this time was kept after all.
  QTimer::singleShot(kSessionEndMilliseconds, this, [this, onKept = std::move(onKept)] {
    sessionEnds_ = false;
    onKept();
  });
}

bool frmMain::Unload() {
  sessionEnds_ = true;
  unloads_ = true;
  const bool saved = ports_.monitor.Unload();
  icon_.Delete();  // where nothing could be saved
  return saved;
}

void frmMain::OnInfoText(const std::string& text) {
  sbStatusBar_->SetInfoText(QString::fromStdString(text));
}

void frmMain::OnCommImage(CommImage image) {
  sbStatusBar_->SetCommImage(image);
}

bool frmMain::CanShowNotice() {
  for (const QWidget* window : QApplication::topLevelWidgets()) {
    if (window->isVisible() && window->windowType() == Qt::Dialog) return false;
  }
  return true;
}

void frmMain::OnAlarmNotice(const AlarmNotice& notice) {
  if (options_.dialogs.showNotice) options_.dialogs.showNotice(notice);
}

void frmMain::OnUpdateStatus() {
  UpdateStatus();
  menus_.Refresh();
  icon_.Modify(ports_.monitor.Tray());
  WatchTray();
}

void frmMain::OnUpdateTimer(bool enabled) {
  if (enabled) {
    tmrUpdate_.start();
    if (postponed_) {
      QMetaObject::invokeMethod(
          this, [this] { WhenIdle(std::exchange(postponed_, nullptr)); }, Qt::QueuedConnection);
    }
  } else {
    tmrUpdate_.stop();
  }
}

void frmMain::WhenIdle(std::function<void()> open) {
  if (!open) return;
  if (ports_.monitor.IsUpdateTimerEnabled()) {
    open();
  } else {
    postponed_ = std::move(open);
  }
}

void frmMain::OnExitApplication() {
  if (options_.exitApplication) options_.exitApplication();
}

bool frmMain::OnSave(modRegistry& store) {
  const bool saved = SaveWindowSettings(*this, store, kWindowName);
  // Before the port is closed, which may take its time: nobody is to click on it any more.
  if (unloads_) icon_.Delete();
  return saved;
}

// A window that nobody sees is left as it is until it is shown.
void frmMain::UpdateStatus() {
  if (!IsOnScreen()) return;
  std::optional<FirstStartView> guide;
  if (options_.firstStart != nullptr) guide = options_.firstStart->View();
  if (guide) {
    if (firstStartPanel_ == nullptr) {
      firstStartPanel_ = MakeFirstStartPanel();
      elaWindow_->SetGuide(*firstStartPanel_);
    }
    firstStartPanel_->Show(*guide);
  }
  elaWindow_->SetCaption(QString::fromStdString(ports_.monitor.MainAreaText()), guide.has_value());
  if (elaWindow_->Caption().isEmpty()) elaScroller_->RefreshPages();
  sbStatusBar_->Refresh();
}

void frmMain::WatchTray() {
  if (sessionEnds_) return;
  if (--ticksToLook_ > 0) return;
  ticksToLook_ = kTicksBetweenLooks;
  icon_.LookForArea();
  if (icon_.IsReachable()) {
    looksWithoutTray_ = 0;
    if (isVisible() && isMinimized()) hide();
  } else if (!isVisible() && ++looksWithoutTray_ >= kPatientLooks) {
    showMinimized();
  }
}

void frmMain::RefreshTabs() {
  tabKillAWatt_->ShowTabs();
  UpdateStatus();
}

void frmMain::AddKillAWatt(std::int16_t address) {
  auto meter = std::make_unique<clsKillAWatt>();
  meter->SetXBeeAddress(address);
  if (!options_.dialogs.editMeter || !options_.dialogs.editMeter(*meter, "Add Kill-A-Watt")) return;
  if (meterActions_.Add(std::move(meter))) RefreshTabs();
}

void frmMain::EditKillAWatt() {
  clsKillAWatt* meter = meterActions_.Selected();
  if (meter == nullptr || !ports_.monitor.IsFlowing() || !options_.dialogs.editMeter) return;
  if (options_.dialogs.editMeter(*meter, "Edit Kill-A-Watt")) meterActions_.NoteEdited();
  RefreshTabs();
}

void frmMain::CalibrateKillAWatt() {
  clsKillAWatt* meter = meterActions_.Selected();
  if (meter == nullptr) return;
  options_.dialogs.calibrateMeter(*meter);
  UpdateStatus();
}

void frmMain::DoubleClickMainArea() {
  WhenIdle([this] { OpenWhatIsMissing(); });
}

void frmMain::OpenWhatIsMissing() {
  if (!ports_.monitor.IsFlowing()) {
    if (options_.features.showOptions) options_.features.showOptions(false);
  } else if (ports_.monitor.Profile().Meters().IsEmpty()) {
    AddKillAWatt();
  }
}

void frmMain::ClickStatusPanel(const QString& key) {
  WhenIdle([this, key] { ShowErrors(key); });
}

void frmMain::ShowErrors(const QString& key) {
  // Emptied before the list is shown: errors that come while it is open are still to be read.
  const std::string errors = ports_.monitor.Errors().Text();
  ports_.monitor.ClearErrors();
  if (key == "INFO" && !errors.empty() && options_.dialogs.showText) {
    options_.dialogs.showText(errors, "Errors!", kSaveButton);
  }
}

void frmMain::ToggleAlwaysOnTop() {
  bool& onTop = ports_.monitor.Profile().Settings().AlwaysOnTop;
  onTop = !onTop;
  SetAlwaysOnTop(*this, onTop);
  menus_.CheckAlwaysOnTop(onTop);
}

void frmMain::Exit() {
  if (!ConfirmsExit(ports_.monitor, ports_.prompts)) return;
  sessionEnds_ = true;
  options_.endProgram();
}

void frmMain::closeEvent(QCloseEvent* event) {
  if (!sessionEnds_ && KeepsRunning(ports_.monitor)) {
    event->ignore();
    HideWindow();
    return;
  }
  event->accept();
  sessionEnds_ = true;
  options_.endProgram();
}

void frmMain::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() != QEvent::WindowStateChange) return;
  // Hidden from the event loop: the window system is still about to minimise it.
  if (isMinimized() && isVisible()) {
    QMetaObject::invokeMethod(
        this,
        [this] {
          if (isMinimized() && isVisible()) HideWindow();
        },
        Qt::QueuedConnection);
  } else {
    UpdateStatus();
  }
}

void frmMain::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  UpdateStatus();
  // In a quiet moment, so that the first step to another page does not wait for it either.
  QTimer::singleShot(kUnhurriedMilliseconds, elaScroller_, &PageStrip::MakePages);
}

}  // namespace wattlark
