#include "app/FirstStartView.h"
#include "twins/HandClock.h"
#include "twins/Matchers.h"

namespace wattlark {
namespace {

using testing::SizeIs;

const SerialDevice kNamed{"/dev/serial/by-id/usb-a", "/dev/ttyUSB0", "FT232R USB UART"};
const SerialDevice kPlain{"", "/dev/ttyACM0"};
const DateTime kNow = At("2026-11-16T20:10:00");

TEST(FirstStartViewTest, SaysWhatToDoNextAndNamesDevices) {
  FirstStartState state;
  state.portNumber = 3;
  state.devicePath = "/dev/ttyS2";
  state.portProblem = "No such device: /dev/ttyS2";
  const auto view = [&state] { return MakeFirstStartView(state, kNow); };
  EXPECT_THAT(view().receiverText, StartsWith("No USB serial device is connected."));
  state.devices = {kNamed};
  EXPECT_EQ(view().receiverText, "A serial device is connected. Is it the receiver?");
  state.devices = {kNamed, kPlain};
  EXPECT_EQ(view().receiverText, "Which of these is the receiver?");
  state.isChosen = true;
  EXPECT_EQ(view().receiverText, "No such device: /dev/ttyS2.");
  state.deniedPath = "/dev/ttyS2";
  EXPECT_THAT(view().receiverText, StartsWith("You may use /dev/ttyS2 from the next log-in"));
  state.accessCommand = "sudo";
  EXPECT_THAT(view().receiverText, StartsWith("You may not use /dev/ttyS2 yet. Type this"));
  EXPECT_EQ(view().command, "sudo");
  state.isOpen = true;
  EXPECT_EQ(view().receiverText, "Listening on COM3, /dev/ttyS2.");
  EXPECT_THAT(view().command, IsEmpty());
  state.devicePath = "/dev/ttyUSB0";
  EXPECT_EQ(view().receiverText, "Listening on COM3.");
  EXPECT_EQ(view().devices,
            (std::vector<FirstStartView::Device>{
                {"/dev/serial/by-id/usb-a", "FT232R USB UART", "/dev/serial/by-id/usb-a", true},
                {"/dev/ttyACM0", "/dev/ttyACM0", "", false}}));
  state.devices.assign(200, kPlain);
  EXPECT_THAT(view().devices, SizeIs(6));
  EXPECT_THAT(view().receiverText, testing::EndsWith(" The options list all devices."));
  state.isDemoMode = true;
  EXPECT_THAT(view().devices, IsEmpty());
  EXPECT_EQ(view().demoCaption, "Leave demo mode");
  state.canLeaveDemoMode = false;
  EXPECT_THAT(view().demoCaption, IsEmpty());
}

TEST(FirstStartViewTest, OffersTheMetersThatSendNow) {
  FirstStartState state;
  state.isOpen = true;
  EXPECT_THAT(MakeFirstStartView(state, kNow).metersText, StartsWith("No meter is heard"));
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
