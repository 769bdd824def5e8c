#pragma once

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

/// Prints every message to standard error and answers as Enter would.
class ConsolePrompts : public Prompts {
 public:
  explicit ConsolePrompts(Console& console) : console_(console) {}

  PromptAnswer Ask(const PromptMessage& message) override {
    console_.WriteMessage(message.text);
    return message.defaultAnswer;
  }

 private:
  Console& console_;
};

}  // namespace wattlark
