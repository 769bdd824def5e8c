#include <fcntl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <memory>
#include <optional>
#include <stdexcept>

#include "app/CaptureWriter.h"
#include "app/Monitor.h"
#include "cli/Console.h"
#include "cli/DefaultFiles.h"
#include "cli/HeadlessFace.h"
#include "cli/HeadlessPorts.h"
#include "cli/RunOptions.h"
#include "config/PortDevices.h"
#include "platform/linux/ProfileLock.h"
#include "platform/qt/QtSerialPort.h"
#include "platform/qt/SerialDevices.h"
#include "platform/qt/SingleInstance.h"
#include "platform/qt/StandardRandom.h"
#include "platform/qt/SystemClock.h"
#include "platform/qt/SystemRegional.h"
#include "platform/qt/UnixSignals.h"
#include "platform/sqlite/OpenStore.h"

namespace wattlark {

namespace {

// A stream that was closed at the start must not become the number of the next file opened: what is
// printed would go there.
void OpenMissingStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) == -1 && open("/dev/null", O_RDWR) == -1) return;
  }
}

Monitor::Options MonitorOptions(const RunOptions& options) {
  Monitor::Options result;
  result.csvFilenameDefault = DefaultCSVFilename(options.profileFolder);
  result.noticeSoundFile = ProgramFolder() + "/notice.wav";
  if (options.demo) result.demoMode = true;
  return result;
}

int RunMonitor(QCoreApplication& application, const RunOptions& options, SingleInstance& instance,
               Console& console) {
  std::optional<CaptureWriter> recorder;
  if (!options.recordFile.empty()) recorder.emplace(options.recordFile);

  const StoreOpening store = OpenStore(options.profileFolder);
  if (!store.message.empty()) console.WriteMessage(store.message);
  if (!store.registry) return ExitRefused;

  SystemClock clock;
  StandardRandom random;
  NoDesktop desktop;
  ConsolePrompts prompts(console);
  const modRegistry registry(*store.registry);
  PortDevices devices(registry, [] { return ListSerialDevices(); });
  QtSerialPort serial([&](int portNumber) { return devices.Path(portNumber); });
  HeadlessFace face(console, serial, options.profileFolder);
  Monitor monitor({clock, serial, *store.registry, random, desktop, prompts},
                  SystemRegionalSettings(), MonitorOptions(options), face);
  face.Attach(monitor);
  serial.onReceive = [&] { monitor.ReceiveXBeeData(); };
  serial.onLost = [&] { face.OnUpdateStatus(); };
  instance.onShow = [&] {
    console.WriteMessage("Another start with this profile was refused: this one is running");
  };
  instance.Listen();

  monitor.Load();
  if (!options.device.empty()) {
    devices.UseForThisRun(monitor.Profile().Settings().PortNum, options.device);
  }
  if (recorder) monitor.RecordTo(&*recorder);
  monitor.StartRunning();
  application.exec();

  instance.onShow = nullptr;
  face.EndUpdates();
  if (monitor.Unload() && store.savesChanges) return ExitOK;
  console.WriteMessage("Not saved: " +
                       (store.savesChanges ? store.registry->ErrorText() : store.message));
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
    ProfileLock lock(options.profileFolder);
    const bool isFirst = lock.TryAcquire();
    if (!lock.Problem().empty()) throw std::runtime_error(lock.Problem());
    // Only now is the folder sure to be there.
    SingleInstance instance(options.profileFolder);
    if (!isFirst) {
      instance.ActivatePrevInstance();
      throw std::runtime_error("Wattlark is already running with the profile " +
                               options.profileFolder);
    }
    return RunMonitor(application, options, instance, console);
  } catch (const std::exception& error) {
    console.WriteMessage(error.what());
    return ExitRefused;
  }
}

}  // namespace wattlark
