#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QLocalServer;

namespace wattlark {

/// Lets a second start for the same profile reach the instance that runs. Only the user's own
/// processes can; whatever is not the one known message is ignored. Which instance may run is
/// decided by the profile's lock, not here.
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

  /// Another start asks for the program to be shown.
  std::function<void()> onShow;

 private:
  void AcceptConnection();

  std::vector<std::string> places_;  ///< socket paths, best one first
  std::unique_ptr<QLocalServer> server_;
};

}  // namespace wattlark
