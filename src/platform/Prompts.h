#pragma once

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
};

}  // namespace wattlark
