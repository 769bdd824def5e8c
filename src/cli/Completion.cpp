#include "cli/Completion.h"

#include <algorithm>
#include <string_view>

#include "support/modText.h"

namespace wattlark {

namespace {

// The command line up to the word that is being typed.
class TypedWords {
 public:
  TypedWords(const CLI::App& program, const std::vector<std::string>& words) : command_(&program) {
    for (std::size_t i = 0; i + 1 < words.size(); ++i) Take(words[i]);
  }

  const CLI::App& Command() const { return *command_; }
  const std::string& CommandNames() const { return names_; }
  const std::string& Profile() const { return profile_; }
  /// The option whose value is typed; null when it is something else.
  const CLI::Option* OpenOption() const { return openOption_; }
  bool OptionsAreOver() const { return optionsAreOver_; }
  std::size_t Positionals() const { return positionals_; }

 private:
  void Take(const std::string& word) {
    if (openOption_ != nullptr) {
      if (openOption_->check_name("--profile")) profile_ = word;
      openOption_ = nullptr;
    } else if (word == "--") {
      optionsAreOver_ = true;
    } else if (word.starts_with("--profile=")) {
      profile_ = word.substr(word.find('=') + 1);
    } else if (word.starts_with('-') && !optionsAreOver_) {
      const CLI::Option* option = command_->get_option_no_throw(word);
      if (option != nullptr && option->get_items_expected_max() > 0) openOption_ = option;
    } else {
      TakeName(word);
    }
  }
  void TakeName(const std::string& word) {
    const auto found =
        command_->get_subcommands([&](const CLI::App* known) { return known->get_name() == word; });
    if (found.empty() || positionals_ > 0) {
      ++positionals_;
      return;
    }
    command_ = found.front();
    names_ += (names_.empty() ? "" : " ") + word;
  }

  const CLI::App* command_;
  const CLI::Option* openOption_ = nullptr;
  std::string names_;
  std::string profile_;
  std::size_t positionals_ = 0;
  bool optionsAreOver_ = false;
};

// "load|generator" is a choice, "FILE" is none.
std::vector<std::string> Choices(const std::string& optionText) {
  std::vector<std::string> choices;
  if (optionText.find('|') == std::string::npos) return choices;
  for (const std::string_view choice : Split(optionText, '|')) choices.emplace_back(choice);
  return choices;
}

void AddOptions(const CLI::App& command, std::vector<std::string>& found) {
  for (const CLI::Option* option : command.get_options()) {
    for (const std::string& name : option->get_lnames()) found.push_back("--" + name);
  }
}

void AddPositional(const TypedWords& typed, const CompletionSource& values,
                   std::vector<std::string>& found) {
  std::size_t place = 0;
  for (const CLI::Option* option : typed.Command().get_options()) {
    if (!option->get_positional() || place++ != typed.Positionals()) continue;
    std::ranges::copy(values({typed.CommandNames(), option->get_name(true), typed.Profile()}),
                      std::back_inserter(found));
  }
}

}  // namespace

std::vector<std::string> CompletionsOf(const CLI::App& program,
                                       const std::vector<std::string>& words,
                                       const CompletionSource& values) {
  const TypedWords typed(program, words);
  const std::string current = words.empty() ? "" : words.back();
  std::vector<std::string> found;
  if (typed.OpenOption() != nullptr) {
    found = Choices(typed.OpenOption()->get_option_text());
  } else if (current.starts_with('-') && !typed.OptionsAreOver()) {
    AddOptions(typed.Command(), found);
  } else {
    for (const CLI::App* command : typed.Command().get_subcommands(nullptr)) {
      if (typed.Positionals() == 0) found.push_back(command->get_name());
    }
    AddPositional(typed, values, found);
  }
  std::erase_if(found, [&](const std::string& word) { return !word.starts_with(current); });
  return found;
}

}  // namespace wattlark
