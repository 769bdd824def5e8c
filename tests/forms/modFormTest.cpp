#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include "MainWindowFixture.h"

namespace wattlark {
namespace {

struct PlacementCase {
  const char* stored;
  QRect expected;  ///< an empty size: the size before, in the middle of the screen
  Qt::WindowState state;
};

struct WindowRestoring : MainWindowTest, testing::WithParamInterface<PlacementCase> {};

// The screen has 800 x 800 pixels; 15 twips are one.
TEST_P(WindowRestoring, PutsTheWindowWhereItWas) {
  ASSERT_EQ(QGuiApplication::primaryScreen()->size(), QSize(800, 800));
  Put("WindowSettings", "frmMain", GetParam().stored);
  Start();
  EXPECT_EQ(window->windowState(), Qt::WindowStates(GetParam().state));
  QRect expected = GetParam().expected;
  if (expected.isEmpty()) {
    EXPECT_GE(window->width(), 360);
    EXPECT_GE(window->height(), 520);
    expected = QRect(QPoint(400 - window->width() / 2, 400 - window->height() / 2), window->size());
  }
  EXPECT_LE((window->pos() - expected.topLeft()).manhattanLength(), 2);
  EXPECT_EQ(window->size(), expected.size());
  window->ShowAtLaunch();
  EXPECT_EQ(window->isVisible(), GetParam().state != Qt::WindowMinimized);
}

INSTANTIATE_TEST_SUITE_P(
    Table, WindowRestoring,
    testing::Values(PlacementCase{"1500,750,7500,9000,0", {100, 50, 500, 600}, Qt::WindowNoState},
                    PlacementCase{"1500,750,7500,9000,2", {100, 50, 500, 600}, Qt::WindowMaximized},
                    PlacementCase{"1500,750,7500,9000,1", {100, 50, 500, 600}, Qt::WindowMinimized},
                    PlacementCase{"1e300,-1e300,1e300,1e300,0", {}, Qt::WindowNoState},
                    PlacementCase{"nan,inf,-inf,1e999,0", {}, Qt::WindowNoState},
                    PlacementCase{"", {}, Qt::WindowNoState}));

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
}

TEST_F(MainWindowTest, APlacementThatIsNotStoredFailsTheSave) {
  Start(1);
  registry.failsCommit = true;
  EXPECT_FALSE(window->Unload());
  EXPECT_EQ(Get("WindowSettings", "frmMain"), "(none)");
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
