#include <gmock/gmock.h>

#include <filesystem>

#include "TemporaryFolder.h"
#include "platform/qt/SerialDevices.h"

namespace wattlark {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

std::vector<std::string> Paths(const std::string& folder) {
  std::vector<std::string> paths;
  for (const SerialDevice& device : ListSerialDevices(folder)) paths.push_back(device.Path());
  return paths;
}

TEST(ListSerialDevices, ListsEachDeviceOnceUnderItsLastingName) {
  const TemporaryFolder folder;
  const std::string byId = folder.File("serial/by-id");
  for (const char* name : {"ttyS0", "tty1"}) WriteFile(folder.File(name), "");
  EXPECT_THAT(Paths(folder.Path()), IsEmpty());
  for (const char* name : {"ttyUSB0", "ttyUSB1", "ttyUSB12", "ttyUSB3", "ttyACM0"}) {
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
