#include <gmock/gmock.h>
#include <malloc.h>

#include "app/MonitorFixture.h"
#include "platform/TemporaryFolder.h"
#include "platform/qt/QtEventPump.h"
#include "platform/qt/QtHttpClient.h"
#include "services/Services.h"

namespace wattlark {
namespace {

// A monitor whose posts to a service over real connections all fail.
struct FailedPosts : MonitorTest {
  void TearDown() override { monitor.reset(); }  // it hears of its clients to its end
  /// What `measured` posts to a feed leave in memory, in bytes, when `before` of them went ahead.
  std::int64_t Left(const std::string& feed, int before, int measured) {
    Put("Settings", "PachubeFeedURL", feed);
    web = &ports;
    Start();
    Fail(before);
    const std::size_t used = mallinfo2().uordblks;
    Fail(measured);
    return static_cast<std::int64_t>(mallinfo2().uordblks) - static_cast<std::int64_t>(used);
  }
  void Fail(int times) {
    for (int i = 0; i < times; ++i) {
      ASSERT_EQ(monitor->PublishNow(PublishTarget::Pachube, true).text,
                "Pachube: Error Returned >> ");
      listener.infoTexts.clear();
      listener.errors.clear();
      listener.timerChanges.clear();
    }
  }

  QtEventPump realPump;
  QtHttpClient client{std::chrono::seconds(20)};
  WebPorts ports{client,       google,   twitter,
                 versionAlert, realPump, [](DateTime local) { return local; }};
};

TEST_F(FailedPosts, ToNobodyTakeNoMemory) {
  const std::string gone = Services().URL(Services::FeedPath);
  EXPECT_LT(Left(gone, 1200, 10000), 64 * 1024) << "the error list was full before";
}

TEST_F(FailedPosts, ToAServerThatIsNotTrustedTakeNoMemory) {
  const TemporaryFolder folder;
  const Certificate certificate(folder.Path());
  const Services services(&certificate);
  // The caches of OpenSSL fill first, and vary by some 100 kB afterwards.
  EXPECT_LT(Left(services.URL(Services::FeedPath), 600, 600), 256 * 1024);
  EXPECT_TRUE(services.Requests().empty());
}

}  // namespace
}  // namespace wattlark
