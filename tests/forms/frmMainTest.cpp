#include <QTest>

#include "MainWindowFixture.h"

namespace wattlark {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// How the window answers to its close button, by what the program has to do.
struct CloseCase {
  const char* name;
  int meters;
  bool portOpens;
  bool demo;
  bool hasTray;
  bool ends;
};

struct WindowClosing : MainWindowTest, testing::WithParamInterface<CloseCase> {};

TEST_P(WindowClosing, HidesWithinReachOrEnds) {
  port.opens = GetParam().portOpens;
  hasTray = GetParam().hasTray;
  if (GetParam().demo) Put("Settings", "DemoMode", "True");
  Start(GetParam().meters).ShowAtLaunch();
  window->showMinimized();
  QCoreApplication::processEvents();
  EXPECT_EQ(window->isVisible(), !hasTray);
  window->ShowWindow();
  EXPECT_TRUE(window->isVisible() && !window->isMinimized());
  Choose("mnuFile6");
  EXPECT_EQ(window->isVisible(), !hasTray);
  window->ShowWindow();

  const bool keepsRunning = !GetParam().ends;
  window->close();
  EXPECT_EQ(ends, keepsRunning ? 0 : 1);
  EXPECT_THAT(prompts.asked, IsEmpty());
  if (keepsRunning) {
    EXPECT_EQ(window->isVisible() && window->isMinimized(), !hasTray);
  }
  prompts.answers = {PromptAnswer::No, PromptAnswer::Yes};
  Choose("mnuFile7");
  EXPECT_EQ(ends, keepsRunning ? 0 : 2);
  ASSERT_EQ(prompts.asked.size(), keepsRunning ? 1U : 0U);
  if (!keepsRunning) return;
  const PromptMessage& question = prompts.asked.front();
  EXPECT_EQ(question.text, "Are you sure you want to exit Wattlark?");
  EXPECT_EQ(question.caption, "Wattlark");
  EXPECT_EQ(question.icon, PromptIcon::Exclamation);
  EXPECT_EQ(question.buttons, PromptButtons::YesNo);
  EXPECT_EQ(question.defaultAnswer, PromptAnswer::No);
  Choose("mnuSysTray12");
  EXPECT_EQ(ends, 1);
}

INSTANTIATE_TEST_SUITE_P(Table, WindowClosing,
                         testing::Values(CloseCase{"MetersAndPort", 2, true, false, true, false},
                                         CloseCase{"MetersAndDemo", 1, false, true, true, false},
                                         CloseCase{"NoArea", 1, true, false, false, false},
                                         CloseCase{"NoMeters", 0, true, false, true, true},
                                         CloseCase{"NoPort", 2, false, false, true, true}),
                         [](const auto& state) { return state.param.name; });

TEST_F(MainWindowTest, TheEndOfTheSessionIsNotHeldUp) {
  Start(1).ShowAtLaunch();
  window->EndSession([] {});
  window->close();
  EXPECT_EQ(ends, 1);
  EXPECT_THAT(prompts.asked, IsEmpty());
}

TEST_F(MainWindowTest, StartsOutOfSightWhenSettingsSaySo) {
  Put("Settings", "ShowAtLaunch", "False");
  Start(1).ShowAtLaunch();
  EXPECT_FALSE(window->isVisible());
  Choose("mnuSysTray0");
  EXPECT_TRUE(window->isVisible());
}

TEST_F(MainWindowTest, ComesForwardAsLargeAsItIsAndIsShownInItsNormalState) {
  Start(1).ShowAtLaunch();
  window->showMaximized();
  window->hide();
  window->BringForward();
  EXPECT_TRUE(window->isVisible() && window->isMaximized());
  window->setWindowState(Qt::WindowMaximized | Qt::WindowMinimized);
  window->BringForward();
  EXPECT_EQ(window->windowState() & (Qt::WindowMaximized | Qt::WindowMinimized),
            Qt::WindowMaximized);
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

TEST_F(MainWindowTest, RemovingMetersTakesTheirTabsAndAtLastThePages) {
  Start(2).ShowAtLaunch();
  auto& tabs = Control<QTabBar>("tabKillAWatt");
  EXPECT_THAT(VisibleTabs(tabs), ElementsAre("*Total/TOTAL", "Kitchen/XBEE5", "Office/XBEE6"));
  tabs.setCurrentIndex(2);
  prompts.answers = {PromptAnswer::Cancel, PromptAnswer::OK, PromptAnswer::OK};
  Choose("mnuTools2");
  EXPECT_EQ(VisibleTabs(tabs).size(), 3U);
  Choose("mnuTools2");
  EXPECT_THAT(VisibleTabs(tabs), ElementsAre("*Kitchen/XBEE5"));
  EXPECT_TRUE(Control("elaScroller").isVisible());
  Choose("mnuTools2");
  EXPECT_THAT(VisibleTabs(tabs), IsEmpty());
  EXPECT_FALSE(Control("elaScroller").isVisible());
  EXPECT_EQ(Control<MainArea>("elaWindow").Caption(),
            "No Kill-A-Watts have been added\r\nDouble click to add...");
}

TEST_F(MainWindowTest, CalibratesTheSelectedMeter) {
  std::vector<std::string> calibrated;
  options.dialogs.calibrateMeter = [&](clsKillAWatt& meter) { calibrated.push_back(meter.Name()); };
  Start(2).ShowAtLaunch();
  Choose("mnuTools6");
  EXPECT_THAT(calibrated, IsEmpty()) << "the Total is not calibrated";
  Control<QTabBar>("tabKillAWatt").setCurrentIndex(2);
  Choose("mnuTools6");
  EXPECT_THAT(calibrated, ElementsAre("Office"));
}

TEST_F(MainWindowTest, ADoubleClickOnTheTabsEditsTheMeterShown) {
  Start(2).ShowAtLaunch();
  auto& tabs = Control<QTabBar>("tabKillAWatt");
  const auto doubleClick = [&tabs](int tab) {
    QTest::mouseClick(&tabs, Qt::LeftButton, {}, tabs.tabRect(tab).center());
    QTest::mouseDClick(&tabs, Qt::LeftButton, {}, tabs.tabRect(tab).center());
  };
  doubleClick(0);
  EXPECT_THAT(edited, IsEmpty());
  doubleClick(2);
  EXPECT_THAT(edited, ElementsAre("Edit Kill-A-Watt: Office"));
  port.Close();
  doubleClick(1);
  EXPECT_EQ(edited.size(), 1U);
}

TEST_F(MainWindowTest, AnAddedMeterGetsATabAndAnEditedOneItsNewName) {
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
}

TEST_F(MainWindowTest, TheMessageInTheMainAreaIsDoubleClicked) {
  int optionsShown = 0;
  options.features.showOptions = [&](bool) { ++optionsShown; };
  port.opens = false;
  Start().ShowAtLaunch();
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
}

TEST_F(MainWindowTest, OnlyTheInfoPanelShowsTheErrorsAndBothEmptyTheList) {
  options.dialogs.showText = [this](const std::string& text, const std::string& caption,
                                    int buttons) {
    texts.push_back(caption + std::to_string(buttons) + ":" + text);
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

TEST_F(MainWindowTest, HelpAddressesAreOpenedOrMissed) {
  options.helpAddress = "https://help.example/";
  Start();
  Choose("mnuHelp0");
  Choose("mnuHelp1");
  EXPECT_THAT(desktop.addresses, ElementsAre("https://help.example/"));
  ASSERT_EQ(prompts.asked.size(), 1U);
  EXPECT_EQ(prompts.asked.front().text, "No address is configured.");
}

TEST_F(MainWindowTest, TheUpdateTimerRunsASecondFromTheEndOfATick) {
  Start(1);
  const auto& timer = Control<QTimer>("tmrUpdate");
  EXPECT_TRUE(timer.isActive());
  EXPECT_TRUE(timer.isSingleShot());
  EXPECT_EQ(timer.interval(), 1000);
  window->Unload();
  EXPECT_FALSE(timer.isActive());
}

}  // namespace
}  // namespace wattlark
