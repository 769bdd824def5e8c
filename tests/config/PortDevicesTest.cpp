#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/PortDevices.h"
#include "config/modRegistry.h"
#include "twins/MemoryRegistry.h"

namespace wattlark {
namespace {

const std::vector<SerialDevice> kConnected = {
    {"", "/dev/ttyUSB10"},
    {"/dev/serial/by-id/usb-Prolific_PL2303-if00-port0", "/dev/ttyUSB0"},
    {"", "/dev/ttyACM0"},
    {"", "/dev/ttyUSB2"},
    {"/dev/serial/by-id/usb-FTDI_FT232R_A600-if00-port0", "/dev/ttyUSB1"},
};

struct PathCase {
  const char* what;
  int port;
  std::vector<SerialDevice> connected;
  const char* path;
};

class PortDevicesPath : public testing::TestWithParam<PathCase> {
 protected:
  PortDevicesPath() {
    store.SaveAppSetting("", "PortDevices", "COM2", "/dev/my-receiver");
    store.SaveAppSetting("", "PortDevices", "com6", " /dev/other ");
    store.SaveAppSetting("", "PortDevices", "COM3", "");
  }
  MemoryRegistry registry;
  modRegistry store{registry};
};

TEST_P(PortDevicesPath, IsFound) {
  const PortDevices devices(store, [] { return GetParam().connected; });
  EXPECT_EQ(devices.Path(GetParam().port), GetParam().path);
}

INSTANTIATE_TEST_SUITE_P(
    Table, PortDevicesPath,
    testing::Values(PathCase{"BuiltIn", 1, kConnected, "/dev/ttyS0"},
                    PathCase{"Stored", 2, kConnected, "/dev/my-receiver"},
                    PathCase{"StoredEmpty", 3, kConnected, "/dev/ttyS2"},
                    PathCase{"LastBuiltIn", 4, {}, "/dev/ttyS3"},
                    PathCase{"FirstById", 5, kConnected,
                             "/dev/serial/by-id/usb-FTDI_FT232R_A600-if00-port0"},
                    PathCase{"StoredInSmallLettersWithBlanks", 6, kConnected, "/dev/other"},
                    PathCase{"WithoutByIdBehindThoseWith", 7, kConnected, "/dev/ttyACM0"},
                    PathCase{"NumbersInNamesCount", 8, kConnected, "/dev/ttyUSB2"},
                    PathCase{"Last", 9, kConnected, "/dev/ttyUSB10"},
                    PathCase{"OneTooMany", 10, kConnected, ""},
                    PathCase{"NoneConnected", 5, {}, ""}, PathCase{"Zero", 0, kConnected, ""},
                    PathCase{"Negative", -32768, kConnected, ""},
                    PathCase{"Largest", 32767, kConnected, ""}),
    [](const auto& test) { return test.param.what; });

TEST(PortDevices, ADeviceForThisRunGoesBeforeTheStoredOneOfItsPortAlone) {
  MemoryRegistry registry;
  modRegistry store(registry);
  store.SaveAppSetting("", "PortDevices", "COM2", "/dev/stored2");
  store.SaveAppSetting("", "PortDevices", "COM3", "/dev/stored3");
  PortDevices devices(store, [] { return kConnected; });
  devices.UseForThisRun(2, "/tmp/pty");
  EXPECT_EQ(devices.Path(2), "/tmp/pty");
  EXPECT_EQ(devices.Path(3), "/dev/stored3");
  devices.UseForThisRun(2, "");
  EXPECT_EQ(devices.Path(2), "/dev/stored2");
}

TEST(PortDevices, LooksForConnectedDevicesOnlyWhenTheAnswerDependsOnThem) {
  MemoryRegistry registry;
  modRegistry store(registry);
  int asked = 0;
  const PortDevices devices(store, [&] {
    ++asked;
    return kConnected;
  });
  devices.Path(1);
  EXPECT_EQ(asked, 0);
  devices.Path(5);
  EXPECT_EQ(asked, 1);
}

}  // namespace
}  // namespace wattlark
