#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "platform/Prompts.h"

namespace wattlark {

/// Remembers every message box, sign-in and offer and answers by script; without one, with the
/// default button, by cancelling and by being reminded later.
class ScriptedPrompts final : public Prompts {
 public:
  std::vector<PromptMessage> asked;
  std::deque<PromptAnswer> answers;
  std::vector<SaveFileQuestion> choosers;
  std::optional<std::string> chosenFile;
  std::function<void()> duringAsk;

  PromptAnswer Ask(const PromptMessage& message) override {
    asked.push_back(message);
    if (duringAsk) duringAsk();
    if (answers.empty()) return message.defaultAnswer;
    const PromptAnswer answer = answers.front();
    answers.pop_front();
    return answer;
  }

  std::optional<std::string> ChooseSaveFile(const SaveFileQuestion& question) override {
    choosers.push_back(question);
    return chosenFile;
  }

  std::vector<UpdateOffer> offers;
  std::deque<UpdateAnswer> updateAnswers;
  std::function<void()> duringOffer;

  UpdateAnswer OfferUpdate(const UpdateOffer& offer) override {
    offers.push_back(offer);
    if (duringOffer) duringOffer();
    if (updateAnswers.empty()) return UpdateAnswer::RemindLater;
    const UpdateAnswer answer = updateAnswers.front();
    updateAnswers.pop_front();
    return answer;
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
