#include <QGuiApplication>
#include <QScreen>
#include <QTest>
#include <QWindow>

#include "MainWindowFixture.h"
#include "twins/Matchers.h"

namespace wattlark {
namespace {

TEST_F(MainWindowTest, HidesWithinReachOrEndsWhenItIsClosed) {
  using Row = std::tuple<int, bool, bool, bool, bool>;
  for (const auto& [meters, portOpens, demo, trayIsThere, keepsRunning] :
       {Row{1, false, true, true, true}, Row{1, true, false, false, true},
        Row{0, true, false, true, false}, Row{2, false, false, true, false}}) {
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
    EXPECT_EQ(ends, keepsRunning ? 0 : 1);
    EXPECT_EQ(window->isVisible() && window->isMinimized(), keepsRunning && !hasTray);
    EXPECT_THAT(prompts.asked, IsEmpty());
    prompts.answers = {PromptAnswer::No, PromptAnswer::Yes};
    Choose("mnuFile7");
    EXPECT_EQ(ends, keepsRunning ? 0 : 2);
    if (!keepsRunning) continue;
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
  EXPECT_THAT(prompts.asked, IsEmpty());
  desktop.opensAddresses = false;
  for (const char* item : {"mnuHelp0", "mnuHelp1", "mnuHelp5"}) Choose(item);
  EXPECT_THAT(desktop.addresses, ElementsAre("https://help.example/", "https://help.example/"));
  EXPECT_THAT(prompts.asked,
              ElementsAre(FieldsAre(HasSubstr("https://help.example/"), _, _, _, _),
                          FieldsAre("No address is configured.", _, _, _, _),
                          FieldsAre(AllOf(StartsWith("Wattlark version 2.0\r\nCopyright "),
                                          HasSubstr("GPL-3.0-or-later")),
                                    "About Wattlark...", PromptIcon::Information, _, _)));
}

// The screen has 800 x 800 pixels; 15 twips are one.
TEST_F(MainWindowTest, IsPutWhereItWasAndStoresThatMinimisedTheBoundsOfBefore) {
  ASSERT_EQ(QGuiApplication::primaryScreen()->size(), QSize(800, 800));
  const auto stored = [this] { return Get("WindowSettings", "frmMain"); };
  const auto expect = [this](Qt::WindowStates state) {
    TearDown();
    Start();
    EXPECT_EQ(window->windowState(), state);
    EXPECT_LE((window->pos() - QPoint(100, 50)).manhattanLength(), 2);
    EXPECT_EQ(window->size(), QSize(500, 600));
    window->ShowAtLaunch();
    EXPECT_EQ(window->isVisible(), state != Qt::WindowMinimized);
  };
  Put("WindowSettings", "frmMain", "1500,750,7500,9000,2");
  expect(Qt::WindowMaximized);
  window->showNormal();
  window->move(100, 50);
  window->resize(500, 600);
  EXPECT_TRUE(window->Unload());
  EXPECT_EQ(stored(), "1500,750,7500,9000,0");
  expect(Qt::WindowNoState);
  window->showMinimized();
  EXPECT_TRUE(window->Unload());
  EXPECT_EQ(stored(), "1500,750,7500,9000,1");
  expect(Qt::WindowMinimized);
  window->showNormal();
  registry.failsCommit = true;
  EXPECT_FALSE(window->Unload());
  EXPECT_EQ(stored(), "1500,750,7500,9000,1");
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
