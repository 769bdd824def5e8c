#include "sim/SimulationCapture.h"

#include <ostream>
#include <string>
#include <string_view>

namespace wattlark {
namespace {

std::string LineStart(DateTime start, std::int64_t milliseconds) {
  return start.PlusMilliseconds(milliseconds).ToIso() + ' ' +
         std::to_string(static_cast<std::uint32_t>(milliseconds));
}

void AppendHex(std::string& line, const Bytes& bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  for (const std::uint8_t byte : bytes) {
    line += kDigits[byte >> 4];
    line += kDigits[byte & 0xF];
  }
}

}  // namespace

bool WriteCapture(Simulation& simulation, DateTime start, std::int64_t durationSeconds,
                  std::ostream& output) {
  for (std::int64_t second = 1; second <= durationSeconds && output; ++second) {
    const std::int64_t end = second * 1000;
    for (; simulation.Next().milliseconds < end; simulation.Advance()) {
      const Delivery& delivery = simulation.Next();
      std::string line = LineStart(start, delivery.milliseconds) + " rx ";
      AppendHex(line, delivery.bytes);
      output << line << '\n';
    }
    output << LineStart(start, end) << " tick\n";
  }
  output.flush();
  return static_cast<bool>(output);
}

}  // namespace wattlark
