#pragma once

#include <functional>
#include <optional>
#include <string>

#include "app/CaptureWriter.h"
#include "app/Monitor.h"
#include "app/WebPublishers.h"
#include "cli/RunOptions.h"
#include "config/PortDevices.h"
#include "platform/linux/ProfileLock.h"
#include "platform/qt/QtEventPump.h"
#include "platform/qt/QtHttpClient.h"
#include "platform/qt/QtSerialPort.h"
#include "platform/qt/SingleInstance.h"
#include "platform/qt/StandardRandom.h"
#include "platform/qt/SystemClock.h"
#include "platform/qt/SystemTimeZone.h"
#include "platform/sqlite/OpenStore.h"
#include "platform/xdg/AutostartRegistry.h"

namespace wattlark {

/// What every run of the program has besides its face: the profile, taken for this process, its
/// store, the ports that need neither window nor terminal, and the monitor over them. The
/// operations are called once each, in the order in which they stand here.
class ProgramSetup {
 public:
  /// Needs an application object.
  explicit ProgramSetup(const RunOptions& options);
  ProgramSetup(const ProgramSetup&) = delete;
  ProgramSetup& operator=(const ProgramSetup&) = delete;

  /// False when another process has the profile; that one has been asked to show itself. Throws
  /// std::runtime_error when the profile cannot be used at all.
  bool TakeProfile();
  /// Opens the capture file to record to, which throws as `CaptureWriter` does, and the store.
  /// False when the store cannot be used; `StoreMessage` then says why.
  bool Open();
  /// What the user must know of the store; empty when all is well.
  const std::string& StoreMessage() const { return store_.message; }
  /// Makes the monitor and connects the serial port with it; all three must outlive this object's
  /// use.
  Monitor& MakeMonitor(Desktop& desktop, Prompts& prompts, MonitorListener& listener);
  /// Loads the profile. `onShow` is called from now on when another start wants the program shown.
  /// False, and the user has been told why, when the store could not be read: the program ends.
  [[nodiscard]] bool Load(std::function<void()> onShow);
  /// Starts to run, and from now on carries out the commands of other processes.
  void StartRunning();
  /// After the event loop. `unloaded` is what `Monitor::Unload` answered. Why not everything is
  /// saved; empty when it is.
  std::string FinishSaving(bool unloaded);

  /// Ends every wait for a web server; for whoever ends the event loop otherwise than by
  /// `QCoreApplication::quit`.
  void EndWaits() { pump_.NoteExit(); }

  SystemClock& SystemTime() { return clock_; }
  StandardRandom& Random() { return random_; }
  QtSerialPort& Serial() { return serial_; }
  // Valid once the store is open.
  modRegistry& Values() { return *values_; }
  /// The store, in which the value that starts the program at log-on has its effect.
  Registry& SystemRegistry() { return *systemRegistry_; }
  PortDevices& Devices() { return *devices_; }

 private:
  Monitor::Options MonitorOptions() const;
  std::string DevicePath(int portNumber) const;
  DateTime ToUTC(DateTime local);
  std::function<CommandAnswer()> FindCommand(const std::string& command);
  CommandAnswer Publish(PublishTarget target);

  const RunOptions options_;
  ProfileLock lock_;
  std::optional<SingleInstance> instance_;
  std::optional<CaptureWriter> recorder_;
  StoreOpening store_;
  std::optional<AutostartRegistry> systemRegistry_;
  std::optional<modRegistry> values_;
  std::optional<PortDevices> devices_;
  SystemClock clock_;
  StandardRandom random_;
  QtSerialPort serial_;
  SystemTimeZone timeZone_;
  QtEventPump pump_;
  QtHttpClient inetPachubeLogger_;
  QtHttpClient inetGoogleLogger_;
  QtHttpClient inetTwitterLogger_;
  QtHttpClient inetVersionAlert_;
  const WebPorts web_;
  std::optional<Monitor> monitor_;
  bool takesCommands_ = false;
};

/// Opens the standard streams that were closed at the start on nothing: a file opened later must
/// not get the number of one, or what is printed would go there.
void OpenMissingStreams();

}  // namespace wattlark
