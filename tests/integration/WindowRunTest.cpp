#include <gmock/gmock.h>

#include "integration/HeadlessRun.h"
#include "integration/TestDesktop.h"

namespace wattlark {
namespace {

// The program in its window, with a simulated meter, on a desktop.
struct WindowRun : HeadlessRun {
  TestDesktop desktop;

  void SetUp() override { Simulate(); }

  std::vector<std::string> Window(std::vector<std::string> options = {}) const {
    options.insert(options.end(), {"--checkpoint", "1"});
    return Command(std::move(options), WATTLARK_PROGRAM);
  }
  bool Measures(double since = 0) const {
    return WaitUntil([&] { return KitchenEnergy() > since; });
  }
  bool Opens(const std::string& window) {
    return WaitUntil([&] { return desktop.Shows(window); });
  }
  bool Closes(const std::string& window) {
    return WaitUntil([&] { return !desktop.Shows(window); });
  }
  void OpenFromTheMenu(const char* menu, const char* item, const std::string& window) {
    desktop.Activate("Wattlark");
    desktop.Press({menu, item});
    ASSERT_TRUE(Opens(window));
    desktop.Activate(window);
  }
  void EndFromTheMenu(RunningProgram& program) {
    desktop.Activate("Wattlark");
    desktop.Press({"alt+f", "x"});
    EXPECT_TRUE(WaitUntil([&] {
      desktop.Press({"alt+y"});  // to the question whether to end
      return !program.IsRunning();
    }));
    EXPECT_EQ(program.Wait(), 0) << program.Messages();
  }
};

TEST_F(WindowRun, RaisesAnAlarmHidesComesBackAndKeepsItsTotals) {
  AddKitchen({"--alarm", "on", "--alarm-upper", "300", "--alarm-duration", "1"});
  RunningProgram program(Window({"--device", device}));
  EXPECT_TRUE(Opens("Alarm!")) << program.Messages();
  desktop.Activate("Wattlark");
  desktop.Press({"alt+F4"});
  EXPECT_TRUE(Closes("Wattlark"));
  EXPECT_TRUE(program.IsRunning());
  RunningProgram second(Window({"--device", device}));
  EXPECT_EQ(second.Wait(), 0) << second.Messages();
  EXPECT_TRUE(Opens("Wattlark"));
  EndFromTheMenu(program);
  const double energy = KitchenEnergy();
  EXPECT_GT(energy, 0);
  RunningProgram next(Window({"--device", device}));
  EXPECT_TRUE(Measures(energy));
}

TEST_F(WindowRun, MeasuresWhileAnUpdateIsOfferedAndSavesACalibration) {
  const auto server = OfferVersion9();
  AddKitchen();
  RunningProgram program(Window({"--device", device}));
  EXPECT_TRUE(Opens("Software Update")) << program.Messages();
  EXPECT_TRUE(Measures());
  desktop.Activate("Software Update");
  desktop.Press({"Escape"});
  // The main window takes no keys before.
  EXPECT_TRUE(Closes("Software Update"));

  const std::string caption = "Calibrate Kill-A-Watt - Step ";
  OpenFromTheMenu("alt+t", "c", caption + "1 of 3");
  desktop.Press({"Down", "Return"});
  EXPECT_TRUE(Opens(caption + "2 of 3"));
  desktop.Press({"Return"});
  EXPECT_TRUE(Opens(caption + "3 of 3"));
  desktop.Press({"Return"});
  EXPECT_TRUE(Closes(caption + "3 of 3"));
  EndFromTheMenu(program);
  EXPECT_NEAR(Kitchen().at("VoltageScaler").get<double>(), 0.594, 1e-12);
}

TEST_F(WindowRun, GoesOnAtTheDeviceThatIsChosenInTheOptions) {
  AddKitchen();
  Run({"setting", "set", "PortDevices/COM3", receiver->Path()});  // which is silent
  RunningProgram program(Window());
  ASSERT_TRUE(Opens("Wattlark")) << program.Messages();
  OpenFromTheMenu("alt+t", "o", "Options");
  desktop.Press({"alt+e", "ctrl+a"});
  desktop.Type(device);
  desktop.Press({"Return"});
  EXPECT_TRUE(Measures());
  EXPECT_EQ(Run({"setting", "get", "PortDevices/COM3"}), device + "\n");
  EndFromTheMenu(program);
}

}  // namespace
}  // namespace wattlark
