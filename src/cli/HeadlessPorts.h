#pragma once

#include <string>

#include "cli/Console.h"
#include "platform/Desktop.h"
#include "platform/Prompts.h"

namespace wattlark {

/// A run without a desktop: no sound, and nothing to open an address with.
class NoDesktop : public Desktop {
 public:
  void PlayWave(const std::string&) override {}
  bool OpenURL(const std::string&) override { return false; }
};

/// Prints every message to standard error and answers as Enter would; a question, which nobody
/// could answer, is not printed. A newer version is told once.
class ConsolePrompts : public Prompts {
 public:
  explicit ConsolePrompts(Console& console) : console_(console) {}

  PromptAnswer Ask(const PromptMessage& message) override {
    if (message.buttons != PromptButtons::YesNo) console_.WriteMessage(message.text);
    return message.defaultAnswer;
  }
  UpdateAnswer OfferUpdate(const UpdateOffer& offer) override {
    if (offer.releaseVersion != toldVersion_) {
      console_.WriteMessage(offer.title + " " + offer.releaseVersion + ": " +
                            offer.downloadAddress);
    }
    toldVersion_ = offer.releaseVersion;
    return UpdateAnswer::RemindLater;
  }

 private:
  Console& console_;
  std::string toldVersion_;
};

}  // namespace wattlark
