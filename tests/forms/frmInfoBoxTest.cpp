#include <sys/stat.h>

#include <QTimer>
#include <optional>

#include "app/forms/frmInfoBox.h"
#include "forms/FormChecks.h"
#include "platform/TemporaryFolder.h"
#include "twins/HandClock.h"
#include "twins/Matchers.h"
#include "twins/ScriptedPrompts.h"
#include "twins/ScriptedRandom.h"

namespace wattlark {
namespace {

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
  for (const int options : {0, 1, 2}) {
    form.SetInfo(kText, "", options);
    EXPECT_EQ(Button("cmdPrint").isVisible(), options == 1) << options;
    EXPECT_EQ(Button("cmdSave").isVisible(), options == 2) << options;
  }
  EXPECT_EQ(form.windowTitle(), "Wattlark");
}

TEST_F(frmInfoBoxTest, TheCaptionFollowsTheRandomNumber) {
  using Row = std::pair<double, const char*>;
  for (const auto& [number, caption] : {Row{0.099, "Darn!"}, Row{0.1, "Whatever..."},
                                        Row{0.25, "Bah!"}, Row{0.35, "Dang"}, Row{0.999, "Bah!"}}) {
    random.numbers = {number};
    form.SetInfo(kText, "", 16);
    EXPECT_EQ(Button("cmdClose").text(), caption);
  }
  form.SetInfo(kText, "", 0);
  EXPECT_EQ(Button("cmdClose").text(), "Close");
}

TEST_F(frmInfoBoxTest, SavesTheTextByteByByteOrTellsWhyAndKeepsTheFile) {
  Click(form, "cmdSave");
  EXPECT_TRUE(prompts.asked.empty()) << "cancelled";
  const std::string file = folder.File("errors \xC3\xA9.txt");
  prompts.chosenFile = file;
  WriteFile(file, std::string(1000, 'x'));
  Click(form, "cmdSave");
  EXPECT_EQ(FileBytes(file), kText);
  EXPECT_TRUE(prompts.asked.empty());
  WriteFile(file, "mine");
  const std::string pipe = folder.File("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& other : {pipe, file}) {
    std::optional<FileSizeLimit> full;
    if (other == file) full.emplace();
    prompts.chosenFile = other;
    prompts.asked.clear();
    Click(form, "cmdSave");
    EXPECT_THAT(prompts.asked,
                ElementsAre(FieldsAre(StartsWith("The text could not be saved to " + other + ": "),
                                      _, PromptIcon::Exclamation, _, _)));
  }
  EXPECT_TRUE(std::filesystem::is_fifo(pipe));
  EXPECT_EQ(FileBytes(file), "mine");
}

TEST_F(frmInfoBoxTest, IsModalUntilItIsClosed) {
  bool isSeen = false;
  QTimer::singleShot(0, [&] {
    isSeen = QApplication::activeModalWidget() == &form;
    Click(form, "cmdClose");
  });
  form.InfoBox(kText, "Errors!", InfoSave);
  EXPECT_TRUE(isSeen);
  EXPECT_FALSE(form.isVisible());
}

}  // namespace
}  // namespace wattlark
