#include <gmock/gmock.h>

#include <QPixmap>

#include "app/forms/NotificationIcon.h"

namespace wattlark {
namespace {

using Reason = QSystemTrayIcon::ActivationReason;

struct NotificationIconTest : testing::Test {
  NotificationIcon::Options Options() {
    NotificationIcon::Options options;
    options.icon = [this](const std::string& key) {
      keys.push_back(key);
      return QIcon(QPixmap(16, 16));
    };
    options.showWindow = [this] { ++shows; };
    options.isAreaAvailable = [this] { return hasArea; };
    options.popUp = [this](QMenu&) { ++menus; };
    return options;
  }

  std::vector<std::string> keys;
  int shows = 0;
  int menus = 0;
  bool hasArea = true;
  QMenu menu;
};

// The timer is taken for elapsed when its 500 ms would have passed; nothing waits for it.
TEST_F(NotificationIconTest, TellsClicksApart) {
  NotificationIcon icon(menu, Options());
  icon.Add({"Wattlark", "KILLAWATT"});
  auto* timer = icon.findChild<QTimer*>("tmrLeftButtonClick");
  auto* area = icon.findChild<QSystemTrayIcon*>("trayIcon");
  ASSERT_EQ(timer->interval(), 500);
  const auto elapse = [timer] {
    if (timer->isActive()) QMetaObject::invokeMethod(timer, "timeout");
    timer->stop();
  };
  using Row = std::tuple<std::vector<Reason>, int, int>;
  for (const auto& [clicks, expectedShows, expectedMenus] :
       {Row{{Reason::Trigger}, 0, 1}, Row{{Reason::Trigger, Reason::DoubleClick}, 1, 0},
        Row{{Reason::Trigger, Reason::Trigger}, 1, 0}, Row{{Reason::MiddleClick}, 0, 0}}) {
    shows = menus = 0;
    for (const Reason reason : clicks) emit area->activated(reason);
    elapse();
    EXPECT_EQ(shows, expectedShows) << clicks.size();
    EXPECT_EQ(menus, expectedMenus) << clicks.size();
  }
}

TEST_F(NotificationIconTest, ShowsWhatChangedAndIsReachableOnlyInAnArea) {
  hasArea = false;
  NotificationIcon icon(menu, Options());
  icon.Add({"Wattlark", "KILLAWATT"});
  EXPECT_FALSE(icon.IsReachable());
  hasArea = true;
  icon.LookForArea();
  EXPECT_TRUE(icon.IsReachable());
  const auto* area = icon.findChild<QSystemTrayIcon*>("trayIcon");
  for (const char* power : {"612.4", "613.0"}) {
    icon.Modify({std::string("Current Power: ") + power + " W\r\nToday: 3.200 kWh", "KILLAWATT2"});
  }
  EXPECT_THAT(keys, testing::ElementsAre("KILLAWATT", "KILLAWATT2"));
  EXPECT_EQ(area->toolTip(), "Current Power: 613.0 W\nToday: 3.200 kWh");
  icon.Delete();
  EXPECT_FALSE(icon.IsReachable());
  EXPECT_FALSE(area->isVisible());
}

}  // namespace
}  // namespace wattlark
