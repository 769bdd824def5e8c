#include <QDialog>

#include "MainWindowFixture.h"
#include "twins/Matchers.h"

namespace wattlark {
namespace {

// An item of each kind, and the same one of the notification area.
TEST_F(MainWindowTest, MenusAreEnabledByTheState) {
  options.features.postToPachube = [](bool) {};
  options.features.calibrate = [](bool) {};
  const auto expect = [this](bool flows, bool addMeter, bool meter) {
    for (const char* menu : {"mnuFile", "mnuView", "mnuTools"}) {
      emit Control<QMenu>(menu).aboutToShow();
    }
    emit window->TrayMenu().aboutToShow();
    using Row = std::pair<const char*, bool>;
    for (const auto& [item, isEnabled] :
         {Row{"mnuFile1", flows}, Row{"mnuFile7", true}, Row{"mnuView0", flows},
          Row{"mnuTools0", addMeter}, Row{"mnuTools6", meter}, Row{"mnuSysTray4", flows},
          Row{"mnuSysTray0", true}}) {
      EXPECT_EQ(Item(item).isEnabled(), isEnabled) << item;
    }
  };
  Start();
  expect(false, true, false);
  TearDown();
  Start(2);
  expect(true, true, false);
  Control<QTabBar>("tabKillAWatt").setCurrentIndex(1);
  expect(true, true, true);
  port.Close();
  expect(false, false, false);
}

struct PublishingMenus : MainWindowTest {
  PublishingMenus() {
    web = &webPorts;
    Put("Settings", "PachubeFeedURL", "http://feed");
  }
};

TEST_F(PublishingMenus, ReachTheirDestinations) {
  Put("Settings", "PowerMeterAuthInfo", "token=t&path=/p");
  for (const char* service : {"Google", "Twitter"}) {
    Put("Settings", std::string(service) + "Username", "me");
    Put("Settings", std::string(service) + "Password", "me");
  }
  Start(1);
  monitor->Profile().Total().Statistics().SetDemandRecent(Hour, std::vector<double>(60, 5));
  const char* errors[] = {"Pachube: Error Returned >> ", "Google: Invalid response >> ",
                          "Google: Error Returned - ", "Twitter: Invalid or no response"};
  for (int item = 1; item <= 4; ++item) {
    prompts.asked.clear();
    for (ScriptedHttp* client : {&pachube, &google, &twitter}) client->requests.clear();
    Choose("mnuFile" + QString::number(item));
    Choose("mnuSysTray" + QString::number(item + 3));
    // The main window tells of an error in a box, the notification area opens none.
    ASSERT_EQ(prompts.asked.size(), 1U) << item;
    EXPECT_EQ(prompts.asked[0].text, errors[item - 1]);
    const auto& requests = (item == 1 ? pachube : item == 4 ? twitter : google).requests;
    ASSERT_EQ(requests.size(), 2U) << item;
    EXPECT_EQ(requests[0].url, requests[1].url);
  }
}

// The wait could not end before the window that is open above it.
TEST_F(PublishingMenus, OpenNoWindowWhileAServerIsWaitedFor) {
  Start(1);
  pump.onRound = [this](int round) {
    if (round != 1) return;
    Choose("mnuTools0");
    Choose("mnuFile1");
    EXPECT_THAT(edited, IsEmpty());
    EXPECT_THAT(prompts.asked, IsEmpty());
    EXPECT_FALSE(monitor->Errors().IsEmpty());
  };
  Choose("mnuSysTray4");
  EXPECT_GT(pump.rounds, 0);
  QCoreApplication::processEvents();
  EXPECT_THAT(edited, testing::SizeIs(1));
  EXPECT_THAT(prompts.asked, IsEmpty());
}

// A desktop that shows the menu bar in its panel leaves it in reach.
TEST_F(MainWindowTest, WhileADialogWaitsOrTheirReasonHasGoneTheMenusOpenNothing) {
  Start(1);
  for (const char* name : {"mnuFile1", "mnuTools6", "mnuTools9", "mnuHelp3", "mnuSysTray4"}) {
    EXPECT_FALSE(Item(name).isEnabled()) << name << " without its feature";
  }
  QDialog dialog;
  dialog.setModal(true);
  dialog.show();
  for (const char* name : {"mnuTools1", "mnuTools2", "mnuSysTray10", "mnuSysTray12"}) Choose(name);
  EXPECT_THAT(edited, IsEmpty());
  EXPECT_THAT(prompts.asked, IsEmpty());
  EXPECT_EQ(ends, 0);
  dialog.close();
  Choose("mnuTools1");
  port.Close();  // while a menu is open
  Choose("mnuTools1");
  EXPECT_THAT(edited, testing::SizeIs(1));
  EXPECT_FALSE(Item("mnuTools1").isEnabled());
}

}  // namespace
}  // namespace wattlark
