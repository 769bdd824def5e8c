#pragma once

#include <CLI/App.hpp>
#include <functional>
#include <string>
#include <vector>

namespace wattlark {

/// The argument that makes a program answer the shell's completion instead of running.
inline constexpr const char* CompleteArgument = "--complete";

/// Finds what can stand for a positional argument.
struct CompletionQuestion {
  std::string command;   ///< "setting get"
  std::string argument;  ///< "NAME"
  std::string profile;   ///< folder as typed, or empty
};
using CompletionSource = std::function<std::vector<std::string>(const CompletionQuestion&)>;

/// What the last of the words can be: commands, options once it begins with "-", the values of an
/// option that has a choice, and what `values` knows. The words are those behind the program's
/// name. Empty where anything goes, the name of a file for instance.
std::vector<std::string> CompletionsOf(const CLI::App& program,
                                       const std::vector<std::string>& words,
                                       const CompletionSource& values);

}  // namespace wattlark
