#include "cli/CommandText.h"

#include <algorithm>

#include "cli/DefaultFiles.h"

namespace wattlark {

namespace {

constexpr std::string_view kHeadless = "wattlark-headless";

bool IsPlain(char c) {
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/._-+:@%,";
  return kPlain.find(c) != std::string_view::npos;
}

// Where only the program without a window is installed there is no other one.
std::string_view ProgramName() {
  return ProgramFile().ends_with(kHeadless) ? kHeadless : "wattlark";
}

}  // namespace

std::string ShellWord(std::string_view text) {
  if (!text.empty() && std::ranges::all_of(text, IsPlain)) return std::string(text);
  std::string word = "'";
  for (const char c : text) {
    if (c == '\'') {
      word += "'\\''";
    } else {
      word += c;
    }
  }
  return word + "'";
}

std::string ProfileCommand(const std::string& command, const std::string& profileFolder) {
  std::string text = std::string(ProgramName()) + " " + command;
  if (profileFolder != DefaultProfileFolder()) text += " --profile " + ShellWord(profileFolder);
  return text;
}

std::string DeviceCommand(const std::string& profileFolder, int portNumber,
                          const std::string& device) {
  return ProfileCommand(
      "setting set PortDevices/COM" + std::to_string(portNumber) + " " + ShellWord(device),
      profileFolder);
}

std::string AddCommand(const std::string& profileFolder, std::int16_t address) {
  const std::string number = std::to_string(address);
  return ProfileCommand("meter add --name 'Meter " + number + "' --address " + number,
                        profileFolder);
}

}  // namespace wattlark
