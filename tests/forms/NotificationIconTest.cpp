#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QPixmap>

#include "app/forms/NotificationIcon.h"

namespace wattlark {
namespace {

using Reason = QSystemTrayIcon::ActivationReason;

struct Click {
  int millisecondsLater;
  Reason reason;
};

struct ClickCase {
  const char* name;
  std::vector<Click> clicks;
  int shows;
  int menus;
};

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

struct NotificationIconClicks : NotificationIconTest, testing::WithParamInterface<ClickCase> {};

// The timer is taken for elapsed when its 500 ms would have passed; nothing waits for it.
TEST_P(NotificationIconClicks, TellsClicksApart) {
  NotificationIcon icon(menu, Options());
  icon.Add({"Wattlark", "KILLAWATT"});
  auto* timer = icon.findChild<QTimer*>("tmrLeftButtonClick");
  auto* area = icon.findChild<QSystemTrayIcon*>("trayIcon");
  ASSERT_EQ(timer->interval(), 500);
  const auto elapse = [timer] {
    if (!timer->isActive()) return;
    timer->stop();
    QMetaObject::invokeMethod(timer, "timeout");
  };
  for (const Click& click : GetParam().clicks) {
    if (click.millisecondsLater >= 500) elapse();
    emit area->activated(click.reason);
  }
  elapse();
  EXPECT_EQ(shows, GetParam().shows);
  EXPECT_EQ(menus, GetParam().menus);
}

INSTANTIATE_TEST_SUITE_P(
    Table, NotificationIconClicks,
    testing::Values(
        ClickCase{"Single", {{0, Reason::Trigger}}, 0, 1},
        ClickCase{"Double", {{0, Reason::Trigger}, {200, Reason::DoubleClick}}, 1, 0},
        ClickCase{
            "DoubleReportedAsTwoSingles", {{0, Reason::Trigger}, {499, Reason::Trigger}}, 1, 0},
        ClickCase{"TwoSlowSingles", {{0, Reason::Trigger}, {500, Reason::Trigger}}, 0, 2},
        ClickCase{"Middle", {{0, Reason::MiddleClick}}, 0, 0}),
    [](const auto& clicks) { return clicks.param.name; });

TEST_F(NotificationIconTest, ShowsTooltipAndPictureAndDrawsOnlyWhatChanged) {
  NotificationIcon icon(menu, Options());
  icon.Add({"Wattlark", "KILLAWATT"});
  auto* area = icon.findChild<QSystemTrayIcon*>("trayIcon");
  icon.Modify({"Current Power: 612.4 W\r\nToday: 3.200 kWh ($0.3392)", "KILLAWATT2"});
  icon.Modify({"Current Power: 613.0 W\r\nToday: 3.200 kWh ($0.3392)", "KILLAWATT2"});
  EXPECT_THAT(keys, testing::ElementsAre("KILLAWATT", "KILLAWATT2"));
  EXPECT_EQ(area->toolTip(), "Current Power: 613.0 W\nToday: 3.200 kWh ($0.3392)");
  EXPECT_EQ(area->contextMenu(), &menu);
}

TEST_F(NotificationIconTest, IsReachableOnlyInAnArea) {
  hasArea = false;
  NotificationIcon icon(menu, Options());
  icon.Add({"Wattlark", "KILLAWATT"});
  EXPECT_FALSE(icon.IsReachable());
  hasArea = true;
  icon.LookForArea();
  EXPECT_TRUE(icon.IsReachable());
  icon.Delete();
  EXPECT_FALSE(icon.IsReachable());
  EXPECT_FALSE(icon.findChild<QSystemTrayIcon*>("trayIcon")->isVisible());
}

}  // namespace
}  // namespace wattlark
