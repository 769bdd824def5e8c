#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "TemporaryFolder.h"
#include "platform/qt/SerialDevices.h"

namespace wattlark {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

struct DeviceFolder : testing::Test {
  TemporaryFolder folder;
  std::string byId = folder.File("serial/by-id");

  void AddDevice(const std::string& name) const { WriteFile(folder.File(name), ""); }
  void AddById(const std::string& name, const std::string& device) const {
    fs::create_directories(byId);
    fs::create_symlink("../../" + device, byId + "/" + name);
  }
  std::vector<std::string> Paths() const {
    std::vector<std::string> paths;
    for (const SerialDevice& device : ListSerialDevices(folder.Path())) {
      paths.push_back(device.Path());
    }
    return paths;
  }
};

TEST_F(DeviceFolder, WithoutDevicesListsNone) {
  AddDevice("ttyS0");
  AddDevice("tty1");
  EXPECT_THAT(Paths(), IsEmpty());
}

TEST_F(DeviceFolder, ListsEachDeviceOnceUnderItsLastingName) {
  for (const char* name : {"ttyUSB0", "ttyUSB1", "ttyUSB12", "ttyUSB3", "ttyACM0"}) AddDevice(name);
  AddById("usb-B-if00", "ttyUSB0");
  AddById("usb-A-if00", "ttyUSB1");
  AddById("usb-A-if00-other-name", "ttyUSB1");
  EXPECT_THAT(Paths(),
              ElementsAre(byId + "/usb-A-if00", byId + "/usb-B-if00", folder.File("ttyACM0"),
                          folder.File("ttyUSB3"), folder.File("ttyUSB12")));
}

TEST_F(DeviceFolder, LeavesOutALastingNameOfADeviceThatIsGone) {
  AddDevice("ttyACM0");
  AddById("usb-gone-if00", "ttyUSB0");
  EXPECT_THAT(Paths(), ElementsAre(folder.File("ttyACM0")));
}

}  // namespace
}  // namespace wattlark
