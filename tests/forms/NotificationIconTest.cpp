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
  struct Row {
    const char* name;
    std::vector<std::pair<int, Reason>> clicks;  ///< each after milliseconds
    int shows, menus;
  };
  for (const auto& test :
       {Row{"Single", {{0, Reason::Trigger}}, 0, 1},
        Row{"Double", {{0, Reason::Trigger}, {200, Reason::DoubleClick}}, 1, 0},
        Row{"DoubleAsTwoSingles", {{0, Reason::Trigger}, {499, Reason::Trigger}}, 1, 0},
        Row{"TwoSlowSingles", {{0, Reason::Trigger}, {500, Reason::Trigger}}, 0, 2},
        Row{"Middle", {{0, Reason::MiddleClick}}, 0, 0}}) {
    shows = menus = 0;
    const auto elapse = [timer] {
      if (!timer->isActive()) return;
      timer->stop();
      QMetaObject::invokeMethod(timer, "timeout");
    };
    for (const auto& [milliseconds, reason] : test.clicks) {
      if (milliseconds >= 500) elapse();
      emit area->activated(reason);
    }
    elapse();
    EXPECT_EQ(shows, test.shows) << test.name;
    EXPECT_EQ(menus, test.menus) << test.name;
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
  icon.Modify({"Current Power: 612.4 W\r\nToday: 3.200 kWh ($0.3392)", "KILLAWATT2"});
  icon.Modify({"Current Power: 613.0 W\r\nToday: 3.200 kWh ($0.3392)", "KILLAWATT2"});
  EXPECT_THAT(keys, testing::ElementsAre("KILLAWATT", "KILLAWATT2"));
  EXPECT_EQ(area->toolTip(), "Current Power: 613.0 W\nToday: 3.200 kWh ($0.3392)");
  EXPECT_EQ(area->contextMenu(), &menu);
  icon.Delete();
  EXPECT_FALSE(icon.IsReachable());
  EXPECT_FALSE(area->isVisible());
}

}  // namespace
}  // namespace wattlark
