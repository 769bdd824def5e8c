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

/// A newer version of the program, with the texts of the dialog that offers it.
struct UpdateOffer {
  std::string title;
  std::string message;
  std::string releaseNotes;  ///< plain text as it came; empty for none
  std::string releaseVersion;
  std::string downloadAddress;
};

enum class UpdateAnswer { Download, SkipThisVersion, RemindLater };

/// The question for a file to write to.
struct SaveFileQuestion {
  std::string caption;
  /// Which files are listed, as "Text files (*.txt)"; several joined by ";;".
  std::string filter = "Text files (*.txt);;All files (*)";
  std::string file = {};  ///< chosen at first; may be empty
  /// The file is added to: one that exists needs no agreement, but making a new one does.
  bool appends = false;
};

/// Everything the program asks or tells the user in a window of its own.
class Prompts {
 public:
  virtual ~Prompts() = default;
  /// Shows the message and waits for the answer.
  virtual PromptAnswer Ask(const PromptMessage& message) = 0;
  /// Lets the user choose the file to write to; nothing when that was cancelled or cannot be asked
  /// here. The user has agreed to replace a file that exists, or to make a new one to add to.
  virtual std::optional<std::string> ChooseSaveFile(const SaveFileQuestion& /*question*/) {
    return std::nullopt;
  }
  /// Asks for a user name and a password, with the present ones to start from; false, with nothing
  /// changed, when that was cancelled or cannot be asked here.
  virtual bool SignIn(const std::string& /*caption*/, std::string& /*userName*/,
                      std::string& /*password*/) {
    return false;
  }
  /// Offers a newer version and waits for the answer. Closing the dialog otherwise means to be
  /// reminded later, as does a face that cannot ask.
  virtual UpdateAnswer OfferUpdate(const UpdateOffer& /*offer*/) {
    return UpdateAnswer::RemindLater;
  }
};

}  // namespace wattlark
