#include "cli/forms/WindowRun.h"

#include <QApplication>
#include <QFontDatabase>
#include <QImageReader>
#include <QThreadPool>
#include <QTimer>
#include <exception>
#include <iostream>

#include "app/FirstStart.h"
#include "app/MonitorRelay.h"
#include "app/forms/Notices.h"
#include "app/forms/frmInfoBox.h"
#include "app/forms/frmMain.h"
#include "cli/DefaultFiles.h"
#include "cli/ProgramSetup.h"
#include "config/forms/frmCalibrateKillAWatt.h"
#include "config/forms/frmEditKillAWatt.h"
#include "config/forms/frmOptions.h"
#include "platform/qt/SerialDeviceProblem.h"
#include "platform/qt/SerialDevices.h"
#include "platform/qt/UnixSignals.h"
#include "platform/qtwidgets/QtDesktop.h"
#include "platform/qtwidgets/QtPrompts.h"
#include "platform/xdg/DesktopID.h"
#include "publish/forms/frmLogin.h"
#include "update/forms/frmSoftwareUpdate.h"

namespace wattlark {

namespace {

constexpr int kLongestStartCheck = 3000;  // ms

void TellProblem(Prompts& prompts, const std::string& text) {
  prompts.Ask({text, "Error!", PromptIcon::Exclamation, PromptButtons::OK, PromptAnswer::OK});
}

/// One run of the program with its window.
class WindowRun {
 public:
  WindowRun(QApplication& application, ProgramSetup& setup) : setup_(setup) {
    prompts_.signIn = SignIn;
    prompts_.offerUpdate = OfferUpdate;
    // Logging off saves at once: nobody waits for the program to end by itself.
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &context_, [this] {
      if (window_ == nullptr) return;
      endsQuietly_ = true;
      window_->EndSession([this] { endsQuietly_ = false; });
      monitor_->SaveEverything();
    });
  }

  /// Ends the program without a question and without a message.
  void End() {
    endsQuietly_ = true;
    Quit();
  }

  int Run() {
    const bool isOpen = setup_.Open();
    if (!setup_.StoreMessage().empty()) TellProblem(prompts_, setup_.StoreMessage());
    if (!isOpen) return ExitRefused;
    MonitorRelay relay;
    monitor_ = &setup_.MakeMonitor(desktop_, prompts_, relay);
    const bool isLoaded = setup_.Load([this] {
      if (window_ != nullptr) window_->BringForward();
    });
    if (!isLoaded) return ExitRefused;
    FirstStart firstStart({*monitor_, setup_.Devices(), setup_.SystemRegistry(), prompts_,
                           [] { return ListSerialDevices(); }, &ListSerialDevicesWithProducts,
                           [](const std::string& path) {
                             return SerialPathProblem(path, "Plug it in, or choose another device");
                           },
                           &AccessToSerialDevice});
    frmMain window({*monitor_, setup_.Values(), desktop_, prompts_}, WindowOptions(firstStart));
    window_ = &window;
    relay.SendTo(&window);
    StartRunning();
    // Ending may have been asked for while a message was on screen.
    if (!hasEnded_) QApplication::exec();
    const std::string problem = savesAtEnd_ ? setup_.FinishSaving(window.Unload()) : "";
    window.hide();
    relay.SendTo(nullptr);
    window_ = nullptr;
    return Finish(problem);
  }

 private:
  // The check for updates comes first. Neither a slow server nor a question that nobody answers
  // keeps the readings waiting, though.
  void StartRunning() {
    const auto start = [this] {
      if (isRunning_ || hasEnded_) return;
      isRunning_ = true;
      setup_.StartRunning();
      window_->ShowAtLaunch();
      if (QWidget* dialog = QApplication::activeModalWidget()) {
        dialog->raise();
        dialog->activateWindow();
      }
    };
    QTimer patience;
    patience.setSingleShot(true);
    QObject::connect(&patience, &QTimer::timeout, start);
    patience.start(kLongestStartCheck);
    monitor_->CheckForUpdates(false);
    start();
  }

  // Ends the program for an update. Without data from the port only demo mode asks whether it may;
  // the program ends without saving when it may not.
  void ExitApplication() {
    hasEnded_ = true;
    monitor_->StopRunning();
    savesAtEnd_ = ConfirmsExit(*monitor_, prompts_);
    Quit();
  }

  frmMain::Options WindowOptions(FirstStart& firstStart) {
    frmMain::Options options;
    options.firstStart = &firstStart;
    options.dialogs.editMeter = [this](clsKillAWatt& meter, const std::string& caption) {
      ProfileData& profile = monitor_->Profile();
      return EditMeterProperties(
          {profile.Meters(), profile.Total(), monitor_->Regional(), prompts_}, meter, caption,
          window_);
    };
    options.dialogs.showText = [this](const std::string& text, const std::string& caption,
                                      int buttons) {
      frmInfoBox({prompts_, setup_.Random(), setup_.SystemTime()}, window_)
          .InfoBox(text, caption, buttons);
    };
    options.dialogs.showNotice = [this](const AlarmNotice& notice) {
      notices_.ShowAlarm(notice, *window_);
    };
    options.dialogs.calibrateMeter = [this](clsKillAWatt& meter) {
      CalibrateMeter({monitor_->Regional(), setup_.SystemTime()}, meter, window_);
    };
    const ServiceEndpoints& endpoints = monitor_->Profile().Endpoints();
    options.helpAddress = AddressOf(endpoints.OnlineHelpURL, WATTLARK_HELP_URL);
    options.websiteAddress = AddressOf(endpoints.WebSiteURL, WATTLARK_WEBSITE_URL);
    options.features.showOptions = [this](bool) { ShowOptions(); };
    options.endProgram = [this] { Quit(); };
    options.exitApplication = [this] { ExitApplication(); };
    return options;
  }

  void ShowOptions() {
    ProfileData& profile = monitor_->Profile();
    const auto restartPort = [this] { monitor_->RestartPort(); };
    const auto tellFailure = [this] {
      monitor_->ReportError("The options could not be saved: " +
                            setup_.SystemRegistry().ErrorText());
    };
    PortDevices& devices = setup_.Devices();
    frmOptions form({{profile.Settings(), setup_.SystemRegistry(), profile.Text(),
                      monitor_->Regional(), prompts_, &devices, ProgramFile(), restartPort},
                     PortDeviceList::Ports{devices, &ListSerialDevicesWithProducts,
                                           [this](const std::string& path) {
                                             return setup_.Serial().DeviceProblem(path);
                                           }},
                     tellFailure},
                    window_);
    form.exec();
  }

  static std::string AddressOf(const std::string& stored, const char* built) {
    return stored.empty() ? built : stored;
  }

  // Not `quit`, which asks the windows, and the main window answers by hiding.
  void Quit() {
    hasEnded_ = true;
    setup_.EndWaits();
    QCoreApplication::exit(0);
  }

  int Finish(const std::string& problem) {
    if (problem.empty()) return ExitOK;
    std::cerr << problem << std::endl;
    if (!endsQuietly_) TellProblem(prompts_, problem);
    return ExitRefused;
  }

  ProgramSetup& setup_;
  QtDesktop desktop_;
  QtPrompts prompts_;
  Notices notices_{desktop_, prompts_};
  Monitor* monitor_ = nullptr;
  frmMain* window_ = nullptr;
  bool isRunning_ = false;
  bool savesAtEnd_ = true;
  bool hasEnded_ = false;
  bool endsQuietly_ = false;
  QObject context_;  ///< its end ends the connections to this object
};

// What the first window needs of the toolkit takes a fourth of a start to find: the plug-ins for
// pictures, and the system's fonts. That goes on beside the reading of the profile.
void PrepareToolkit(QThreadPool& beside) {
  beside.start([] {
    QImageReader::supportedImageFormats();
    QFontDatabase::families();
  });
}

}  // namespace

int RunWindow(int& argc, char** argv, const RunOptions& options) {
  OpenMissingStreams();
  QApplication application(argc, argv);
  QApplication::setApplicationName("wattlark");
  // Desktops find the program's name and icon by it.
  QApplication::setDesktopFileName(DesktopID);
  QApplication::setQuitOnLastWindowClosed(false);
  // What the desktop's own file dialogs do in the background ends the program otherwise.
  QCoreApplication::setQuitLockEnabled(false);
  try {
    ProgramSetup setup(options);
    WindowRun run(application, setup);
    const UnixSignals quitSignals([&run] { run.End(); });
    if (!setup.TakeProfile()) return ExitOK;
    QThreadPool beside;  // its end waits for what it does, which needs the application
    PrepareToolkit(beside);
    return run.Run();
  } catch (const std::exception& error) {
    std::cerr << error.what() << std::endl;
    QtPrompts prompts;
    TellProblem(prompts, error.what());
    return ExitRefused;
  }
}

}  // namespace wattlark
