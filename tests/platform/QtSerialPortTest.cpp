#include <grp.h>

#include <numeric>
#include <optional>

#include "EventLoop.h"
#include "TemporaryFolder.h"
#include "platform/qt/QtSerialPort.h"
#include "platform/qt/SerialDeviceProblem.h"
#include "platform/qt/SerialDevices.h"
#include "twins/Frames.h"
#include "twins/Matchers.h"
#include "twins/TestTerminal.h"

namespace wattlark {
namespace {

namespace fs = std::filesystem;

std::string Choosing(int portNumber) {
  return "choose COM" + std::to_string(portNumber);
}

struct SerialPortOnTerminal : testing::Test {
  TemporaryFolder folder;
  std::string path;
  QtSerialPort port{[this](int) { return path; }, Choosing};
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

TEST_F(SerialPortOnTerminal, HandsOnEveryByteAsItIsAndKeepsWhatIsNotTaken) {
  TestTerminal terminal;
  ASSERT_TRUE(Open(terminal.Path())) << port.ErrorText();
  Bytes everyByte(256);
  std::iota(everyByte.begin(), everyByte.end(), std::uint8_t{0});
  terminal.Write(everyByte);
  EXPECT_TRUE(WaitUntil([&] { return received.size() >= 256; }));
  EXPECT_EQ(received, everyByte);
  int events = 0;
  port.onReceive = [&] { ++events; };
  terminal.Write(Bytes{1, 2, 3});
  ASSERT_TRUE(WaitUntil([&] { return events == 1; }));
  terminal.Write(Bytes{4});
  ASSERT_TRUE(WaitUntil([&] { return events == 2; }));
  EXPECT_EQ(port.ReadAll(), (Bytes{1, 2, 3, 4}));
}

TEST_F(SerialPortOnTerminal, TellsOnceThatTheDeviceHungUp) {
  std::optional<TestTerminal> terminal(std::in_place);
  ASSERT_TRUE(Open(terminal->Path()));
  terminal->Write(Bytes{1, 2, 3});
  terminal.reset();
  ASSERT_TRUE(WaitUntil([&] { return lost > 0; }));
  EXPECT_EQ(port.ErrorText(), "No such device: " + path +
                                  ". Plug in the receiver, or choose its device: choose COM5");
  EXPECT_EQ(port.ReadAll(), Bytes{});
  TurnEventLoop();
  EXPECT_EQ(lost, 1);
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

TEST_F(SerialPortOnTerminal, NoticesThatItsFileWasDeletedOrNamesAnotherDevice) {
  TestTerminal terminal;
  TestTerminal other;
  const std::string link = folder.File("receiver");
  for (const bool isReplaced : {false, true}) {
    fs::create_symlink(terminal.Path(), link);
    ASSERT_TRUE(Open(link)) << "the device came back: " << port.ErrorText();
    terminal.Write(Bytes{7});
    EXPECT_TRUE(WaitUntil([&] { return received == Bytes{7}; }));
    received.clear();
    fs::remove(link);
    if (isReplaced) fs::create_symlink(other.Path(), link);
    ASSERT_TRUE(WaitUntil([&] { return lost == (isReplaced ? 2 : 1); }));
    EXPECT_THAT(port.ErrorText(),
                isReplaced ? HasSubstr("was replaced") : HasSubstr("No such device: " + link));
  }
}

TEST_F(SerialPortOnTerminal, ADeviceIsJudgedAndLockedUnderAllItsNames) {
  TestTerminal terminal;
  const TestTerminal other;
  const std::string link = folder.File("receiver");
  fs::create_symlink(terminal.Path(), link);
  EXPECT_EQ(port.DeviceProblem(link), "");
  ASSERT_TRUE(Open(terminal.Path()));
  EXPECT_EQ(port.DeviceProblem(link), "") << "its own";
  EXPECT_EQ(port.DeviceProblem(other.Path()), "");
  EXPECT_EQ(port.DeviceProblem("/dev/nowhere"),
            "No such device: /dev/nowhere. Plug in the receiver, or choose another device");
  QtSerialPort second([&](int) { return link; }, Choosing);
  EXPECT_THAT(second.DeviceProblem(terminal.Path()), StartsWith("In use: another program"));
  EXPECT_FALSE(second.Open(6, "9600,N,8,1"));
  EXPECT_THAT(second.ErrorText(), StartsWith("In use: another program has " + link + " open"));
  terminal.Write(Bytes{1});
  EXPECT_TRUE(WaitUntil([&] { return received.size() == 1; })) << "left alone by all this";
  port.Close();
  EXPECT_TRUE(second.Open(6, "9600,N,8,1")) << second.ErrorText();
}

TEST_F(SerialPortOnTerminal, SaysWhatIsWrongWithAPath) {
  WriteFile(folder.File("file"), "x");
  const std::pair<std::string, std::string> cases[] = {
      {"", "No such device: no serial device is connected. Plug in the receiver"},
      {folder.File("file") + "/below", "No such device: " + folder.File("file") + "/below. Plug"},
      {folder.File("file"), "Not a serial device: " + folder.File("file")},
      {"/dev/null", "Not a serial device"}};
  for (const auto& [device, start] : cases) {
    EXPECT_FALSE(Open(device)) << device;
    EXPECT_FALSE(port.IsOpen());
    EXPECT_THAT(port.ErrorText(), StartsWith(start));
  }
}

TEST_F(SerialPortOnTerminal, TellsHowToGetAccess) {
  const TestTerminal terminal;
  const std::string& device = terminal.Path();
  using Row = std::tuple<fs::perms, const char*, const char*, const char*>;
  for (const auto& [permissions, group, advice, command] :
       {Row{fs::perms::none, "", "Add your user to the group dialout: sudo usermod",
            "sudo usermod -aG dialout $USER"},
        Row{fs::perms::group_all, "uucp", "Add your user to the group uucp: sudo usermod",
            "sudo usermod -aG uucp $USER"},
        // The group that the system gives to the user of WithoutRoot: the process has another one.
        Row{fs::perms::group_all, "nogroup", "Your user is in the group nogroup, which counts",
            ""}}) {
    const ::group* owner = ::getgrnam(group);
    if (owner != nullptr && ::chown(device.c_str(), 0, owner->gr_gid) != 0) return;  // not root
    fs::permissions(device, permissions);
    const WithoutRoot noRoot;
    EXPECT_FALSE(Open(device));
    EXPECT_THAT(port.ErrorText(), StartsWith("Permission denied: " + device + ". " + advice));
    EXPECT_TRUE(AccessToSerialDevice(device).isDenied) << group;
    EXPECT_EQ(AccessToSerialDevice(device).command, command);
  }
  EXPECT_FALSE(AccessToSerialDevice("/dev/null").isDenied);
}

TEST_F(SerialPortOnTerminal, TakesTheSettingsThatHardwareHasAndNoOthers) {
  TestTerminal terminal;
  for (const char* settings : {"115200,e,7,2", "300,O,5,1.5", "12345,M,6,1", " 1 , S , 8 , 2 "}) {
    EXPECT_TRUE(Open(terminal.Path(), settings)) << settings << ": " << port.ErrorText();
  }
  const std::pair<const char*, const char*> cases[] = {
      {"", "The serial settings \"\" are not baud rate, parity, data bits and stop bits"},
      {"0,N,8,1", "baud rate \"0\" is not possible"},
      {"9600,X,8,1", "parity \"X\" is not possible: choose E, M, N, O or S."},
      {"9600,N,9,1", "data bits \"9\" is not possible: choose 5, 6, 7 or 8."},
      {"9600,N,8,3", "stop bits \"3\" is not possible: choose 1, 1.5 or 2."}};
  for (const auto& [settings, reason] : cases) {
    EXPECT_FALSE(Open(terminal.Path(), settings)) << settings;
    EXPECT_THAT(port.ErrorText(), HasSubstr(reason));
  }
}

std::vector<std::string> Paths(const std::string& folder) {
  std::vector<std::string> paths;
  for (const SerialDevice& device : ListSerialDevices(folder)) paths.push_back(device.Path());
  return paths;
}

TEST(ListSerialDevices, ListsEachDeviceOnceUnderItsLastingName) {
  const TemporaryFolder folder;
  const std::string byId = folder.File("serial/by-id");
  for (const char* name : {"ttyS0", "ttyUSB0", "ttyUSB1", "ttyUSB12", "ttyUSB3", "ttyACM0"}) {
    WriteFile(folder.File(name), "");
  }
  fs::create_directories(byId);
  using Link = std::pair<const char*, const char*>;
  for (const auto& [name, device] :
       {Link{"usb-B-if00", "ttyUSB0"}, Link{"usb-A-if00", "ttyUSB1"},
        Link{"usb-A-if00-other-name", "ttyUSB1"}, Link{"usb-gone-if00", "ttyUSB9"}}) {
    fs::create_symlink(std::string("../../") + device, byId + "/" + name);
  }
  EXPECT_THAT(Paths(folder.Path()),
              ElementsAre(byId + "/usb-A-if00", byId + "/usb-B-if00", folder.File("ttyACM0"),
                          folder.File("ttyUSB3"), folder.File("ttyUSB12")));
}

}  // namespace
}  // namespace wattlark
