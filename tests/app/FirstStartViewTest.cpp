#include <gmock/gmock.h>

#include "app/FirstStartView.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

const SerialDevice kNamed{"/dev/serial/by-id/usb-a", "/dev/ttyUSB0", "FT232R USB UART"};
const SerialDevice kPlain{"", "/dev/ttyACM0"};
const DateTime kNow = At("2026-11-16T20:10:00");

FirstStartState Closed(std::vector<SerialDevice> devices) {
  FirstStartState state;
  state.portNumber = 3;
  state.devicePath = "/dev/ttyS2";
  state.portProblem = "No such device: /dev/ttyS2";
  state.devices = std::move(devices);
  return state;
}
FirstStartState Chosen(FirstStartState state, const std::string& path) {
  state.isChosen = true;
  state.devicePath = path;
  state.portProblem = "In use: another program has " + path + " open";
  return state;
}
FirstStartState Denied(const std::string& command) {
  FirstStartState state = Chosen(Closed({kNamed}), kNamed.byIdPath);
  state.deniedPath = kNamed.byIdPath;
  state.accessCommand = command;
  return state;
}
FirstStartState Open(FirstStartState state) {
  state.isOpen = true;
  return state;
}
FirstStartState Demo() {
  FirstStartState state = Closed({kNamed});
  state.isDemoMode = true;
  return state;
}

TEST(FirstStartViewTest, SaysWhatToDoNextAndNamesDevices) {
  using Row = std::tuple<FirstStartState, const char*, const char*>;
  for (const auto& [state, text, command] :
       {Row{Closed({}), "No USB serial device is connected. Plug in the receiver: it appears here.",
            ""},
        Row{Closed({kNamed}), "A serial device is connected. Is it the receiver?", ""},
        Row{Closed({kNamed, kPlain}), "Which of these is the receiver?", ""},
        Row{Chosen(Closed({kNamed}), "/dev/ttyUSB0"),
            "In use: another program has /dev/ttyUSB0 open.", ""},
        Row{Denied("sudo"),
            "You may not use /dev/serial/by-id/usb-a yet. Type this in a terminal, then log out "
            "and in again:",
            "sudo"},
        Row{Denied(""),
            "You may use /dev/serial/by-id/usb-a from the next log-in: log out and in again.", ""},
        Row{Open(Chosen(Closed({kNamed}), kNamed.byIdPath)), "Listening on COM3.", ""},
        Row{Open(Closed({kNamed})), "Listening on COM3, /dev/ttyS2.", ""},
        Row{Demo(), "Demo mode is on: no receiver is used, and every meter shows made-up readings.",
            ""}}) {
    const FirstStartView view = MakeFirstStartView(state, kNow);
    EXPECT_EQ(view.receiverText, text);
    EXPECT_EQ(view.command, command);
    EXPECT_EQ(view.devices.size(), state.isDemoMode ? 0 : state.devices.size());
  }
  EXPECT_EQ(MakeFirstStartView(Closed({}), kNow).demoCaption, "Try demo mode…");
  FirstStartState demo = Demo();
  EXPECT_EQ(MakeFirstStartView(demo, kNow).demoCaption, "Leave demo mode");
  EXPECT_TRUE(MakeFirstStartView(demo, kNow).offersAdding);
  demo.canLeaveDemoMode = false;
  EXPECT_THAT(MakeFirstStartView(demo, kNow).demoCaption, IsEmpty());
  const FirstStartView many = MakeFirstStartView(Closed(std::vector(200, kPlain)), kNow);
  EXPECT_THAT(many.devices, SizeIs(6));
  EXPECT_EQ(many.receiverText, "Which of these is the receiver? The options list all devices.");
  EXPECT_EQ(
      MakeFirstStartView(Open(Chosen(Closed({kNamed, kPlain}), "/dev/ttyUSB0")), kNow).devices,
      (std::vector<FirstStartView::Device>{
          {"/dev/serial/by-id/usb-a", "FT232R USB UART", "/dev/serial/by-id/usb-a", true},
          {"/dev/ttyACM0", "/dev/ttyACM0", "", false}}));
}

TEST(FirstStartViewTest, OffersTheMetersThatSendNow) {
  FirstStartState state = Open(Closed({}));
  EXPECT_THAT(MakeFirstStartView(state, kNow).metersText, testing::StartsWith("No meter is heard"));
  // A minute ago, and an hour ahead as after the end of summer time.
  state.heard = {{4, 9, kNow.PlusMilliseconds(-60'000)},
                 {5, 1, kNow.PlusMilliseconds(-59'999)},
                 {6, 9, kNow.PlusMilliseconds(3'600'000)}};
  FirstStartView view = MakeFirstStartView(state, kNow);
  EXPECT_EQ(view.meters, (std::vector<FirstStartView::Meter>{{5, "Meter 5 is sending: add it?"}}));
  EXPECT_THAT(view.metersText, IsEmpty());

  state.heard.clear();
  for (std::int16_t address = 1; address <= 8; ++address) {
    state.heard.push_back({address, static_cast<std::uint64_t>(address == 2 ? 1 : 10), kNow});
  }
  view = MakeFirstStartView(state, kNow);
  EXPECT_EQ(view.metersText, "And 2 more.");
  ASSERT_THAT(view.meters, SizeIs(6));
  EXPECT_EQ(view.meters[0].address, 1);
  EXPECT_EQ(view.meters[1].address, 3);

  state.isOpen = false;
  EXPECT_THAT(MakeFirstStartView(state, kNow).meters, IsEmpty());
}

}  // namespace
}  // namespace wattlark
