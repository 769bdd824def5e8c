// Registry texts of any form: whatever is read from one is the same after it has been written and
// read again, and written once more it gives the same bytes.

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "Require.h"
#include "config/RegistryTextReader.h"
#include "config/RegistryTextWriter.h"

namespace {

using namespace wattlark;

/// The values that can be stored.
std::vector<RegistryTextEntry> Read(const std::string& text, std::string& problem) {
  std::vector<RegistryTextEntry> values;
  std::istringstream input(text);
  problem = ReadRegistryText(input, "text", [&](RegistryTextEntry entry) {
    if (entry.kind == RegistryTextEntry::Kind::Value && entry.hive && entry.problem.empty()) {
      values.push_back(std::move(entry));
    }
  });
  return values;
}

std::string Write(const std::vector<RegistryTextEntry>& values) {
  std::ostringstream output;
  RegistryTextWriter writer(output, {"all"});
  for (const RegistryTextEntry& entry : values) {
    writer.WriteKey(*entry.hive, entry.path, {{entry.name, entry.value}});
  }
  return output.str();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string problem;
  const auto values = Read(std::string(TextOf(data, size)), problem);
  Require(problem.empty() || problem.starts_with("text:"));
  const std::string written = Write(values);
  const auto again = Read(written, problem);
  Require(problem.empty());
  Require(again.size() == values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    Require(again[i].hive == values[i].hive && again[i].path == values[i].path);
    Require(again[i].name == values[i].name && again[i].value == values[i].value);
  }
  Require(Write(again) == written);
  return 0;
}
