#pragma once

#include <optional>
#include <string>

namespace wattlark {

enum class PromptIcon { None, Information, Exclamation };
enum class PromptButtons { OK, OKCancel, YesNo };
enum class PromptAnswer { OK, Cancel, Yes, No };

/// One message box. `defaultAnswer` is the button that Enter presses; closing the box by its frame
/// means Cancel or No where there is one.
struct PromptMessage {
  std::string text;  ///< plain text; line ends are CR LF or LF
  std::string caption;
  PromptIcon icon = PromptIcon::None;
  PromptButtons buttons = PromptButtons::OK;
  PromptAnswer defaultAnswer = PromptAnswer::OK;
};

/// Everything the program asks or tells the user in a window of its own.
class Prompts {
 public:
  virtual ~Prompts() = default;
  /// Shows the message and waits for the answer.
  virtual PromptAnswer Ask(const PromptMessage& message) = 0;
  /// Lets the user choose the file to save a text to; nothing when that was cancelled or cannot be
  /// asked here. The user has agreed to replace a file that exists.
  virtual std::optional<std::string> ChooseSaveFile(const std::string& /*caption*/) {
    return std::nullopt;
  }
  /// Asks for a user name and a password, with the present ones to start from; false, with nothing
  /// changed, when that was cancelled or cannot be asked here.
  virtual bool SignIn(const std::string& /*caption*/, std::string& /*userName*/,
                      std::string& /*password*/) {
    return false;
  }
};

}  // namespace wattlark
