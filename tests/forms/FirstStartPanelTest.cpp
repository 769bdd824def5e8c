#include <QClipboard>
#include <QGuiApplication>
#include <QTest>

#include "MainWindowFixture.h"
#include "app/forms/FirstStartPanel.h"

namespace wattlark {
namespace {

// A new profile, with a device connected, which the user may not open when its path is denied.
struct FirstStartWindow : MainWindowTest {
  FirstStartWindow() { port.opens = false; }

  void Prepare() override {
    options.dialogs.editMeter = [this](clsKillAWatt& meter, const std::string&) {
      addresses.push_back(meter.XBeeAddress());
      return accepts;
    };
    guide.emplace(FirstStart::Ports{*monitor, devices, registry, prompts,
                                    [this] { return connected; }, [this] { return connected; },
                                    [](const std::string&) { return std::string(); },
                                    [this](const std::string& path) {
                                      return SerialAccess{path == deniedPath, "usermod"};
                                    }});
    options.firstStart = &*guide;
  }
  void StartHere(int meterCount = 0) {
    Start(meterCount).ShowAtLaunch();
    Tick();
  }
  bool Shows(const QString& name) const {
    const auto* control = window->findChild<QWidget*>(name);
    return control != nullptr && control->isVisible();
  }
  void ClickOn(const QString& name) const { QTest::mouseClick(&Control(name), Qt::LeftButton); }
  void Hear(std::uint16_t address) {
    port.waiting = MeterFrame(address, {700, 300}, {498, 530});
    monitor->ReceiveXBeeData();
    Tick();
  }
  std::string Caption() const { return Control<MainArea>("elaWindow").Caption().toStdString(); }

  std::vector<SerialDevice> connected{{"/dev/serial/by-id/usb-a", "/dev/ttyUSB0", "Receiver"}};
  std::string deniedPath;
  PortDevices devices{store, [this] { return connected; }};
  std::optional<FirstStart> guide;
  std::vector<int> addresses;
  bool accepts = true;
};

TEST_F(FirstStartWindow, ADeviceThatIsChosenIsOpenedAtOnceAndStoredOrToldOf) {
  StartHere();
  const int openedBefore = port.openCalls;
  port.opens = true;
  registry.failsWrites = true;
  ClickOn("cmdDevice0");
  EXPECT_EQ(devices.Path(3), "/dev/serial/by-id/usb-a");
  EXPECT_FALSE(monitor->Errors().IsEmpty());
  registry.failsWrites = false;
  ClickOn("cmdDevice0");
  EXPECT_EQ(Get("PortDevices", "COM3"), "/dev/serial/by-id/usb-a");
  EXPECT_EQ(port.openCalls, openedBefore + 1) << "chosen once more it keeps receiving";
  EXPECT_EQ(Caption(), "No Kill-A-Watts have been added\r\nDouble click to add...");
  EXPECT_TRUE(Control<QPushButton>("cmdDevice0").isChecked());
}

TEST_F(FirstStartWindow, AHeardMeterIsAddedWithItsAddress) {
  port.opens = true;
  accepts = false;
  StartHere();
  QTest::mouseDClick(&Control("lblDemo"), Qt::LeftButton);  // as in the rest of the area
  Hear(5);
  auto& button = Control<QPushButton>("cmdMeter0");
  EXPECT_EQ(button.accessibleName(), "Meter 5 is sending: add it?");
  ClickOn("cmdMeter0");
  EXPECT_TRUE(Shows("FirstStartPanel"));
  accepts = true;
  button.setFocus();
  QTest::keyClick(&button, Qt::Key_Return);
  EXPECT_THAT(addresses, testing::ElementsAre(0, 5, 5));
  EXPECT_FALSE(Shows("FirstStartPanel"));
  EXPECT_EQ(Caption(), "");
  QCoreApplication::processEvents();
  EXPECT_GE(Control("tabKillAWatt").height(), 20);
  Hear(6);
  EXPECT_FALSE(Shows("FirstStartPanel"));
}

TEST_F(FirstStartWindow, DevicesComeAndGoWithoutARestart) {
  connected.clear();
  StartHere();
  EXPECT_FALSE(Shows("cmdDevice0"));
  connected = {{"", "/dev/ttyACM0"}};
  deniedPath = "/dev/ttyACM0";
  Tick();
  EXPECT_TRUE(Shows("cmdDevice0"));
  EXPECT_EQ(Control<QPushButton>("cmdDevice0").accessibleName(), "/dev/ttyACM0");
  // The command that gives access is there to copy.
  EXPECT_EQ(Control<QLineEdit>("txtCommand").text(), "usermod");
  ClickOn("cmdCopy");
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "usermod");
  deniedPath.clear();
  Tick();
  EXPECT_FALSE(Shows("txtCommand"));
}

TEST_F(FirstStartWindow, DemoModeIsTriedAfterTheWarningAndLeft) {
  StartHere();
  accepts = false;
  prompts.answers = {PromptAnswer::Cancel};
  ClickOn("cmdDemo");
  EXPECT_FALSE(monitor->IsDemoMode());
  EXPECT_THAT(addresses, testing::IsEmpty());
  ClickOn("cmdDemo");
  ASSERT_EQ(prompts.asked.size(), 2u);
  EXPECT_EQ(prompts.asked.back().caption, "Consider yourself warned!");
  EXPECT_TRUE(monitor->IsDemoMode());
  EXPECT_THAT(addresses, testing::ElementsAre(0));
  EXPECT_TRUE(Shows("cmdAdd"));
  ClickOn("cmdDemo");
  EXPECT_FALSE(monitor->IsDemoMode());
  EXPECT_TRUE(Shows("cmdDevice0"));
}

}  // namespace
}  // namespace wattlark
