#include "cli/PublishCommand.h"

#include <QCoreApplication>
#include <optional>
#include <ostream>

#include "cli/RunOptions.h"
#include "platform/qt/SingleInstance.h"
#include "support/DisplayText.h"

namespace wattlark {

int RunPublish(const std::string& profileFolder, const std::string& destination,
               CommandEnvironment& environment) {
  // Sockets want an application object, even where nothing but their waits is used.
  int argc = 0;
  std::optional<QCoreApplication> application;
  if (QCoreApplication::instance() == nullptr) application.emplace(argc, nullptr);
  const auto answer = SingleInstance(profileFolder).Ask("publish " + destination);
  if (!answer) {
    TellUser(environment.messages, "No program that runs with the profile \"" + profileFolder +
                                       "\" answers. Start one first.");
    return ExitRefused;
  }
  if (!answer->success) {
    TellUser(environment.messages, answer->text);
    return ExitRefused;
  }
  environment.output << PrintableText(answer->text) << "\n";
  return ExitOK;
}

}  // namespace wattlark
