#include <QGuiApplication>
#include <QScreen>
#include <QTest>
#include <QWindow>
#include <algorithm>
#include <map>
#include <string>

#include "MainWindowFixture.h"
#include "app/forms/frmMain.h"

namespace wattlark {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kExitQuestion = "Are you sure you want to exit Wattlark?";

// How the window answers to its close button, by what the program has to do.
struct CloseCase {
  const char* name;
  int meters;
  bool portOpens;
  bool demo;
  bool hasTray;
  bool ends;
  bool staysInTaskBar;
};

struct WindowClosing : MainWindowTest, testing::WithParamInterface<CloseCase> {
  void StartAsGiven() {
    port.opens = GetParam().portOpens;
    hasTray = GetParam().hasTray;
    if (GetParam().demo) Put("Settings", "DemoMode", "True");
    Start(GetParam().meters);
    window->ShowAtLaunch();
  }
};

TEST_P(WindowClosing, HidesOrEnds) {
  StartAsGiven();
  window->close();
  EXPECT_EQ(ends, GetParam().ends ? 1 : 0);
  EXPECT_THAT(prompts.asked, IsEmpty());
  if (!GetParam().ends) {
    EXPECT_EQ(window->isVisible(), GetParam().staysInTaskBar);
    EXPECT_EQ(window->isMinimized(), GetParam().staysInTaskBar);
  }
}

TEST_P(WindowClosing, ExitAsksWhereClosingHides) {
  StartAsGiven();
  const std::size_t questions = GetParam().ends ? 0 : 1;
  prompts.answers = {PromptAnswer::No, PromptAnswer::Yes};
  Choose("mnuFile7");
  ASSERT_EQ(prompts.asked.size(), questions);
  EXPECT_EQ(ends, GetParam().ends ? 1 : 0);
  if (questions == 0) return;
  const PromptMessage& question = prompts.asked.front();
  EXPECT_EQ(question.text, kExitQuestion);
  EXPECT_EQ(question.caption, "Wattlark");
  EXPECT_EQ(question.icon, PromptIcon::Exclamation);
  EXPECT_EQ(question.buttons, PromptButtons::YesNo);
  EXPECT_EQ(question.defaultAnswer, PromptAnswer::No);
  Choose("mnuSysTray12");
  EXPECT_EQ(ends, 1);
}

TEST_P(WindowClosing, TheEndOfTheSessionIsNotHeldUp) {
  StartAsGiven();
  window->EndSession([] {});
  window->close();
  EXPECT_EQ(ends, 1);
  EXPECT_THAT(prompts.asked, IsEmpty());
}

TEST_P(WindowClosing, MinimisingAndClosingFromTheMenuNeverHideOutOfReach) {
  StartAsGiven();
  window->showMinimized();
  QCoreApplication::processEvents();
  EXPECT_EQ(window->isVisible(), !GetParam().hasTray);
  window->ShowWindow();
  EXPECT_TRUE(window->isVisible() && !window->isMinimized());
  Choose("mnuFile6");
  EXPECT_EQ(window->isVisible(), !GetParam().hasTray);
}

INSTANTIATE_TEST_SUITE_P(
    Table, WindowClosing,
    testing::Values(CloseCase{"MetersAndPort", 2, true, false, true, false, false},
                    CloseCase{"MetersAndDemo", 1, false, true, true, false, false},
                    CloseCase{"NoArea", 1, true, false, false, false, true},
                    CloseCase{"NoMeters", 0, true, false, true, true, false},
                    CloseCase{"NoPort", 2, false, false, true, true, false}),
    [](const auto& state) { return state.param.name; });

TEST_F(MainWindowTest, StartsOutOfSightWhenSettingsSaySo) {
  Put("Settings", "ShowAtLaunch", "False");
  Start(1).ShowAtLaunch();
  EXPECT_FALSE(window->isVisible());
  Choose("mnuSysTray0");
  EXPECT_TRUE(window->isVisible());
}

TEST_F(MainWindowTest, AWindowThatWasMinimisedStartsInTheArea) {
  Put("WindowSettings", "frmMain", "150,150,4815,6630,1");
  Start(1).ShowAtLaunch();
  EXPECT_FALSE(window->isVisible());
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

// Counts what every widget paints.
class PaintCounter : public QObject {
 public:
  PaintCounter() { QCoreApplication::instance()->installEventFilter(this); }
  ~PaintCounter() override { QCoreApplication::instance()->removeEventFilter(this); }
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++paints[watched->objectName().toStdString()];
    return false;
  }
  std::map<std::string, int> paints;
};

TEST_F(MainWindowTest, PaintsOnceATickAndNotAtAllOutOfSight) {
  Start(1).ShowAtLaunch();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
  clsKillAWatt& meter = *monitor->Profile().Meters().FindAddress(5);
  const auto& strip = Control<QWidget>("elaScroller");
  for (int page = 1; page <= 4; ++page) {
    window->ShowPage(page);
    Tick();
    const auto hasSlid = [&strip] {
      return std::ranges::count_if(strip.children(), [](const QObject* child) {
               const auto* widget = qobject_cast<const QWidget*>(child);
               return widget != nullptr && widget->isVisible();
             }) == 1;
    };
    ASSERT_TRUE(QTest::qWaitFor(hasSlid));
    QCoreApplication::processEvents();
    PaintCounter counter;
    for (int second = 0; second < 3; ++second) {
      counter.paints.clear();
      meter.AddReading(120, 4, 400 + 50 * page + second, clock.now, clock.ticks);
      Tick();
      QCoreApplication::processEvents();
      for (const auto& [name, paints] : counter.paints) {
        if (!name.empty()) {
          EXPECT_LE(paints, 1) << name << " on page " << page;
        }
      }
    }
    if (page == 1) {
      EXPECT_EQ(counter.paints["lblCurrentValue"], 1);
    }
  }
  window->hide();
  QCoreApplication::processEvents();
  PaintCounter counter;
  Tick(3);
  QCoreApplication::processEvents();
  EXPECT_THAT(counter.paints, IsEmpty());
}

TEST_F(MainWindowTest, TipsShowMarkupOfNamesAndErrorsAsItIs) {
  Start();
  window->OnInfoText("<img src='x'> & more");
  EXPECT_THAT(Control<QAbstractButton>("INFO").toolTip().toStdString(),
              testing::HasSubstr("&lt;img src='x'&gt; &amp; more"));
  window->OnInfoText("Fridge & Co");
  EXPECT_EQ(Control<QAbstractButton>("INFO").toolTip(), "Fridge & Co");
}

TEST_F(MainWindowTest, AWindowInTheTaskBarMovesIntoAnAreaThatComesLate) {
  hasTray = false;
  Put("Settings", "ShowAtLaunch", "False");
  Start(1).ShowAtLaunch();
  EXPECT_TRUE(window->isVisible() && window->isMinimized());
  hasTray = true;
  Tick(5);
  EXPECT_FALSE(window->isVisible());
}

TEST_F(MainWindowTest, AHiddenWindowComesToTheTaskBarWhenTheAreaGoesAway) {
  Start(1).ShowAtLaunch();
  window->close();
  ASSERT_FALSE(window->isVisible());
  hasTray = false;
  Tick(10);
  EXPECT_TRUE(window->isVisible() && window->isMinimized());
}

struct PlacementCase {
  const char* name;
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
}

INSTANTIATE_TEST_SUITE_P(
    Table, WindowRestoring,
    testing::Values(
        PlacementCase{"Stored", "1500,750,7500,9000,0", {100, 50, 500, 600}, Qt::WindowNoState},
        PlacementCase{
            "Maximised", "1500,750,7500,9000,2", {100, 50, 500, 600}, Qt::WindowMaximized},
        PlacementCase{
            "Minimised", "1500,750,7500,9000,1", {100, 50, 500, 600}, Qt::WindowMinimized},
        PlacementCase{
            "BeyondTheRightEdge", "30000,750,7500,9000,0", {300, 50, 500, 600}, Qt::WindowNoState},
        PlacementCase{"TwoFields", "1500,750", {}, Qt::WindowNoState},
        PlacementCase{"SixFields", "1500,750,7500,9000,0,0", {}, Qt::WindowNoState},
        PlacementCase{"Words", "a,b,c,d,e", {}, Qt::WindowNoState},
        PlacementCase{"NotFinite", "nan,inf,-inf,1e999,0", {}, Qt::WindowNoState},
        PlacementCase{"Huge", "1e300,-1e300,1e300,1e300,0", {}, Qt::WindowNoState},
        PlacementCase{"UnknownState", "-1,-1,0,0,77", {}, Qt::WindowNoState},
        PlacementCase{"Empty", "", {}, Qt::WindowNoState}),
    [](const auto& placement) { return placement.param.name; });

TEST_F(MainWindowTest, StoresItsPlacementWithEverythingElse) {
  Start(1).ShowAtLaunch();
  window->move(120, 80);
  window->resize(500, 600);
  Put("KillAWatts\\Kitchen", "Name", "Kitchen");
  EXPECT_TRUE(window->Unload());
  EXPECT_EQ(Get("WindowSettings", "frmMain"), "1800,1200,7500,9000,0");
}

TEST_F(MainWindowTest, AMinimisedWindowKeepsTheBoundsStoredBefore) {
  Put("WindowSettings", "frmMain", "1500,750,7500,9000,0");
  Start(1).ShowAtLaunch();
  window->showMinimized();
  EXPECT_TRUE(window->Unload());
  EXPECT_EQ(Get("WindowSettings", "frmMain"), "1500,750,7500,9000,1");
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
  ASSERT_EQ(prompts.asked.size(), 1U);
  EXPECT_EQ(prompts.asked.front().text,
            "Are you sure you want to remove this Kill-A-Watt? This can not be undone.");
  Choose("mnuTools2");
  EXPECT_THAT(VisibleTabs(tabs), ElementsAre("*Kitchen/XBEE5"));
  EXPECT_TRUE(Control<QWidget>("elaScroller").isVisible());
  Choose("mnuTools2");
  EXPECT_THAT(VisibleTabs(tabs), IsEmpty());
  EXPECT_FALSE(Control<QWidget>("elaScroller").isVisible());
  EXPECT_EQ(Control<MainArea>("elaWindow").Caption(),
            "No Kill-A-Watts have been added\r\nDouble click to add...");
}

TEST_F(MainWindowTest, CalibratesTheSelectedMeterWhileTheCycleGoesOn) {
  std::vector<std::string> calibrated;
  options.dialogs.calibrateMeter = [&](clsKillAWatt& meter) {
    calibrated.push_back(meter.Name());
    Tick();
    EXPECT_TRUE(monitor->IsUpdateTimerEnabled());
  };
  Start(2).ShowAtLaunch();
  Choose("mnuTools6");
  EXPECT_THAT(calibrated, IsEmpty()) << "the Total is not calibrated";
  Control<QTabBar>("tabKillAWatt").setCurrentIndex(2);
  Choose("mnuTools6");
  EXPECT_THAT(calibrated, ElementsAre("Office"));
}

TEST_F(MainWindowTest, AnAmpersandInANameIsShown) {
  PutMeter("R&D", 5);
  Start();
  EXPECT_EQ(Control<QTabBar>("tabKillAWatt").tabText(1), "R&&D");
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

TEST_F(MainWindowTest, AnEditedNameShowsOnTheTabAndInTheNextHeaderOfTheLog) {
  options.dialogs.editMeter = [](clsKillAWatt& meter, const std::string&) {
    meter.SetName("Cellar");
    return true;
  };
  Start(1);
  Choose("mnuTools1");
  EXPECT_THAT(VisibleTabs(Control<QTabBar>("tabKillAWatt")), ElementsAre("*Cellar/XBEE5"));
  EXPECT_TRUE(monitor->Profile().Settings().CSVFileChanged);
}

TEST_F(MainWindowTest, TheMessageInTheMainAreaIsDoubleClicked) {
  int optionsShown = 0;
  options.features.showOptions = [&](bool) { ++optionsShown; };
  port.opens = false;
  Put("Settings", "PortNum", "3");
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

TEST_F(MainWindowTest, AnAddedMeterGetsATab) {
  options.dialogs.editMeter = [](clsKillAWatt& meter, const std::string&) {
    meter.SetName("Cellar");
    meter.SetXBeeAddress(9);
    return true;
  };
  Start(1).ShowAtLaunch();
  Choose("mnuTools0");
  EXPECT_THAT(VisibleTabs(Control<QTabBar>("tabKillAWatt")),
              ElementsAre("Total/TOTAL", "*Kitchen/XBEE5", "Cellar/XBEE9"));
}

struct PanelCase {
  const char* name;
  const char* panel;
  bool hasError;
  bool showsList;
};

struct PanelClick : MainWindowTest, testing::WithParamInterface<PanelCase> {};

TEST_P(PanelClick, ShowsTheErrorsOrNotAndEmptiesTheList) {
  Start(1).ShowAtLaunch();
  auto& info = Control<StatusPanel>("INFO");
  if (GetParam().hasError) {
    monitor->ReportError("No route to host");
    EXPECT_EQ(info.text(), "Click here to view errors...");
  } else {
    monitor->SetInfoText("CSV file: Updated 11/16/2026 8:10:00 PM");
  }
  QTest::mouseClick(&Control<StatusPanel>(GetParam().panel), Qt::LeftButton);
  if (GetParam().showsList) {
    EXPECT_THAT(texts, ElementsAre("Errors!2:11/16/2026 8:10:00 PM: No route to host\r\n"));
  } else {
    EXPECT_THAT(texts, IsEmpty());
  }
  EXPECT_TRUE(monitor->Errors().IsEmpty());
  EXPECT_EQ(info.text(), "");
}

INSTANTIATE_TEST_SUITE_P(Table, PanelClick,
                         testing::Values(PanelCase{"InfoWithError", "INFO", true, true},
                                         PanelCase{"InfoWithoutError", "INFO", false, false},
                                         PanelCase{"CommWithError", "COMM", true, false}),
                         [](const auto& click) { return click.param.name; });

TEST_F(MainWindowTest, ErrorsThatComeWhileTheListIsOpenAreKept) {
  options.dialogs.showText = [this](const std::string&, const std::string&, int) {
    monitor->ReportError("Later");
  };
  Start(1).ShowAtLaunch();
  monitor->ReportError("Earlier");
  QTest::mouseClick(&Control<StatusPanel>("INFO"), Qt::LeftButton);
  EXPECT_EQ(monitor->Errors().Text(), "11/16/2026 8:10:00 PM: Later\r\n");
  EXPECT_EQ(Control<StatusPanel>("INFO").text(), "Click here to view errors...");
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
