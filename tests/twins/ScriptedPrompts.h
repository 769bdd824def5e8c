#pragma once

#include <deque>
#include <vector>

#include "platform/Prompts.h"

namespace wattlark {

/// Remembers every message box and answers by script, or with its default button.
class ScriptedPrompts final : public Prompts {
 public:
  std::vector<PromptMessage> asked;
  std::deque<PromptAnswer> answers;

  PromptAnswer Ask(const PromptMessage& message) override {
    asked.push_back(message);
    if (answers.empty()) return message.defaultAnswer;
    const PromptAnswer answer = answers.front();
    answers.pop_front();
    return answer;
  }
};

}  // namespace wattlark
