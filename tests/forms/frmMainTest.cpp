#include <QGuiApplication>
#include <QScreen>
#include <QTest>
#include <QWindow>

#include "MainWindowFixture.h"

namespace wattlark {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::FieldsAre;
using testing::IsEmpty;
using testing::StartsWith;

TEST_F(MainWindowTest, HidesWithinReachOrEndsWhenItIsClosed) {
  using Row = std::tuple<int, bool, bool, bool, bool>;
  for (const auto& [meters, portOpens, demo, trayIsThere, keepsRunning] :
       {Row{2, true, false, true, true}, Row{1, false, true, true, true},
        Row{1, true, false, false, true}, Row{0, true, false, true, false},
        Row{2, false, false, true, false}}) {
    SCOPED_TRACE(std::to_string(meters) + " meters");
    TearDown();
    registry = {};
    prompts.asked.clear();
    ends = 0;
    port.opens = portOpens;
    hasTray = trayIsThere;
    Put("Settings", "DemoMode", demo ? "True" : "False");
    Start(meters).ShowAtLaunch();
    for (const char* how : {"minimised", "closed"}) {
      if (*how == 'm') window->showMinimized();
      if (*how == 'c') Choose("mnuFile6");
      QCoreApplication::processEvents();
      EXPECT_EQ(window->isVisible(), !hasTray) << how;
      window->ShowWindow();
      EXPECT_TRUE(window->isVisible() && !window->isMinimized()) << how;
    }
    window->close();
    EXPECT_THAT(prompts.asked, IsEmpty());
    prompts.answers = {PromptAnswer::No, PromptAnswer::Yes};
    if (!keepsRunning) {
      EXPECT_EQ(ends, 1);
      Choose("mnuFile7");
      EXPECT_EQ(ends, 2);
      EXPECT_THAT(prompts.asked, IsEmpty());
      continue;
    }
    EXPECT_EQ(window->isVisible() && window->isMinimized(), !hasTray);
    Choose("mnuFile7");
    EXPECT_EQ(ends, 0);
    EXPECT_THAT(prompts.asked, ElementsAre(FieldsAre("Are you sure you want to exit Wattlark?",
                                                     "Wattlark", PromptIcon::Exclamation,
                                                     PromptButtons::YesNo, PromptAnswer::No)));
    Choose("mnuSysTray12");
    EXPECT_EQ(ends, 1);
  }
}

TEST_F(MainWindowTest, StartsOutOfSightWhenSettingsSaySoAndDoesNotHoldUpTheEndOfTheSession) {
  Put("Settings", "ShowAtLaunch", "False");
  Start(1).ShowAtLaunch();
  EXPECT_FALSE(window->isVisible());
  Choose("mnuSysTray0");
  EXPECT_TRUE(window->isVisible());
  window->EndSession([] {});
  window->close();
  EXPECT_EQ(ends, 1);
  EXPECT_THAT(prompts.asked, IsEmpty());
}

TEST_F(MainWindowTest, ComesForwardAsLargeAsItIsAndIsShownInItsNormalState) {
  Start(1).ShowAtLaunch();
  window->showMaximized();
  window->hide();
  window->BringForward();
  EXPECT_TRUE(window->isVisible() && window->isMaximized());
  window->setWindowState(Qt::WindowMaximized | Qt::WindowMinimized);
  window->BringForward();
  EXPECT_TRUE(window->isMaximized() && !window->isMinimized());
  window->ShowWindow();
  EXPECT_TRUE(window->isVisible() && !window->isMaximized());
}

TEST_F(MainWindowTest, AHiddenWindowFollowsTheAreaThatComesAndGoes) {
  hasTray = false;
  Put("Settings", "ShowAtLaunch", "False");
  Start(1).ShowAtLaunch();
  EXPECT_TRUE(window->isVisible() && window->isMinimized());
  hasTray = true;
  Tick(5);
  EXPECT_FALSE(window->isVisible());
  hasTray = false;
  Tick(5);
  EXPECT_FALSE(window->isVisible()) << "a panel may only be starting again";
  Tick(5);
  EXPECT_TRUE(window->isVisible() && window->isMinimized());
}

std::vector<std::string> VisibleTabs(const QTabBar& tabs) {
  std::vector<std::string> captions;
  for (int tab = 0; tab < tabs.count(); ++tab) {
    if (!tabs.isTabVisible(tab)) continue;
    const std::string mark = tab == tabs.currentIndex() ? "*" : "";
    captions.push_back(mark + tabs.tabText(tab).toStdString() + "/" +
                       tabs.tabData(tab).toString().toStdString());
  }
  return captions;
}

TEST_F(MainWindowTest, EditsAndCalibratesTheMeterShown) {
  std::vector<std::string> calibrated;
  options.dialogs.calibrateMeter = [&](clsKillAWatt& meter) { calibrated.push_back(meter.Name()); };
  Start(2).ShowAtLaunch();
  auto& tabs = Control<QTabBar>("tabKillAWatt");
  const auto doubleClick = [&tabs](int tab) {
    QTest::mouseClick(&tabs, Qt::LeftButton, {}, tabs.tabRect(tab).center());
    QTest::mouseDClick(&tabs, Qt::LeftButton, {}, tabs.tabRect(tab).center());
  };
  doubleClick(0);
  Choose("mnuTools6");
  EXPECT_THAT(edited, IsEmpty());
  EXPECT_THAT(calibrated, IsEmpty()) << "the Total is not calibrated";
  doubleClick(2);
  Choose("mnuTools6");
  EXPECT_THAT(calibrated, ElementsAre("Office"));
  port.Close();
  doubleClick(1);
  EXPECT_THAT(edited, ElementsAre("Edit Kill-A-Watt: Office"));
}

TEST_F(MainWindowTest, TabsComeWithAddedMetersFollowTheirNamesAndGoAndAtLastThePages) {
  std::string name = "R&D";
  options.dialogs.editMeter = [&name](clsKillAWatt& meter, const std::string&) {
    meter.SetName(name);
    if (meter.XBeeAddress() != 5) meter.SetXBeeAddress(9);
    return true;
  };
  Start(1).ShowAtLaunch();
  auto& tabs = Control<QTabBar>("tabKillAWatt");
  Choose("mnuTools0");
  EXPECT_THAT(VisibleTabs(tabs), ElementsAre("Total/TOTAL", "*Kitchen/XBEE5", "R&&D/XBEE9"));
  name = "Cellar";
  monitor->Profile().Settings().CSVFileChanged = false;
  Choose("mnuTools1");
  EXPECT_THAT(VisibleTabs(tabs), ElementsAre("Total/TOTAL", "*Cellar/XBEE5", "R&&D/XBEE9"));
  EXPECT_TRUE(monitor->Profile().Settings().CSVFileChanged) << "the header of the log names meters";
  tabs.setCurrentIndex(2);
  prompts.answers = {PromptAnswer::Cancel, PromptAnswer::OK, PromptAnswer::OK};
  Choose("mnuTools2");
  EXPECT_EQ(VisibleTabs(tabs).size(), 3U);
  Choose("mnuTools2");
  EXPECT_THAT(VisibleTabs(tabs), ElementsAre("*Cellar/XBEE5"));
  EXPECT_TRUE(Control("elaScroller").isVisible());
  Choose("mnuTools2");
  EXPECT_THAT(VisibleTabs(tabs), IsEmpty());
  EXPECT_FALSE(Control("elaScroller").isVisible());
  EXPECT_EQ(Control<MainArea>("elaWindow").Caption(),
            "No Kill-A-Watts have been added\r\nDouble click to add...");
}

TEST_F(MainWindowTest, TheMessageInTheMainAreaIsDoubleClicked) {
  int optionsShown = 0;
  options.features.showOptions = [&](bool) { ++optionsShown; };
  port.opens = false;
  Start().ShowAtLaunch();
  const auto& timer = Control<QTimer>("tmrUpdate");
  EXPECT_TRUE(timer.isActive() && timer.isSingleShot()) << "a second from the end of a tick";
  EXPECT_EQ(timer.interval(), 1000);
  auto& area = Control<MainArea>("elaWindow");
  EXPECT_EQ(area.Caption(), "Unable to communicate on COM3:\r\nDouble click to modify settings...");
  QTest::mouseDClick(&area, Qt::LeftButton);
  EXPECT_EQ(optionsShown, 1);

  port.opens = true;
  monitor->OpenPort();
  Tick();
  QTest::mouseDClick(&area, Qt::LeftButton);
  area.setFocus();
  QTest::keyClick(&area, Qt::Key_Return);
  EXPECT_THAT(edited,
              ElementsAre("Add Kill-A-Watt: New Appliance", "Add Kill-A-Watt: New Appliance"));
  EXPECT_EQ(optionsShown, 1);
  window->Unload();
  EXPECT_FALSE(timer.isActive());
}

TEST_F(MainWindowTest, OnlyTheInfoPanelShowsTheErrorsAndBothEmptyTheList) {
  const auto show = options.dialogs.showText;
  options.dialogs.showText = [&](const auto& text, const auto& caption, int buttons) {
    show(text, caption, buttons);
    monitor->ReportError("Later");
  };
  Start(1).ShowAtLaunch();
  auto& info = Control<StatusPanel>("INFO");
  monitor->SetInfoText("Fridge & Co");
  EXPECT_EQ(info.toolTip(), "Fridge & Co");
  QTest::mouseClick(&info, Qt::LeftButton);
  EXPECT_EQ(info.text(), "");
  monitor->ReportError("No carrier");
  EXPECT_EQ(info.text(), "Click here to view errors...");
  QTest::mouseClick(&Control("COMM"), Qt::LeftButton);
  EXPECT_TRUE(monitor->Errors().IsEmpty());
  EXPECT_EQ(info.text(), "");
  EXPECT_THAT(texts, IsEmpty());

  monitor->ReportError("No route to host");
  QTest::mouseClick(&info, Qt::LeftButton);
  EXPECT_THAT(texts, ElementsAre("Errors!2:11/16/2026 8:10:00 PM: No route to host\r\n"));
  EXPECT_EQ(monitor->Errors().Text(), "11/16/2026 8:10:00 PM: Later\r\n") << "not read yet";
  EXPECT_EQ(info.text(), "Click here to view errors...");
}

TEST_F(MainWindowTest, HelpAddressesAreOpenedOrMissedAndAboutShowsVersionAndLegalNotice) {
  options.helpAddress = "https://help.example/";
  Start();
  Choose("mnuHelp0");
  desktop.opensAddresses = false;
  Choose("mnuHelp0");
  Choose("mnuHelp1");
  Choose("mnuHelp5");
  EXPECT_THAT(desktop.addresses, ElementsAre("https://help.example/", "https://help.example/"));
  EXPECT_THAT(prompts.asked,
              ElementsAre(FieldsAre(testing::HasSubstr("https://help.example/"), _, _, _, _),
                          FieldsAre("No address is configured.", _, _, _, _),
                          FieldsAre(testing::AllOf(StartsWith("Wattlark version 2.0\r\nCopyright "),
                                                   testing::HasSubstr("GPL-3.0-or-later")),
                                    "About Wattlark...", PromptIcon::Information, _, _)));
}

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
