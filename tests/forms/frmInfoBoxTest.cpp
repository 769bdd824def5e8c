#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QApplication>
#include <QTest>
#include <QTimer>
#include <ostream>

#include "app/forms/frmInfoBox.h"
#include "platform/FileSizeLimit.h"
#include "platform/TemporaryFolder.h"
#include "twins/HandClock.h"
#include "twins/ScriptedPrompts.h"
#include "twins/ScriptedRandom.h"

namespace wattlark {
namespace {

constexpr const char* kText =
    "11/16/2026 8:10:01 PM: <b>Communications</b> Error - \xC3\xA9\r\n"
    "11/16/2026 8:10:02 PM: second\n";

struct frmInfoBoxTest : testing::Test {
  QPushButton& Button(const char* name) { return *form.findChild<QPushButton*>(name); }
  bool Shows(const char* name) { return Button(name).isVisibleTo(&form); }

  ScriptedPrompts prompts;
  ScriptedRandom random{};
  HandClock clock;
  int printed = 0;
  frmInfoBox form{{prompts, random, clock, [this](QPlainTextEdit&) { ++printed; }}};
};

TEST_F(frmInfoBoxTest, ShowsPlainTextToRead) {
  form.SetInfo(kText, "Errors!", InfoSave);
  auto& box = *form.findChild<QPlainTextEdit*>("rtbInfo");
  EXPECT_EQ(box.toPlainText(),
            "11/16/2026 8:10:01 PM: <b>Communications</b> Error - é\n11/16/2026 8:10:02 PM: "
            "second\n");
  QTest::keyClicks(&box, "x");
  EXPECT_TRUE(box.toPlainText().startsWith("11/16"));
  EXPECT_EQ(form.windowTitle(), "Errors!");
  form.SetInfo(kText, "", 0);
  EXPECT_EQ(form.windowTitle(), "Wattlark");
}

struct ButtonsCase {
  int options;
  bool print;
  bool save;
};

class ButtonsTest : public frmInfoBoxTest, public testing::WithParamInterface<ButtonsCase> {};

TEST_P(ButtonsTest, FollowTheOptionBits) {
  form.SetInfo(kText, "", GetParam().options);
  EXPECT_EQ(Shows("cmdPrint"), GetParam().print);
  EXPECT_EQ(Shows("cmdSave"), GetParam().save);
  EXPECT_TRUE(Shows("cmdClose"));
  EXPECT_EQ(Button("cmdClose").text(), "Close");
}

INSTANTIATE_TEST_SUITE_P(Bits, ButtonsTest,
                         testing::Values(ButtonsCase{0, false, false}, ButtonsCase{1, true, false},
                                         ButtonsCase{2, false, true}, ButtonsCase{3, true, true},
                                         ButtonsCase{4 + 8, false, false}));

TEST_F(frmInfoBoxTest, SaveMovesToPrintsPlaceWhenItIsAlone) {
  form.SetInfo(kText, "", InfoPrint | InfoSave);
  form.show();
  const int place = Button("cmdPrint").x();
  EXPECT_GT(Button("cmdSave").x(), place);
  form.SetInfo(kText, "", InfoSave);
  EXPECT_TRUE(QTest::qWaitFor([&] { return Button("cmdSave").x() == place; }));
}

struct CaptionCase {
  double number;
  const char* caption;
};

class CaptionTest : public frmInfoBoxTest, public testing::WithParamInterface<CaptionCase> {};

TEST_P(CaptionTest, FollowsTheRandomNumber) {
  random.numbers = {GetParam().number};
  form.SetInfo(kText, "", 16);
  EXPECT_EQ(Button("cmdClose").text(), GetParam().caption);
  EXPECT_EQ(Button("cmdClose").accessibleName(), GetParam().caption);
  EXPECT_EQ(random.reseeds, 1);
}

INSTANTIATE_TEST_SUITE_P(Numbers, CaptionTest,
                         testing::Values(CaptionCase{0, "Darn!"}, CaptionCase{0.099, "Darn!"},
                                         CaptionCase{0.1, "Whatever..."},
                                         CaptionCase{0.199, "Whatever..."},
                                         CaptionCase{0.25, "Bah!"}, CaptionCase{0.35, "Dang"},
                                         CaptionCase{0.4, "Bah!"}, CaptionCase{0.999, "Bah!"}));

TEST_F(frmInfoBoxTest, SavesTheTextByteByByte) {
  const TemporaryFolder folder;
  prompts.chosenFile = folder.File("errors \xC3\xA9.txt");
  WriteFile(*prompts.chosenFile, std::string(1000, 'x'));
  form.SetInfo(kText, "Errors!", InfoSave);
  Button("cmdSave").click();
  EXPECT_EQ(FileBytes(*prompts.chosenFile), kText);
  ASSERT_EQ(prompts.choosers.size(), 1u);
  EXPECT_EQ(prompts.choosers[0].caption, "Save As");
  EXPECT_FALSE(prompts.choosers[0].appends);
  EXPECT_TRUE(prompts.asked.empty());
}

TEST_F(frmInfoBoxTest, CancelledSaveDoesNothing) {
  form.SetInfo(kText, "Errors!", InfoSave);
  Button("cmdSave").click();
  EXPECT_EQ(prompts.choosers.size(), 1u);
  EXPECT_TRUE(prompts.asked.empty());
}

TEST_F(frmInfoBoxTest, TellsWhyTheTextCouldNotBeSaved) {
  const TemporaryFolder folder;
  form.SetInfo(kText, "Errors!", InfoSave);
  const std::string pipe = folder.File("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& file : {folder.Path(), folder.File("missing/errors.txt"), pipe}) {
    prompts.chosenFile = file;
    prompts.asked.clear();
    Button("cmdSave").click();
    ASSERT_EQ(prompts.asked.size(), 1u) << file;
    EXPECT_EQ(prompts.asked[0].text.rfind("The text could not be saved to " + file + ": ", 0), 0u)
        << prompts.asked[0].text;
    EXPECT_GT(prompts.asked[0].text.size(), 36 + file.size()) << "a reason follows";
    EXPECT_EQ(prompts.asked[0].icon, PromptIcon::Exclamation);
  }
  EXPECT_TRUE(std::filesystem::is_fifo(pipe));
}

TEST_F(frmInfoBoxTest, KeepsTheFileThatWasThereWhenTheDiskIsFull) {
  const TemporaryFolder folder;
  prompts.chosenFile = folder.File("errors.txt");
  WriteFile(*prompts.chosenFile, "mine");
  form.SetInfo(kText, "Errors!", InfoSave);
  {
    const FileSizeLimit full;
    Button("cmdSave").click();
  }
  EXPECT_EQ(prompts.asked.size(), 1u);
  EXPECT_EQ(FileBytes(*prompts.chosenFile), "mine");
}

TEST_F(frmInfoBoxTest, LeavesAFileAloneThatItMayNotWrite) {
  const TemporaryFolder folder;
  prompts.chosenFile = folder.File("errors.txt");
  WriteFile(*prompts.chosenFile, "mine");
  std::filesystem::permissions(*prompts.chosenFile, std::filesystem::perms(0444));
  std::filesystem::permissions(folder.Path(), std::filesystem::perms(0555));
  form.SetInfo(kText, "Errors!", InfoSave);
  {
    const WithoutRoot user;
    Button("cmdSave").click();
  }
  std::filesystem::permissions(folder.Path(), std::filesystem::perms(0755));
  EXPECT_EQ(prompts.asked.size(), 1u);
  EXPECT_EQ(FileBytes(*prompts.chosenFile), "mine");
}

TEST_F(frmInfoBoxTest, PrintButtonPrints) {
  form.SetInfo(kText, "", InfoPrint);
  Button("cmdPrint").click();
  EXPECT_EQ(printed, 1);
}

TEST_F(frmInfoBoxTest, IsModalUntilItIsClosed) {
  for (const bool byButton : {true, false}) {
    int seen = 0;
    QTimer::singleShot(0, [&] {
      ASSERT_EQ(QApplication::activeModalWidget(), &form);
      ++seen;
      if (byButton) {
        Button("cmdClose").click();
      } else {
        QTest::keyClick(&form, Qt::Key_Escape);
      }
    });
    form.InfoBox(kText, "Errors!", InfoSave);
    EXPECT_EQ(seen, 1);
    EXPECT_FALSE(form.isVisible());
  }
}

TEST_F(frmInfoBoxTest, TabGoesThroughTextAndButtons) {
  form.SetInfo(kText, "", InfoPrint | InfoSave);
  form.show();
  QApplication::setActiveWindow(&form);
  form.findChild<QWidget*>("rtbInfo")->setFocus();
  std::vector<std::string> order;
  for (int i = 0; i < 4; ++i) {
    order.push_back(form.focusWidget()->objectName().toStdString());
    QTest::keyClick(form.focusWidget(), Qt::Key_Tab);
  }
  EXPECT_EQ(order, (std::vector<std::string>{"rtbInfo", "cmdPrint", "cmdSave", "cmdClose"}));
}

}  // namespace
}  // namespace wattlark
