#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QLocalServer;
class QLocalSocket;
class QTimer;

namespace wattlark {

/// How a command that came from another process went.
struct CommandAnswer {
  bool success = false;
  std::string text;
};

/// Lets other processes reach the instance that runs with the same profile: a second start, and
/// commands. Only the user's own processes can; the connection of whatever sends anything else than
/// one known message is ended. Which instance may run is decided by the profile's lock, not here.
///
/// A message is a line of at most 1 KiB: "show", or a command. "ok" in a line of its own says that
/// it was understood. A command's answer follows when it has run, however long that takes: a line
/// "done" or "failed", and the text up to the end of the connection.
class SingleInstance {
 public:
  /// The folder must exist: its canonical path names the meeting point.
  explicit SingleInstance(const std::string& profileFolder);
  ~SingleInstance();

  /// Starts to listen, for the holder of the profile's lock. Needs an event loop. False when the
  /// system offers no place to listen at; everything else works all the same.
  bool Listen();
  /// Asks the running instance to show itself and waits up to a second for its answer; false when
  /// none answers.
  bool ActivatePrevInstance() const;
  /// Has the running instance carry out a command and waits for its answer, which may take minutes.
  /// Nothing when no instance takes it.
  std::optional<CommandAnswer> Ask(const std::string& command) const;

  /// Another start asks for the program to be shown.
  std::function<void()> onShow;
  /// Another process asks for a command: the answer is what to run, empty for no known one. It may
  /// let events run, in which other commands may come.
  std::function<std::function<CommandAnswer()>(const std::string& command)> onCommand;

 private:
  void AcceptConnection();
  void ReadMessage(QLocalSocket& socket, QTimer& limit);
  void RunCommand(QLocalSocket& socket, QTimer& limit, std::function<CommandAnswer()> run);

  std::vector<std::string> places_;  ///< socket paths, best one first
  std::unique_ptr<QLocalServer> server_;
};

}  // namespace wattlark
