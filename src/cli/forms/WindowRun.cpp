#include "cli/forms/WindowRun.h"

#include <QApplication>
#include <exception>
#include <iostream>

#include "app/MonitorRelay.h"
#include "app/forms/Notices.h"
#include "app/forms/frmInfoBox.h"
#include "app/forms/frmMain.h"
#include "cli/ProgramSetup.h"
#include "config/forms/frmEditKillAWatt.h"
#include "platform/qt/UnixSignals.h"
#include "platform/qtwidgets/QtDesktop.h"
#include "platform/qtwidgets/QtPrompts.h"
#include "publish/forms/frmLogin.h"

namespace wattlark {

namespace {

void TellProblem(Prompts& prompts, const std::string& text) {
  prompts.Ask({text, "Error!", PromptIcon::Exclamation, PromptButtons::OK, PromptAnswer::OK});
}

/// One run of the program with its window.
class WindowRun {
 public:
  WindowRun(QApplication& application, ProgramSetup& setup) : setup_(setup) {
    prompts_.signIn = SignIn;
    // Logging off saves at once: nobody waits for the program to end by itself.
    QObject::connect(&application, &QGuiApplication::commitDataRequest, [this] {
      if (window_ == nullptr) return;
      endsQuietly_ = true;
      window_->EndSession();
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
      if (window_ != nullptr) window_->ShowWindow();
    });
    if (!isLoaded) return ExitRefused;
    frmMain window({*monitor_, setup_.Values(), desktop_, prompts_}, WindowOptions());
    window_ = &window;
    relay.SendTo(&window);
    monitor_->StartRunning();
    window.ShowAtLaunch();
    // Ending may have been asked for while a message was on screen.
    if (!hasEnded_) QApplication::exec();
    const std::string problem = setup_.FinishSaving(window.Unload());
    window.hide();
    relay.SendTo(nullptr);
    window_ = nullptr;
    return Finish(problem);
  }

 private:
  frmMain::Options WindowOptions() {
    frmMain::Options options;
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
    const ServiceEndpoints& endpoints = monitor_->Profile().Endpoints();
    options.helpAddress = AddressOf(endpoints.OnlineHelpURL, WATTLARK_HELP_URL);
    options.websiteAddress = AddressOf(endpoints.WebSiteURL, WATTLARK_WEBSITE_URL);
    options.features.postToPachube = Publish(PublishTarget::Pachube);
    options.features.postToGoogleDocs = Publish(PublishTarget::GoogleDocs);
    options.features.postToPowerMeter = Publish(PublishTarget::PowerMeter);
    options.features.postToTwitter = Publish(PublishTarget::Twitter);
    options.endProgram = [this] { Quit(); };
    return options;
  }

  MenuActions::Action Publish(PublishTarget target) {
    return [this, target](bool) { monitor_->PublishNow(target, false); };
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
  bool hasEnded_ = false;
  bool endsQuietly_ = false;
};

}  // namespace

int RunWindow(int& argc, char** argv, const RunOptions& options) {
  OpenMissingStreams();
  QApplication application(argc, argv);
  QApplication::setApplicationName("wattlark");
  QApplication::setDesktopFileName("wattlark");
  QApplication::setQuitOnLastWindowClosed(false);
  // What the desktop's own file dialogs do in the background ends the program otherwise.
  QCoreApplication::setQuitLockEnabled(false);
  try {
    ProgramSetup setup(options);
    WindowRun run(application, setup);
    const UnixSignals quitSignals([&run] { run.End(); });
    if (!setup.TakeProfile()) return ExitOK;
    return run.Run();
  } catch (const std::exception& error) {
    std::cerr << error.what() << std::endl;
    QtPrompts prompts;
    TellProblem(prompts, error.what());
    return ExitRefused;
  }
}

}  // namespace wattlark
