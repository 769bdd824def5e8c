#include <unistd.h>

#include <QCoreApplication>
#include <exception>
#include <stdexcept>

#include "cli/Console.h"
#include "cli/HeadlessFace.h"
#include "cli/HeadlessPorts.h"
#include "cli/ProgramSetup.h"
#include "cli/RunOptions.h"
#include "platform/qt/UnixSignals.h"

namespace wattlark {

namespace {

int RunMonitor(QCoreApplication& application, const RunOptions& options, ProgramSetup& setup,
               Console& console) {
  const bool isOpen = setup.Open();
  if (!setup.StoreMessage().empty()) console.WriteMessage(setup.StoreMessage());
  if (!isOpen) return ExitRefused;

  NoDesktop desktop;
  ConsolePrompts prompts(console);
  ServiceReport service;
  HeadlessFace face(console, service, setup.Serial(), options.profileFolder);
  Monitor& monitor = setup.MakeMonitor(desktop, prompts, face);
  face.Attach(monitor);
  const bool isLoaded = setup.Load([&] {
    console.WriteMessage("Another start with this profile was refused: this one is running");
  });
  if (!isLoaded) return ExitRefused;
  setup.StartRunning();
  service.OnReady();
  // From the event loop, so that a signal ends a wait for the server.
  QMetaObject::invokeMethod(
      &application, [&monitor] { monitor.CheckForUpdates(false); }, Qt::QueuedConnection);
  application.exec();

  face.EndUpdates();
  const std::string problem = setup.FinishSaving(monitor.Unload());
  if (problem.empty()) return ExitOK;
  console.WriteMessage(problem);
  return ExitRefused;
}

}  // namespace

int RunHeadless(int& argc, char** argv, const RunOptions& options) {
  OpenMissingStreams();
  ConsoleStream output(STDOUT_FILENO);
  ConsoleStream messages(STDERR_FILENO);
  Console console(output, messages);
  try {
    QCoreApplication application(argc, argv);
    const UnixSignals quitSignals([&] { application.quit(); });
    ProgramSetup setup(options);
    if (!setup.TakeProfile()) {
      throw std::runtime_error("Wattlark is already running with the profile " +
                               options.profileFolder);
    }
    return RunMonitor(application, options, setup, console);
  } catch (const std::exception& error) {
    console.WriteMessage(error.what());
    return ExitRefused;
  }
}

}  // namespace wattlark
