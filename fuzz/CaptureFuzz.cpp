// Captures of any text: a bad one is named with its line, a good one says only what its bytes hold.

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "Require.h"
#include "app/CaptureReader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::istringstream input{std::string(TextOf(data, size))};
  wattlark::Capture capture;
  const std::string problem = wattlark::ReadCapture(input, "capture", capture);
  Require(problem.empty() || problem.starts_with("capture:"));
  std::size_t bytes = 0;
  for (const auto& event : capture.events) {
    Require(!event.time.IsNever());
    // What was read is written in the same form again.
    Require(wattlark::DateTime::FromIso(event.time.ToIso()) == event.time);
    bytes += event.byteCount;
  }
  Require(bytes == capture.bytes.size());
  Require(capture.bytes.size() * 2 <= size);
  return 0;
}
