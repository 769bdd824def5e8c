#include <gtest/gtest.h>

#include "config/PortDevices.h"
#include "config/modRegistry.h"
#include "twins/MemoryRegistry.h"

namespace wattlark {
namespace {

TEST(PortDevices, FindThePathOfAPort) {
  MemoryRegistry registry;
  modRegistry store(registry);
  store.SaveAppSetting("", "PortDevices", "COM2", "/dev/my-receiver");
  store.SaveAppSetting("", "PortDevices", "com6", " /dev/other ");
  store.SaveAppSetting("", "PortDevices", "COM3", "");
  std::vector<SerialDevice> connected;
  int asked = 0;
  PortDevices devices(store, [&] {
    ++asked;
    return connected;
  });
  EXPECT_EQ(devices.Path(4), "/dev/ttyS3");
  EXPECT_EQ(asked, 0) << "the answer depends on no connected device";
  EXPECT_EQ(devices.Path(5), "");
  EXPECT_EQ(asked, 1);
  connected = {{"", "/dev/ttyUSB10"},
               {"/dev/serial/by-id/usb-Prolific_PL2303-if00-port0", "/dev/ttyUSB0"},
               {"", "/dev/ttyACM0"},
               {"", "/dev/ttyUSB2"},
               {"/dev/serial/by-id/usb-FTDI_FT232R_A600-if00-port0", "/dev/ttyUSB1"}};
  // Those with a lasting name come first; numbers within names count.
  using Row = std::pair<int, const char*>;
  for (const auto& [port, path] :
       {Row{1, "/dev/ttyS0"}, Row{2, "/dev/my-receiver"}, Row{3, "/dev/ttyS2"},
        Row{5, "/dev/serial/by-id/usb-FTDI_FT232R_A600-if00-port0"}, Row{6, "/dev/other"},
        Row{7, "/dev/ttyACM0"}, Row{8, "/dev/ttyUSB2"}, Row{9, "/dev/ttyUSB10"}, Row{10, ""},
        Row{0, ""}, Row{-32768, ""}, Row{32767, ""}}) {
    EXPECT_EQ(devices.Path(port), path) << port;
  }
  // A device for this run goes before the stored one of its port alone.
  devices.UseForThisRun(2, "/tmp/pty");
  EXPECT_EQ(devices.Path(2), "/tmp/pty");
  EXPECT_EQ(devices.Path(6), "/dev/other");
  devices.UseForThisRun(2, "");
  EXPECT_EQ(devices.Path(2), "/dev/my-receiver");
}

}  // namespace
}  // namespace wattlark
