#pragma once

#include <functional>
#include <stdexcept>
#include <string>

namespace wattlark {

/// How one publishing run ended.
struct PublishResult {
  bool success = false;
  /// The text of success for the status bar, or the error's; empty for a run that ended without
  /// anything to tell.
  std::string text = {};
  /// Something to tell beside that, for the error list; usually empty.
  std::string warning = {};
};

/// A publishing error whose text is complete, with the name of the service before it.
class PublishError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Ends a publishing run that is not to be told of: the program is ending, or the user cancelled.
class PublishStopped : public std::runtime_error {
 public:
  PublishStopped() : std::runtime_error("The run was stopped") {}
};

/// The result of `run`, which answers the text of success or throws. An exception of another kind
/// than those above is told as `source`, ": " and its text.
PublishResult RunPublisher(const std::string& source, const std::function<std::string()>& run);

}  // namespace wattlark
