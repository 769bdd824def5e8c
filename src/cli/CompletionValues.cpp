#include "cli/CompletionValues.h"

#include <nlohmann/json.hpp>
#include <sstream>

#include "app/WebPublishers.h"
#include "cli/DefaultFiles.h"
#include "cli/MeterCommands.h"
#include "cli/RunOptions.h"
#include "cli/SettingCommands.h"

namespace wattlark {

namespace {

using ListCommand = int (*)(const std::string& profileFolder, bool asJson, CommandEnvironment&);

// The user is typing: whatever is wrong is told when the command is given.
nlohmann::json Listed(ListCommand list, const CompletionQuestion& question,
                      const RegionalSettings& regional) {
  std::istringstream input;
  std::ostringstream output;
  std::ostringstream messages;
  CommandEnvironment environment{input, output, messages, regional};
  const std::string profile = question.profile.empty() ? DefaultProfileFolder() : question.profile;
  if (profile.empty() || list(profile, true, environment) != ExitOK) return {};
  return nlohmann::json::parse(output.str(), nullptr, false);
}

}  // namespace

std::vector<std::string> CompletionValues(const CompletionQuestion& question,
                                          const RegionalSettings& regional) {
  std::vector<std::string> values;
  if (question.argument == "DESTINATION") {
    for (const PublishTargetName& known : PublishTargetNames()) values.emplace_back(known.name);
  } else if (question.argument == "NAME" && question.command.starts_with("setting ")) {
    const nlohmann::json settings = Listed(&ListSettings, question, regional);
    for (const auto& setting : settings.items()) values.push_back(setting.key());
  } else if (question.argument == "NAME" && question.command.starts_with("meter ")) {
    for (const auto& meter : Listed(&ListMeters, question, regional)) {
      values.push_back(meter.at("Name").get<std::string>());
    }
  }
  return values;
}

}  // namespace wattlark
