#include <gtest/gtest.h>

#include <sstream>

#include "app/CaptureReader.h"

namespace wattlark {
namespace {

std::string Read(const std::string& text, Capture& capture) {
  std::istringstream stream(text);
  return ReadCapture(stream, "a.cap", capture);
}

TEST(CaptureReader, ReadsReadsAndTicksWhoseTimesMayGoBackwards) {
  Capture capture;
  ASSERT_EQ(Read("# two reads that hold one frame between them, then a tick\r\n"
                 "\n"
                 " \t\r\n"
                 "2026-11-16T20:10:00.250 4294967295 rx 7E000c83\r\n"
                 "2026-11-16T20:10:00.251 4294967295 rx Ff\n"
                 "2025-01-01T00:00:00 0 tick",
                 capture),
            "");
  std::string events;
  for (const CaptureEvent& event : capture.events) {
    events += event.time.ToIso() + " " + std::to_string(event.ticks) + " " +
              (event.IsTick() ? "tick" : std::to_string(event.byteCount)) + "\n";
  }
  EXPECT_EQ(events,
            "2026-11-16T20:10:00.250 4294967295 4\n2026-11-16T20:10:00.251 4294967295 1\n"
            "2025-01-01T00:00:00 0 tick\n");
  EXPECT_EQ(capture.bytes, (std::vector<std::uint8_t>{0x7E, 0x00, 0x0C, 0x83, 0xFF}));
}

TEST(CaptureReader, ABadLineIsNamedAndAddsNothing) {
  using Row = std::pair<std::string, const char*>;  // a line, and a part of the message
  const std::string time = "2026-11-16T20:10:01";
  for (const auto& [line, part] :
       {Row{"nonsense", "a date-time, a tick count and"},
        Row{" " + time + " 1 tick", "\"\" is not a date-time"},
        Row{"\xEF\xBB\xBF" + time + " 1 tick", "???2026"}, Row{time + " 1", "is missing"},
        Row{time + " 4294967296 tick", "is not a tick count"},
        Row{time + " 1 tick ", "there is text behind \"tick\""},
        Row{time + " 1 rx", "the bytes behind \"rx\" are missing"},
        Row{time + " 1 rx ", "has no bytes"}, Row{time + " 1 rx 7E0", "odd number"},
        Row{time + " 1 rx 7G\x01", "\"G?\" is not a hexadecimal digit"}}) {
    Capture capture;
    const std::string good = time + " 1750 tick\n";
    const std::string problem = Read("# a comment\n" + good + line + "\n" + good, capture);
    EXPECT_TRUE(problem.starts_with("a.cap:3: ")) << problem;
    EXPECT_NE(problem.find(part), std::string::npos) << problem;
    EXPECT_EQ(capture.events.size(), 1U);
    EXPECT_TRUE(capture.bytes.empty());
  }
}

TEST(CaptureReader, GivesUpALineThatSeemsEndless) {
  Capture capture;
  EXPECT_EQ(Read(std::string((16U << 20) + 1, '\0'), capture), "a.cap:1: the line is too long");
  EXPECT_EQ(Read("2026-11-16T20:10:01 1 rx " + std::string(400000, 'a'), capture), "");
  EXPECT_EQ(capture.bytes, std::vector<std::uint8_t>(200000, 0xAA));
}

}  // namespace
}  // namespace wattlark
