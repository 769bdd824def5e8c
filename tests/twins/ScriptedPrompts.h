#pragma once

#include <deque>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "platform/Prompts.h"

namespace wattlark {

/// Remembers every message box and sign-in and answers by script; without one, with the default
/// button and by cancelling.
class ScriptedPrompts final : public Prompts {
 public:
  std::vector<PromptMessage> asked;
  std::deque<PromptAnswer> answers;
  std::vector<std::string> choosers;  ///< captions
  std::optional<std::string> chosenFile;

  PromptAnswer Ask(const PromptMessage& message) override {
    asked.push_back(message);
    if (answers.empty()) return message.defaultAnswer;
    const PromptAnswer answer = answers.front();
    answers.pop_front();
    return answer;
  }

  std::optional<std::string> ChooseSaveFile(const std::string& caption) override {
    choosers.push_back(caption);
    return chosenFile;
  }

  struct SignInAsked {
    std::string caption;
    std::string userName;
    std::string password;
    friend bool operator==(const SignInAsked&, const SignInAsked&) = default;
  };
  std::vector<SignInAsked> signIns;
  /// User name and password entered; nothing cancels.
  std::deque<std::optional<std::pair<std::string, std::string>>> credentials;

  bool SignIn(const std::string& caption, std::string& userName, std::string& password) override {
    signIns.push_back({caption, userName, password});
    if (credentials.empty()) return false;
    const auto entered = credentials.front();
    credentials.pop_front();
    if (!entered) return false;
    std::tie(userName, password) = *entered;
    return true;
  }
};

}  // namespace wattlark
