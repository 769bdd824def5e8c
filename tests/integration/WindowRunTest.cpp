#include <gmock/gmock.h>

#include <regex>

#include "integration/HeadlessRun.h"
#include "integration/ScreenReader.h"
#include "integration/TestDesktop.h"

namespace wattlark {
namespace {

// The program in its window, with a simulated meter, on a desktop, and someone who reads the
// screen.
struct WindowRun : HeadlessRun {
  TestDesktop desktop;
  ScreenReader reader;

  WindowRun() { Simulate({"Kitchen:5:620"}); }

  std::vector<std::string> Window() const {
    return Command({"--device", device}, WATTLARK_PROGRAM);
  }
  /// Waits until the screen has a text of this form somewhere, and returns it. A text that was
  /// there `before` does not count.
  std::string Expect(const std::string& pattern, const std::string& before = "") {
    std::string screen;
    std::smatch found;
    EXPECT_TRUE(WaitUntil([&] {
      screen = reader.Screen();
      return std::regex_search(screen, found, std::regex(pattern)) && found.str() != before;
    })) << pattern
        << " is not in:\n"
        << screen;
    return found.str();
  }
  void EndFromTheMenu(RunningProgram& program) {
    desktop.Activate("Wattlark");
    desktop.Press("alt+f");
    Expect("Exit");
    desktop.Press("x");
    Expect("Are you sure you want to exit Wattlark\\?");
    EXPECT_TRUE(reader.Choose("Yes")) << reader.Screen();
    EXPECT_EQ(program.Wait(), 0) << program.Messages();
  }
};

// What the simulated meter draws, give or take its drift and noise.
constexpr const char* kReading = "(5[5-9]|6[0-9])[0-9]\\.[0-9] W\n";

TEST_F(WindowRun, ShowsAMeterRaisesAnAlarmHidesComesBackAndKeepsItsTotals) {
  AddKitchen({"--alarm", "on", "--alarm-upper", "300", "--alarm-duration", "1"});
  RunningProgram program(Window());
  Expect(kReading);
  Expect("Alarm!");
  Expect("Kitchen: Using (5[5-9]|6[0-9])[0-9]\\.[0-9] Watts");

  desktop.Activate("Wattlark");
  for (const char* text : {"Recent values", "Since Reset", "Last Kill-A-Watt packet"}) {
    desktop.Press("ctrl+Next");
    Expect(text);
  }
  EXPECT_TRUE(WaitUntil([&] { return reader.Screen().find("Since Reset") == std::string::npos; }));

  desktop.Press("alt+F4");
  EXPECT_TRUE(WaitUntil([&] { return !desktop.Shows("Wattlark"); }));
  EXPECT_TRUE(program.IsRunning());
  RunningProgram second(Window());
  EXPECT_EQ(second.Wait(), 0) << second.Messages();
  EXPECT_TRUE(WaitUntil([&] { return desktop.Shows("Wattlark"); }));

  EndFromTheMenu(program);
  const double energy = KitchenEnergy();
  EXPECT_GT(energy, 0);
  RunningProgram next(Window());
  // The first reading of a run adds no energy.
  Expect(kReading, Expect(kReading));
  EndFromTheMenu(next);
  EXPECT_GT(KitchenEnergy(), energy);
}

TEST_F(WindowRun, MeasuresWhileAnUpdateIsOfferedAndTakesACalibrationAndAnotherDevice) {
  const std::string other = folder.File("other");
  RunningProgram otherSim({WATTLARK_SIM_PROGRAM, "--link", other, "--meter", "Kitchen:5:200"});
  ASSERT_TRUE(WaitUntil([&] { return std::filesystem::exists(other); })) << otherSim.Messages();
  AddKitchen();
  Run({"setting", "set", "PortDevices/COM3", device});
  const auto server = OfferVersion9();
  RunningProgram program(Command({}, WATTLARK_PROGRAM));
  Expect("A new version of Wattlark is available!");
  Expect(kReading);
  EXPECT_TRUE(reader.Choose("Skip This Version")) << reader.Screen();
  // The main window takes no keys before.
  EXPECT_TRUE(WaitUntil([&] { return !desktop.Shows("Software Update"); }));

  desktop.Activate("Wattlark");
  desktop.Press("alt+t");
  Expect("Calibrate Selected Kill-A-Watt");
  desktop.Press("c");
  Expect("1[0-9][0-9]\\.[0-9] Volts\n0\\.6 volts/bit");
  desktop.Press("Down");
  Expect("0\\.594 volts/bit");
  for (const char* const next : {"498 counts", "0\\.0645161290322581 amps/bit"}) {
    desktop.Press("Return");
    Expect(next);
  }
  EXPECT_TRUE(reader.Choose("Save")) << reader.Screen();
  EXPECT_TRUE(WaitUntil([&] { return !desktop.Shows("Calibrate Kill-A-Watt.*"); }));

  desktop.Activate("Wattlark");
  desktop.Press("alt+t");
  Expect("Options\\.\\.\\.");
  desktop.Press("o");
  Expect("Show main window when Wattlark launches");
  desktop.Press("alt+e");
  desktop.Press("ctrl+a");
  desktop.Type(other);
  desktop.Press("Return");
  Expect("\n(1[5-9]|2[0-4])[0-9]\\.[0-9]+ W\n");
  EndFromTheMenu(program);
  EXPECT_NEAR(Kitchen().at("VoltageScaler").get<double>(), 0.594, 1e-12);
  EXPECT_EQ(Run({"setting", "get", "PortDevices/COM3"}), other + "\n");
}

}  // namespace
}  // namespace wattlark
