#include <gmock/gmock.h>
#include <sys/stat.h>

#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>

#include "app/forms/frmInfoBox.h"
#include "forms/FormChecks.h"
#include "platform/FileSizeLimit.h"
#include "platform/TemporaryFolder.h"
#include "twins/HandClock.h"
#include "twins/ScriptedPrompts.h"
#include "twins/ScriptedRandom.h"

namespace wattlark {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

constexpr const char* kText =
    "11/16/2026 8:10:01 PM: <b>Communications</b> Error - \xC3\xA9\r\n"
    "11/16/2026 8:10:02 PM: second\n";

struct frmInfoBoxTest : testing::Test {
  frmInfoBoxTest() { form.SetInfo(kText, "Errors!", InfoPrint | InfoSave); }
  QPushButton& Button(const char* name) const { return Find<QPushButton>(form, name); }

  TemporaryFolder folder;
  ScriptedPrompts prompts;
  ScriptedRandom random{};
  HandClock clock;
  int printed = 0;
  frmInfoBox form{{prompts, random, clock, [this](QPlainTextEdit&) { ++printed; }}};
};

TEST_F(frmInfoBoxTest, ShowsPlainTextToReadAndPrint) {
  auto& box = Find<QPlainTextEdit>(form, "rtbInfo");
  EXPECT_EQ(box.toPlainText(),
            "11/16/2026 8:10:01 PM: <b>Communications</b> Error - é\n11/16/2026 8:10:02 PM: "
            "second\n");
  QTest::keyClicks(&box, "x");
  EXPECT_TRUE(box.toPlainText().startsWith("11/16"));
  EXPECT_EQ(form.windowTitle(), "Errors!");
  Button("cmdPrint").click();
  EXPECT_EQ(printed, 1);
  form.show();
  QApplication::setActiveWindow(&form);
  EXPECT_THAT(TabOrder(form, "rtbInfo", 4),
              ElementsAre("rtbInfo", "cmdPrint", "cmdSave", "cmdClose"));
  form.SetInfo(kText, "", 0);
  EXPECT_EQ(form.windowTitle(), "Wattlark");
}

TEST_F(frmInfoBoxTest, ButtonsFollowTheOptionBits) {
  form.show();
  const int place = Button("cmdPrint").x();
  EXPECT_GT(Button("cmdSave").x(), place);
  for (const int options : {0, 1, 2, 3, 4 + 8}) {
    form.SetInfo(kText, "", options);
    EXPECT_EQ(Button("cmdPrint").isVisible(), options == 1 || options == 3) << options;
    EXPECT_EQ(Button("cmdSave").isVisible(), options == 2 || options == 3) << options;
    EXPECT_EQ(Button("cmdClose").text(), "Close");
  }
  form.SetInfo(kText, "", InfoSave);
  EXPECT_TRUE(QTest::qWaitFor([&] { return Button("cmdSave").x() == place; }));
}

TEST_F(frmInfoBoxTest, TheCaptionFollowsTheRandomNumber) {
  const std::pair<double, const char*> cases[] = {
      {0, "Darn!"},   {0.099, "Darn!"}, {0.1, "Whatever..."}, {0.199, "Whatever..."},
      {0.25, "Bah!"}, {0.35, "Dang"},   {0.4, "Bah!"},        {0.999, "Bah!"}};
  for (const auto& [number, caption] : cases) {
    random.numbers = {number};
    random.reseeds = 0;
    form.SetInfo(kText, "", 16);
    EXPECT_EQ(Button("cmdClose").text(), caption);
    EXPECT_EQ(Button("cmdClose").accessibleName(), caption);
    EXPECT_EQ(random.reseeds, 1);
  }
}

TEST_F(frmInfoBoxTest, SavesTheTextByteByByte) {
  Button("cmdSave").click();
  ASSERT_EQ(prompts.choosers.size(), 1u);
  EXPECT_EQ(prompts.choosers[0].caption, "Save As");
  EXPECT_FALSE(prompts.choosers[0].appends);
  EXPECT_TRUE(prompts.asked.empty()) << "cancelled";
  prompts.chosenFile = folder.File("errors \xC3\xA9.txt");
  WriteFile(*prompts.chosenFile, std::string(1000, 'x'));
  Button("cmdSave").click();
  EXPECT_EQ(FileBytes(*prompts.chosenFile), kText);
  EXPECT_TRUE(prompts.asked.empty());
}

TEST_F(frmInfoBoxTest, TellsWhyTheTextCouldNotBeSaved) {
  const std::string pipe = folder.File("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& file : {folder.Path(), folder.File("missing/errors.txt"), pipe}) {
    prompts.chosenFile = file;
    prompts.asked.clear();
    Button("cmdSave").click();
    ASSERT_EQ(prompts.asked.size(), 1u) << file;
    const std::string told = "The text could not be saved to " + file + ": ";
    EXPECT_THAT(prompts.asked[0].text, StartsWith(told));
    EXPECT_GT(prompts.asked[0].text.size(), told.size()) << "a reason follows";
    EXPECT_EQ(prompts.asked[0].icon, PromptIcon::Exclamation);
  }
  EXPECT_TRUE(std::filesystem::is_fifo(pipe));
}

TEST_F(frmInfoBoxTest, KeepsTheFileThatItCannotReplace) {
  prompts.chosenFile = folder.File("errors.txt");
  WriteFile(*prompts.chosenFile, "mine");
  {
    const FileSizeLimit full;
    Button("cmdSave").click();
  }
  EXPECT_EQ(prompts.asked.size(), 1u);
  EXPECT_EQ(FileBytes(*prompts.chosenFile), "mine");
  using std::filesystem::perms;
  std::filesystem::permissions(*prompts.chosenFile, perms(0444));
  std::filesystem::permissions(folder.Path(), perms(0555));
  {
    const WithoutRoot user;
    Button("cmdSave").click();
  }
  std::filesystem::permissions(folder.Path(), perms(0755));
  EXPECT_EQ(prompts.asked.size(), 2u);
  EXPECT_EQ(FileBytes(*prompts.chosenFile), "mine");
}

TEST_F(frmInfoBoxTest, IsModalUntilItIsClosed) {
  for (const bool byButton : {true, false}) {
    int seen = 0;
    QTimer::singleShot(0, [&] {
      ASSERT_EQ(QApplication::activeModalWidget(), &form);
      ++seen;
      if (byButton) {
        Click(form, "cmdClose");
      } else {
        QTest::keyClick(&form, Qt::Key_Escape);
      }
    });
    form.InfoBox(kText, "Errors!", InfoSave);
    EXPECT_EQ(seen, 1);
    EXPECT_FALSE(form.isVisible());
  }
}

}  // namespace
}  // namespace wattlark
