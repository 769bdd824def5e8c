#include <gtest/gtest.h>

#include <sstream>
#include <streambuf>

#include "app/CaptureReader.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

std::string Read(const std::string& text, Capture& capture) {
  std::istringstream stream(text);
  return ReadCapture(stream, "a.cap", capture);
}

TEST(CaptureReader, ReadsReadsAndTicks) {
  Capture capture;
  ASSERT_EQ(Read("# two reads that hold one frame between them, then a tick\r\n"
                 "\n"
                 " \t\r\n"
                 "2026-11-16T20:10:00.250 1000 rx 7E000c83\r\n"
                 "2026-11-16T20:10:00.251 1001 rx Ff\n"
                 "2026-11-16T20:10:01 1750 tick",
                 capture),
            "");
  ASSERT_EQ(capture.events.size(), 3U);
  EXPECT_EQ(capture.bytes, (std::vector<std::uint8_t>{0x7E, 0x00, 0x0C, 0x83, 0xFF}));
  EXPECT_EQ(capture.events[0].time, At("2026-11-16T20:10:00.250"));
  EXPECT_EQ(capture.events[0].ticks, 1000U);
  EXPECT_EQ(capture.events[0].byteCount, 4U);
  EXPECT_EQ(capture.events[1].byteCount, 1U);
  EXPECT_TRUE(capture.events[2].IsTick());
  EXPECT_EQ(capture.events[2].time, At("2026-11-16T20:10:01"));
  EXPECT_EQ(capture.events[2].ticks, 1750U);
}

TEST(CaptureReader, TimesAndTicksMayStandStillAndGoBackwards) {
  Capture capture;
  EXPECT_EQ(Read("2026-11-16T20:10:01 4294967295 tick\n"
                 "2026-11-16T20:10:01 4294967295 tick\n"
                 "2025-01-01T00:00:00.001 0 tick\n",
                 capture),
            "");
  ASSERT_EQ(capture.events.size(), 3U);
  EXPECT_EQ(capture.events[0].ticks, 4294967295U);
  EXPECT_EQ(capture.events[2].ticks, 0U);
}

TEST(CaptureReader, CaptureWithoutEventsIsValid) {
  Capture capture;
  EXPECT_EQ(Read("", capture), "");
  EXPECT_EQ(Read("# nothing\n\n", capture), "");
  EXPECT_TRUE(capture.events.empty());
}

struct BadLine {
  const char* line;
  const char* problem;  ///< a part of the message
};

class BadCaptureLine : public testing::TestWithParam<BadLine> {};

TEST_P(BadCaptureLine, IsNamedAndAddsNothing) {
  Capture capture;
  const std::string good = "2026-11-16T20:10:01 1750 tick\n";
  const std::string problem = Read("# a comment\n" + good + GetParam().line + "\n" + good, capture);
  EXPECT_TRUE(problem.starts_with("a.cap:3: ")) << problem;
  EXPECT_NE(problem.find(GetParam().problem), std::string::npos) << problem;
  EXPECT_EQ(capture.events.size(), 1U);
  EXPECT_TRUE(capture.bytes.empty());
}

INSTANTIATE_TEST_SUITE_P(
    , BadCaptureLine,
    testing::Values(BadLine{"nonsense", "a date-time, a tick count and"},
                    BadLine{" 2026-11-16T20:10:01 1 tick", "\"\" is not a date-time"},
                    BadLine{" # no comment", "\"\" is not a date-time"},
                    BadLine{"2026-11-16 20:10:01 1 tick", "\"2026-11-16\" is not a date-time"},
                    BadLine{"2026-02-30T20:10:01 1 tick", "is not a date-time"},
                    BadLine{"2026-11-16T24:00:00 1 tick", "is not a date-time"},
                    BadLine{"2026-11-16T20:10:01.5 1 tick", "is not a date-time"},
                    BadLine{"2026-11-16T20:10:01Z 1 tick", "is not a date-time"},
                    BadLine{"0000-11-16T20:10:01 1 tick", "is not a date-time"},
                    BadLine{"\xEF\xBB\xBF"
                            "2026-11-16T20:10:01 1 tick",
                            "???2026"},
                    BadLine{"2026-11-16T20:10:01 1", "is missing"},
                    BadLine{"2026-11-16T20:10:01", "a date-time, a tick count and"},
                    BadLine{"2026-11-16T20:10:01  1 tick", "\"\" is not a tick count"},
                    BadLine{"2026-11-16T20:10:01 -1 tick", "\"-1\" is not a tick count"},
                    BadLine{"2026-11-16T20:10:01 +1 tick", "is not a tick count"},
                    BadLine{"2026-11-16T20:10:01 1.5 tick", "is not a tick count"},
                    BadLine{"2026-11-16T20:10:01 0x10 tick", "is not a tick count"},
                    BadLine{"2026-11-16T20:10:01 4294967296 tick", "is not a tick count"},
                    BadLine{"2026-11-16T20:10:01 1\ttick", "is missing"},
                    BadLine{"2026-11-16T20:10:01 1 tock", "\"tock\" is not"},
                    BadLine{"2026-11-16T20:10:01 1 TICK", "\"TICK\" is not"},
                    BadLine{"2026-11-16T20:10:01 1 tick ", "there is text behind \"tick\""},
                    BadLine{"2026-11-16T20:10:01 1 tick\r\r", "\"tick?\" is not"},
                    BadLine{"2026-11-16T20:10:01 1 tick 7E", "there is text behind \"tick\""},
                    BadLine{"2026-11-16T20:10:01 1 rx", "the bytes behind \"rx\" are missing"},
                    BadLine{"2026-11-16T20:10:01 1 rx ", "has no bytes"},
                    BadLine{"2026-11-16T20:10:01 1 rx 7E0", "odd number"},
                    BadLine{"2026-11-16T20:10:01 1 rx 7G", "\"G\" is not a hexadecimal digit"},
                    BadLine{"2026-11-16T20:10:01 1 rx 7E 00", "\" 00\" is not a hexadecimal digit"},
                    BadLine{"2026-11-16T20:10:01 1 rx  7E", "\" 7E\" is not a hexadecimal digit"},
                    BadLine{"2026-11-16T20:10:01 1 rx 7E\x01",
                            "\"?\" is not a hexadecimal digit"}));

TEST(CaptureReader, QuotesNoMoreThanTheBeginningOfABadField) {
  Capture capture;
  const std::string problem = Read(std::string(100000, 'x') + " 1 tick\n", capture);
  EXPECT_TRUE(problem.starts_with("a.cap:1: \"" + std::string(40, 'x') + "...\" is not a date"))
      << problem.substr(0, 200);
}

TEST(CaptureReader, LineMayBeLongerThanABlock) {
  Capture capture;
  std::string digits(400000, 'a');
  EXPECT_EQ(
      Read("2026-11-16T20:10:01 1 rx " + digits + "\r\n2026-11-16T20:10:01 1 tick\n", capture), "");
  ASSERT_EQ(capture.events.size(), 2U);
  EXPECT_EQ(capture.bytes, std::vector<std::uint8_t>(200000, 0xAA));
}

class EndlessZeros : public std::streambuf {
  int_type underflow() override {
    setg(block_, block_, block_ + sizeof block_);
    return 0;
  }
  char block_[4096]{};
};

TEST(CaptureReader, EndlessLineIsGivenUp) {
  EndlessZeros zeros;
  std::istream stream(&zeros);
  Capture capture;
  EXPECT_EQ(ReadCapture(stream, "zero", capture), "zero:1: the line is too long");
}

class FailingStream : public std::streambuf {
  int_type underflow() override { throw std::ios_base::failure("device"); }
};

TEST(CaptureReader, FailedReadIsAnError) {
  FailingStream failing;
  std::istream stream(&failing);
  Capture capture;
  EXPECT_EQ(ReadCapture(stream, "disk", capture), "disk:1: the file cannot be read");
}

}  // namespace
}  // namespace wattlark
