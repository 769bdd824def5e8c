#include "app/HelpActions.h"

#include "config/modRegistry.h"

namespace wattlark {

void ShowAbout(const std::string& version, Prompts& prompts) {
  const std::string title = ApplicationTitle;
  prompts.Ask({title + " version " + version + "\r\n" + LegalNotice, "About " + title + "...",
               PromptIcon::Information, PromptButtons::OK, PromptAnswer::OK});
}

bool OpenURL(const std::string& address, Desktop& desktop, Prompts& prompts) {
  if (address.empty()) {
    prompts.Ask({"No address is configured.", ApplicationTitle, PromptIcon::Information,
                 PromptButtons::OK, PromptAnswer::OK});
    return false;
  }
  if (desktop.OpenURL(address)) return true;
  prompts.Ask({"The address " + address + " could not be opened.", ApplicationTitle,
               PromptIcon::Exclamation, PromptButtons::OK, PromptAnswer::OK});
  return false;
}

}  // namespace wattlark
