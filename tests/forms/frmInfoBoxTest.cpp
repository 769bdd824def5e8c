#include <gmock/gmock.h>
#include <sys/stat.h>

#include <QTimer>

#include "app/forms/frmInfoBox.h"
#include "forms/FormChecks.h"
#include "platform/TemporaryFolder.h"
#include "twins/HandClock.h"
#include "twins/ScriptedPrompts.h"
#include "twins/ScriptedRandom.h"

namespace wattlark {
namespace {

using testing::_;
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

TEST_F(frmInfoBoxTest, ShowsPlainTextToReadAndPrintWithTheButtonsOfTheOptionBits) {
  form.show();
  QApplication::setActiveWindow(&form);
  auto& box = Find<QPlainTextEdit>(form, "rtbInfo");
  QTest::keyClicks(&box, "x");
  EXPECT_EQ(box.toPlainText(),
            "11/16/2026 8:10:01 PM: <b>Communications</b> Error - é\n11/16/2026 8:10:02 PM: "
            "second\n");
  EXPECT_EQ(form.windowTitle(), "Errors!");
  Click(form, "cmdPrint");
  EXPECT_EQ(printed, 1);
  EXPECT_THAT(TabOrder(form, "rtbInfo", 4),
              ElementsAre("rtbInfo", "cmdPrint", "cmdSave", "cmdClose"));
  const int place = Button("cmdPrint").x();
  for (const int options : {0, 1, 2, 3, 4 + 8}) {
    form.SetInfo(kText, "", options);
    EXPECT_EQ(Button("cmdPrint").isVisible(), options == 1 || options == 3) << options;
    EXPECT_EQ(Button("cmdSave").isVisible(), options == 2 || options == 3) << options;
    EXPECT_EQ(Button("cmdClose").text(), "Close");
  }
  EXPECT_EQ(form.windowTitle(), "Wattlark");
  form.SetInfo(kText, "", InfoSave);
  EXPECT_TRUE(QTest::qWaitFor([&] { return Button("cmdSave").x() == place; }));
}

TEST_F(frmInfoBoxTest, TheCaptionFollowsTheRandomNumber) {
  using Row = std::pair<double, const char*>;
  for (const auto& [number, caption] :
       {Row{0, "Darn!"}, Row{0.099, "Darn!"}, Row{0.1, "Whatever..."}, Row{0.199, "Whatever..."},
        Row{0.25, "Bah!"}, Row{0.35, "Dang"}, Row{0.4, "Bah!"}, Row{0.999, "Bah!"}}) {
    random.numbers = {number};
    random.reseeds = 0;
    form.SetInfo(kText, "", 16);
    EXPECT_EQ(Button("cmdClose").text(), caption);
    EXPECT_EQ(Button("cmdClose").accessibleName(), caption);
    EXPECT_EQ(random.reseeds, 1);
  }
}

TEST_F(frmInfoBoxTest, SavesTheTextByteByByteOrTellsWhyAndKeepsTheFile) {
  Click(form, "cmdSave");
  EXPECT_THAT(prompts.choosers, ElementsAre(testing::FieldsAre("Save As", _, _, false)));
  EXPECT_TRUE(prompts.asked.empty()) << "cancelled";
  const std::string file = folder.File("errors \xC3\xA9.txt");
  const auto save = [&](const std::string& chosen) {
    prompts.chosenFile = chosen;
    prompts.asked.clear();
    Click(form, "cmdSave");
  };
  WriteFile(file, std::string(1000, 'x'));
  save(file);
  EXPECT_EQ(FileBytes(file), kText);
  EXPECT_TRUE(prompts.asked.empty());
  WriteFile(file, "mine");
  const std::string pipe = folder.File("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& other : {folder.Path(), folder.File("missing/errors.txt"), pipe, file}) {
    const FileSizeLimit full;
    save(other);
    EXPECT_THAT(prompts.asked, ElementsAre(testing::FieldsAre(
                                   StartsWith("The text could not be saved to " + other + ": "), _,
                                   PromptIcon::Exclamation, _, _)));
  }
  EXPECT_TRUE(std::filesystem::is_fifo(pipe));
  using std::filesystem::perms;
  std::filesystem::permissions(file, perms(0444));
  std::filesystem::permissions(folder.Path(), perms(0555));
  {
    const WithoutRoot user;
    save(file);
  }
  std::filesystem::permissions(folder.Path(), perms(0755));
  EXPECT_EQ(prompts.asked.size(), 1u);
  EXPECT_EQ(FileBytes(file), "mine");
}

TEST_F(frmInfoBoxTest, IsModalUntilItIsClosed) {
  for (const bool byButton : {true, false}) {
    bool isSeen = false;
    QTimer::singleShot(0, [&] {
      isSeen = QApplication::activeModalWidget() == &form;
      if (byButton) Click(form, "cmdClose");
      QTest::keyClick(&form, Qt::Key_Escape);
    });
    form.InfoBox(kText, "Errors!", InfoSave);
    EXPECT_TRUE(isSeen);
    EXPECT_FALSE(form.isVisible());
  }
}

}  // namespace
}  // namespace wattlark
