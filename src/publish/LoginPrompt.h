#pragma once

#include <string>

#include "platform/Prompts.h"

namespace wattlark {

/// Asks the user for the credentials of a service, unless `quiet`: `OK` after having stored what
/// was entered, else `Cancel` with nothing changed.
inline PromptAnswer PromptLogin(Prompts& prompts, const std::string& caption, bool quiet,
                                std::string& userName, std::string& password) {
  if (quiet) return PromptAnswer::Cancel;
  // The settings may change while the dialog is open; they take its texts when it is confirmed.
  std::string enteredName = userName;
  std::string enteredPassword = password;
  if (!prompts.SignIn(caption, enteredName, enteredPassword)) return PromptAnswer::Cancel;
  userName = enteredName;
  password = enteredPassword;
  return PromptAnswer::OK;
}

}  // namespace wattlark
