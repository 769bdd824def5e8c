#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include "MainWindowFixture.h"

namespace wattlark {
namespace {

// The screen has 800 x 800 pixels; 15 twips are one.
TEST_F(MainWindowTest, IsPutWhereItWas) {
  ASSERT_EQ(QGuiApplication::primaryScreen()->size(), QSize(800, 800));
  using Row = std::tuple<const char*, QRect, Qt::WindowState>;
  for (const auto& [stored, bounds, state] :
       {Row{"1500,750,7500,9000,0", {100, 50, 500, 600}, Qt::WindowNoState},
        Row{"1500,750,7500,9000,2", {100, 50, 500, 600}, Qt::WindowMaximized},
        Row{"1500,750,7500,9000,1", {100, 50, 500, 600}, Qt::WindowMinimized},
        Row{"", {}, Qt::WindowNoState}}) {
    SCOPED_TRACE(stored);
    Put("WindowSettings", "frmMain", stored);
    TearDown();
    Start();
    EXPECT_EQ(window->windowState(), Qt::WindowStates(state));
    QRect expected = bounds;
    if (expected.isEmpty()) {
      EXPECT_GE(window->width(), 360);
      EXPECT_GE(window->height(), 520);
      expected = QRect({400 - window->width() / 2, 400 - window->height() / 2}, window->size());
    }
    EXPECT_LE((window->pos() - expected.topLeft()).manhattanLength(), 2);
    EXPECT_EQ(window->size(), expected.size());
    window->ShowAtLaunch();
    EXPECT_EQ(window->isVisible(), state != Qt::WindowMinimized);
  }
}

TEST_F(MainWindowTest, StoresItsPlacementAndMinimisedTheBoundsOfBefore) {
  Start(1).ShowAtLaunch();
  window->move(120, 80);
  window->resize(500, 600);
  EXPECT_TRUE(window->Unload());
  EXPECT_EQ(Get("WindowSettings", "frmMain"), "1800,1200,7500,9000,0");
  relay.SendTo(nullptr);
  Start().ShowAtLaunch();
  window->showMinimized();
  EXPECT_TRUE(window->Unload());
  EXPECT_EQ(Get("WindowSettings", "frmMain"), "1800,1200,7500,9000,1");
  window->showNormal();
  registry.failsCommit = true;
  EXPECT_FALSE(window->Unload());
  EXPECT_EQ(Get("WindowSettings", "frmMain"), "1800,1200,7500,9000,1");
}

TEST_F(MainWindowTest, StaysOnTopAsSettingsSayAndTheMenuChanges) {
  Put("Settings", "AlwaysOnTop", "True");
  Start(1).ShowAtLaunch();
  const auto isOnTop = [this] {
    return window->windowHandle()->flags().testFlag(Qt::WindowStaysOnTopHint);
  };
  EXPECT_TRUE(isOnTop());
  EXPECT_TRUE(Item("mnuView5").isChecked());
  Choose("mnuView5");
  EXPECT_FALSE(isOnTop());
  EXPECT_FALSE(Item("mnuView5").isChecked());
  EXPECT_TRUE(window->isVisible());
  EXPECT_FALSE(monitor->Profile().Settings().AlwaysOnTop);
}

}  // namespace
}  // namespace wattlark
