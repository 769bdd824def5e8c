#include "cli/CommandLine.h"

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <new>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "cli/CommandDefinition.h"
#include "cli/Completion.h"
#include "cli/CompletionValues.h"
#include "cli/DefaultFiles.h"
#include "platform/qt/SystemRegional.h"
#include "support/DisplayText.h"

namespace wattlark {

namespace {

// What the completion scripts of the shells ask for; no command for people.
void Complete(const CLI::App& app, const std::vector<std::string>& words,
              CommandEnvironment& environment) {
  const auto values = [&](const CompletionQuestion& question) {
    return CompletionValues(question, environment.regional);
  };
  for (const std::string& word : CompletionsOf(app, words, values)) {
    environment.output << PrintableText(word) << "\n";
  }
}

bool HasDisplay() {
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
    const char* value = std::getenv(name);
    if (value != nullptr && *value != '\0') return true;
  }
  return false;
}

/// Settles the folder of the profile; false when there is none.
bool FindProfile(std::string& profile) {
  if (profile.empty()) profile = DefaultProfileFolder();
  if (profile.empty()) return false;
  // The profile's paths are stored: they must mean the same from every folder.
  std::error_code ignored;
  const auto absolute = std::filesystem::absolute(profile, ignored);
  if (!ignored) profile = absolute.lexically_normal().string();
  return true;
}

int Execute(int& argc, char** argv, const WindowRunner& runWindow,
            CommandEnvironment& environment) {
  CommandDefinition definition;
  if (argc > 1 && argv[1] == std::string_view(CompleteArgument)) {
    Complete(definition.App(), {argv + 2, argv + argc}, environment);
    return ExitOK;
  }
  try {
    definition.App().parse(argc, argv);
    definition.CheckRunOptions();
  } catch (const CLI::ParseError& error) {
    const int status = definition.App().exit(error, environment.output, environment.messages);
    return status != 0 ? ExitBadInput : ExitOK;
  }
  if (!FindProfile(definition.Profile())) {
    TellUser(environment.messages,
             "There is no home folder for the profile: choose one with --profile.");
    return ExitRefused;
  }
  if (const auto* command = definition.Command()) return (*command)(environment);
  RunOptions run = definition.Run();
  run.profileFolder = definition.Profile();
  const bool showsWindow = runWindow && !run.headless && HasDisplay();
  return showsWindow ? runWindow(argc, argv, run) : RunHeadless(argc, argv, run);
}

}  // namespace

int RunCommandLine(int& argc, char** argv, const WindowRunner& runWindow) {
  CommandEnvironment environment{std::cin, std::cout, std::cerr, SystemRegionalSettings()};
  return RunCommandLine(argc, argv, runWindow, environment);
}

int RunCommandLine(int& argc, char** argv, const WindowRunner& runWindow,
                   CommandEnvironment& environment) {
  try {
    const int status = Execute(argc, argv, runWindow, environment);
    if (environment.output.flush()) return status;
    TellUser(environment.messages, "The output could not be written.");
  } catch (const std::bad_alloc&) {
    TellUser(environment.messages, "There is not enough memory.");
  } catch (const std::exception& error) {
    TellUser(environment.messages, error.what());
  }
  return ExitRefused;
}

}  // namespace wattlark
