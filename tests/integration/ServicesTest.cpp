#include <gmock/gmock.h>
#include <malloc.h>

#include "app/MonitorFixture.h"
#include "app/WebPublishers.h"
#include "platform/qt/QtEventPump.h"
#include "platform/qt/QtHttpClient.h"
#include "services/Services.h"

namespace wattlark {
namespace {

constexpr std::chrono::seconds kLimit{20};

// A monitor that talks to a service over real connections.
struct ServicesTest : MonitorTest {
  void TearDown() override { monitor.reset(); }  // it hears of its clients to its end

  QtEventPump pump;
  QtHttpClient pachube{kLimit};
  QtHttpClient google{kLimit};
  QtHttpClient twitter{kLimit};
  QtHttpClient versionAlert{kLimit};
  WebPorts ports{pachube,      google, twitter,
                 versionAlert, pump,   [](DateTime local) { return local; }};
};

TEST_F(ServicesTest, ThatAreNotThereTakeNoMemory) {
  // A port that nobody listens at any more.
  Put("Settings", "PachubeFeedURL", Services().URL(Services::FeedPath));
  web = &ports;
  Start();
  const auto fail = [&](int times) {
    for (int i = 0; i < times; ++i) {
      ASSERT_EQ(monitor->PublishNow(PublishTarget::Pachube, true).text,
                "Pachube: Error Returned >> ");
      listener.infoTexts.clear();
      listener.errors.clear();
      listener.timerChanges.clear();
    }
  };
  fail(1200);  // the error list is full
  const std::size_t before = mallinfo2().uordblks;
  fail(10000);
  const std::size_t after = mallinfo2().uordblks;
  EXPECT_LT(after, before + std::size_t{64} * 1024);
}

}  // namespace
}  // namespace wattlark
