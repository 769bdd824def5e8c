#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <optional>

#include "EventLoop.h"
#include "TemporaryFolder.h"
#include "platform/qt/QtSerialPort.h"
#include "twins/Frames.h"
#include "twins/TestTerminal.h"

namespace wattlark {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

namespace fs = std::filesystem;

struct SerialPortOnTerminal : testing::Test {
  TemporaryFolder folder;
  std::string path;
  QtSerialPort port{[this](int) { return path; }};
  Bytes received;
  int lost = 0;

  SerialPortOnTerminal() {
    port.onReceive = [this] { Take(); };
    port.onLost = [this] {
      ++lost;
      EXPECT_FALSE(port.IsOpen());
    };
  }
  void Take() {
    const Bytes bytes = port.ReadAll();
    received.insert(received.end(), bytes.begin(), bytes.end());
  }
  bool Open(const std::string& device, const std::string& settings = "9600,N,8,1") {
    path = device;
    return port.Open(5, settings);
  }
};

Bytes EveryByte() {
  Bytes bytes(256);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i);
  return bytes;
}

TEST_F(SerialPortOnTerminal, HandsOnEveryByteAsItIs) {
  TestTerminal terminal;
  ASSERT_TRUE(Open(terminal.Path())) << port.ErrorText();
  EXPECT_EQ(port.ErrorText(), "");
  terminal.Write(EveryByte());
  EXPECT_TRUE(WaitUntil([&] { return received.size() >= 256; }));
  EXPECT_EQ(received, EveryByte());
}

TEST_F(SerialPortOnTerminal, RaisesAnEventForEverySplitWrite) {
  TestTerminal terminal;
  ASSERT_TRUE(Open(terminal.Path()));
  const Bytes frame = MeterFrame(5, {700, 300}, {498, 529});
  for (std::size_t i = 0; i < frame.size(); ++i) {
    terminal.Write({&frame[i], 1});
    ASSERT_TRUE(WaitUntil([&] { return received.size() == i + 1; }));
  }
  EXPECT_EQ(received, frame);
}

TEST_F(SerialPortOnTerminal, KeepsBytesThatAreNotTakenForTheNextEvent) {
  TestTerminal terminal;
  ASSERT_TRUE(Open(terminal.Path()));
  int events = 0;
  port.onReceive = [&] { ++events; };
  terminal.Write(Bytes{1, 2, 3});
  ASSERT_TRUE(WaitUntil([&] { return events == 1; }));
  terminal.Write(Bytes{4});
  ASSERT_TRUE(WaitUntil([&] { return events == 2; }));
  EXPECT_EQ(port.ReadAll(), (Bytes{1, 2, 3, 4}));
  EXPECT_EQ(port.ReadAll(), Bytes{});
}

TEST_F(SerialPortOnTerminal, TellsOnceThatTheDeviceHungUp) {
  std::optional<TestTerminal> terminal(std::in_place);
  ASSERT_TRUE(Open(terminal->Path()));
  terminal->Write(Bytes{1, 2, 3});
  terminal.reset();
  ASSERT_TRUE(WaitUntil([&] { return lost > 0; }));
  EXPECT_EQ(port.ErrorText(), "No such device: " + path +
                                  ". Plug in the receiver, or choose its device: wattlark setting "
                                  "set PortDevices/COM5 PATH");
  EXPECT_EQ(port.ReadAll(), Bytes{});
  TurnEventLoop();
  EXPECT_EQ(lost, 1);
}

TEST_F(SerialPortOnTerminal, AHangUpOfWhichNobodyIsToldCostsNoTime) {
  std::optional<TestTerminal> terminal(std::in_place);
  port.onLost = nullptr;
  ASSERT_TRUE(Open(terminal->Path()));
  terminal.reset();
  ASSERT_TRUE(WaitUntil([&] { return !port.IsOpen(); }));
  const auto processorTime = [] {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_utime.tv_sec * 1000000 + usage.ru_utime.tv_usec +
           usage.ru_stime.tv_sec * 1000000 + usage.ru_stime.tv_usec;
  };
  const auto before = processorTime();
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(500);
  WaitUntil([&] { return std::chrono::steady_clock::now() >= end; });
  EXPECT_LT(processorTime() - before, 100000);
}

TEST_F(SerialPortOnTerminal, ClosingInTimeTellsNothing) {
  std::optional<TestTerminal> terminal(std::in_place);
  ASSERT_TRUE(Open(terminal->Path()));
  terminal.reset();
  port.Close();
  TurnEventLoop();
  EXPECT_EQ(lost, 0);
}

TEST_F(SerialPortOnTerminal, MayBeClosedAndOpenedFromItsOwnEvents) {
  TestTerminal first;
  TestTerminal second;
  ASSERT_TRUE(Open(first.Path()));
  port.onReceive = [&] {
    port.Close();
    EXPECT_TRUE(Open(second.Path()));
    port.onReceive = [&] { Take(); };
  };
  first.Write(Bytes{1});
  second.Write(Bytes{2});
  EXPECT_TRUE(WaitUntil([&] { return !received.empty(); }));
  EXPECT_EQ(received, Bytes{2});
}

TEST_F(SerialPortOnTerminal, OpensAgainAfterTheDeviceCameBack) {
  const std::string link = folder.File("receiver");
  std::optional<TestTerminal> terminal(std::in_place);
  fs::create_symlink(terminal->Path(), link);
  ASSERT_TRUE(Open(link)) << port.ErrorText();
  terminal.reset();
  ASSERT_TRUE(WaitUntil([&] { return lost == 1; }));
  EXPECT_FALSE(port.Open(5, "9600,N,8,1"));
  EXPECT_THAT(port.ErrorText(), StartsWith("No such device: " + link));

  terminal.emplace();
  fs::remove(link);
  fs::create_symlink(terminal->Path(), link);
  ASSERT_TRUE(port.Open(5, "9600,N,8,1")) << port.ErrorText();
  terminal->Write(Bytes{7});
  EXPECT_TRUE(WaitUntil([&] { return received == Bytes{7}; }));
  EXPECT_EQ(lost, 1);
}

TEST_F(SerialPortOnTerminal, NoticesThatItsFileWasDeleted) {
  TestTerminal terminal;
  const std::string link = folder.File("receiver");
  fs::create_symlink(terminal.Path(), link);
  ASSERT_TRUE(Open(link));
  fs::remove(link);
  ASSERT_TRUE(WaitUntil([&] { return lost == 1; }));
  EXPECT_THAT(port.ErrorText(), StartsWith("No such device: " + link));
}

TEST_F(SerialPortOnTerminal, NoticesThatItsFileNamesAnotherDevice) {
  TestTerminal terminal;
  TestTerminal other;
  const std::string link = folder.File("receiver");
  fs::create_symlink(terminal.Path(), link);
  ASSERT_TRUE(Open(link));
  fs::remove(link);
  fs::create_symlink(other.Path(), link);
  ASSERT_TRUE(WaitUntil([&] { return lost == 1; }));
  EXPECT_THAT(port.ErrorText(), HasSubstr("was replaced"));
}

TEST_F(SerialPortOnTerminal, ADeviceIsLockedUnderAllItsNames) {
  TestTerminal terminal;
  const std::string link = folder.File("receiver");
  fs::create_symlink(terminal.Path(), link);
  ASSERT_TRUE(Open(terminal.Path()));
  QtSerialPort second([&](int) { return link; });
  EXPECT_FALSE(second.Open(6, "9600,N,8,1"));
  EXPECT_THAT(second.ErrorText(), StartsWith("In use: another program has " + link + " open"));
  port.Close();
  EXPECT_TRUE(second.Open(6, "9600,N,8,1")) << second.ErrorText();
}

TEST_F(SerialPortOnTerminal, JudgesADeviceBeforeItIsChosen) {
  TestTerminal terminal;
  TestTerminal other;
  EXPECT_EQ(port.DeviceProblem(terminal.Path()), "");
  ASSERT_TRUE(Open(terminal.Path()));
  EXPECT_EQ(port.DeviceProblem(terminal.Path()), "") << "its own";
  EXPECT_EQ(port.DeviceProblem(other.Path()), "");
  EXPECT_EQ(port.DeviceProblem("/dev/nowhere"),
            "No such device: /dev/nowhere. Plug in the receiver, or choose another device");
  const QtSerialPort second([](int) { return ""; });
  EXPECT_THAT(second.DeviceProblem(terminal.Path()), StartsWith("In use: another program"));
  terminal.Write(Bytes{1});
  EXPECT_TRUE(WaitUntil([&] { return received.size() == 1; })) << "left alone by all this";
}

TEST_F(SerialPortOnTerminal, SaysWhatIsWrongWithAPath) {
  WriteFile(folder.File("file"), "x");
  fs::create_symlink(folder.File("nowhere"), folder.File("dangling"));
  const struct {
    std::string path;
    std::string start;
  } cases[] = {
      {"", "No such device: no serial device is connected. Plug in the receiver"},
      {folder.File("missing"), "No such device: " + folder.File("missing") + ". Plug in"},
      {folder.File("file") + "/below", "No such device: "},
      {folder.File("dangling"), "No such device: "},
      {folder.Path(), "Not a serial device: " + folder.Path()},
      {folder.File("file"), "Not a serial device: "},
      {"/dev/null", "Not a serial device"},
  };
  for (const auto& c : cases) {
    EXPECT_FALSE(Open(c.path)) << c.path;
    EXPECT_FALSE(port.IsOpen());
    EXPECT_THAT(port.ErrorText(), StartsWith(c.start));
  }
  EXPECT_EQ(lost, 0);
}

TEST_F(SerialPortOnTerminal, SaysHowToGetPermission) {
  const std::string node = folder.File("tty");
  TestTerminal terminal;
  fs::create_symlink(terminal.Path(), node);
  fs::permissions(terminal.Path(), fs::perms::none);
  const WithoutRoot noRoot;
  EXPECT_FALSE(Open(node));
  EXPECT_EQ(port.ErrorText(),
            "Permission denied: " + node +
                ". Add your user to the group dialout: sudo usermod -aG dialout $USER, then log in "
                "again");
}

TEST_F(SerialPortOnTerminal, TakesEverySettingThatHardwareHas) {
  TestTerminal terminal;
  for (const char* settings : {"9600,N,8,1", "115200,e,7,2", "300,O,5,1.5", "12345,M,6,1",
                               " 57600 , S , 8 , 2 ", "1,N,8,1"}) {
    EXPECT_TRUE(Open(terminal.Path(), settings)) << settings << ": " << port.ErrorText();
  }
}

TEST_F(SerialPortOnTerminal, RefusesSettingsThatMakeNoSense) {
  TestTerminal terminal;
  const struct {
    const char* settings;
    const char* reason;
  } cases[] = {
      {"", "The serial settings \"\" are not baud rate, parity, data bits and stop bits"},
      {"9600,N,8", "are not baud rate"},
      {"9600,N,8,1,1", "are not baud rate"},
      {"0,N,8,1", "baud rate \"0\" is not possible"},
      {"-9600,N,8,1", "baud rate \"-9600\""},
      {"99999999999999999999,N,8,1", "baud rate"},
      {"fast,N,8,1", "baud rate \"fast\""},
      {"9600,X,8,1", "parity \"X\" is not possible: choose E, M, N, O or S."},
      {"9600,,8,1", "parity \"\""},
      {"9600,N,4,1", "data bits \"4\" is not possible: choose 5, 6, 7 or 8."},
      {"9600,N,9,1", "data bits \"9\""},
      {"9600,N,8,3", "stop bits \"3\" is not possible: choose 1, 1.5 or 2."},
      {"9600,N,8,", "stop bits \"\""},
  };
  for (const auto& c : cases) {
    EXPECT_FALSE(Open(terminal.Path(), c.settings)) << c.settings;
    EXPECT_THAT(port.ErrorText(), HasSubstr(c.reason));
  }
}

}  // namespace
}  // namespace wattlark
