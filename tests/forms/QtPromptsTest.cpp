#include <QFileDialog>
#include <QMessageBox>
#include <QScreen>
#include <QTimer>

#include "forms/FormChecks.h"
#include "platform/qtwidgets/QtPrompts.h"
#include "publish/forms/frmLogin.h"
#include "update/forms/frmSoftwareUpdate.h"

namespace wattlark {
namespace {

// Shows the message and does something to its box.
PromptAnswer Ask(const PromptMessage& message, const std::function<void(QMessageBox&)>& act) {
  QTimer::singleShot(0, [act] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    ASSERT_NE(box, nullptr);
    act(*box);
    box->close();  // where the action has not ended it
  });
  return QtPrompts().Ask(message);
}

TEST(QtPrompts, TheAnswerComesFromTheButton) {
  using enum PromptAnswer;
  using Box = QMessageBox;
  struct Row {
    PromptButtons buttons;
    PromptAnswer byEnter;  ///< the default
    PromptAnswer byEscape;
    std::vector<std::pair<Box::StandardButton, PromptAnswer>> shown;
  };
  for (const auto& [buttons, byEnter, byEscape, shown] :
       {Row{PromptButtons::OK, OK, OK, {{Box::Ok, OK}}},
        Row{PromptButtons::OKCancel, Cancel, Cancel, {{Box::Ok, OK}, {Box::Cancel, Cancel}}},
        Row{PromptButtons::YesNo, Yes, No, {{Box::Yes, Yes}, {Box::No, No}}},
        Row{PromptButtons::YesNo, No, No, {{Box::Yes, Yes}, {Box::No, No}}}}) {
    const PromptMessage message{"Text", "", PromptIcon::None, buttons, byEnter};
    for (const auto& [button, answer] : shown) {
      const auto click = [clicked = button](Box& box) { box.button(clicked)->click(); };
      EXPECT_EQ(Ask(message, click), answer);
    }
    EXPECT_EQ(Ask(message, [](Box& box) { QTest::keyClick(&box, Qt::Key_Return); }), byEnter);
    EXPECT_EQ(Ask(message, [](Box& box) { box.close(); }), byEscape);
  }
}

TEST(QtPrompts, ShowCaptionIconAndMarkUpAsTextAndBelongToTheDialogThatIsOpen) {
  QDialog dialog;
  dialog.setModal(true);
  dialog.show();
  const std::string hostile = "Another meter has the name \"<img src='file:///etc/passwd'><b>x\".";
  Ask({hostile + "\r\nSecond", "Duplicate ID", PromptIcon::Exclamation}, [&](QMessageBox& box) {
    EXPECT_EQ(box.windowTitle(), "Duplicate ID");
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.text().remove(QChar(0x200B)).toStdString(), hostile + "\nSecond");
    EXPECT_EQ(box.icon(), QMessageBox::Warning);
    EXPECT_EQ(box.parentWidget(), &dialog);
  });
  Ask({"Text", "", PromptIcon::Information},
      [](QMessageBox& box) { EXPECT_EQ(box.icon(), QMessageBox::Information); });
}

TEST(QtPrompts, NoTextMakesABoxLargerThanTheScreen) {
  std::string text;
  for (int i = 1; i <= 500; ++i) text += "line " + std::to_string(i) + "\r\n";
  for (const std::string& shown : {text, "The file /" + std::string(5000, 'W') + " is missing."}) {
    Ask({shown, ""}, [&](QMessageBox& box) {
      const auto& label = Find<QLabel>(box, "qt_msgbox_label");
      EXPECT_LE(label.heightForWidth(label.width()), label.height());
      EXPECT_TRUE(box.detailedText().endsWith(shown == text ? "line 500" : "missing."));
      const QSize screen = box.screen()->availableGeometry().size();
      EXPECT_EQ(box.size().boundedTo(screen), box.size());
    });
  }
}

TEST(BoxText, BreaksLinesAndLongWords) {
  const std::string word(40, 'x');
  const std::string mayBreak = "\u200B";
  using Row = std::pair<std::string, std::string>;
  for (const auto& [text, shown] :
       {Row{"a\r\nb\nc\r\n", "a\nb\nc"}, Row{word + "\nyy", word + "\nyy"},
        Row{word + word + "x", word + mayBreak + word + mayBreak + "x"},
        // A character of two units stays whole.
        Row{word.substr(1) + "\U0001F50Cy", word.substr(1) + "\U0001F50C" + mayBreak + "y"}}) {
    EXPECT_EQ(BoxText(text).toStdString(), shown) << text;
  }
}

TEST(QtPrompts, AFileToAddToIsNotReplacedButMakingOneIsAgreed) {
  std::vector<QString> questions;
  const auto choose = [&](const std::string& file,
                          const std::vector<QMessageBox::StandardButton>& answers) {
    QTimer next;
    QObject::connect(&next, &QTimer::timeout, [&questions, answers, index = 0U]() mutable {
      QWidget* window = QApplication::activeModalWidget();
      if (auto* box = qobject_cast<QMessageBox*>(window)) {
        questions.push_back(box->text());
        if (index < answers.size()) box->button(answers[index++])->click();
      } else if (auto* dialog = qobject_cast<QFileDialog*>(window)) {
        EXPECT_TRUE(dialog->testOption(QFileDialog::DontConfirmOverwrite));
        static_cast<QDialog*>(dialog)->done(QDialog::Accepted);
      }
    });
    next.start(0);
    return QtPrompts().ChooseSaveFile({"Save Log File", "CSV (*.csv)", file, true});
  };
  const std::string present = QApplication::applicationFilePath().toStdString();
  EXPECT_EQ(choose(present, {}), present);
  EXPECT_TRUE(questions.empty());
  EXPECT_EQ(choose("/nowhere.csv", {QMessageBox::No, QMessageBox::Yes}), "/nowhere.csv");
  ASSERT_EQ(questions.size(), 2U);
  EXPECT_EQ(questions[0], "/nowhere.csv\nThis file does not exist. Create the file?");
}

TEST(frmLogin, StartsFromThePresentCredentialsAndHandsBackOnlyWhatWasConfirmed) {
  QtPrompts prompts;
  std::string userName = "old";
  std::string password;
  EXPECT_FALSE(prompts.SignIn("Google Login", userName, password)) << "cannot show it";
  prompts.signIn = SignIn;
  for (const bool confirms : {false, true}) {
    QTimer::singleShot(0, [&] {
      auto* form = qobject_cast<frmLogin*>(QApplication::activeModalWidget());
      auto& name = Find<QLineEdit>(*form, "txtUserName");
      auto& secret = Find<QLineEdit>(*form, "txtPassword");
      EXPECT_EQ(form->windowTitle(), "Google Login");
      EXPECT_EQ(name.text(), "old");
      EXPECT_EQ(form->focusWidget(), &secret) << "what is missing";
      EXPECT_EQ(secret.echoMode(), QLineEdit::Password);
      name.setText("new ü");
      secret.setText(" p ");
      Click(*form, confirms ? "cmdOK" : "cmdCancel");
    });
    EXPECT_EQ(prompts.SignIn("Google Login", userName, password), confirms);
    EXPECT_EQ(userName + password, confirms ? "new ü p " : "old");
  }
}

const UpdateOffer kOffer{"A new version of Wattlark is available!", "Would you like to download?",
                         "<b>Faster</b>\r\n\xFF", "2.1", "https://maker.example/setup.exe"};

TEST(frmSoftwareUpdateTest, ShowsPlainTexts) {
  frmSoftwareUpdate form(kOffer);
  EXPECT_EQ(Find<QLabel>(form, "lblTitle").text(), kOffer.title.c_str());
  EXPECT_EQ(Find<QLabel>(form, "lblMessage").text(), kOffer.message.c_str());
  auto& notes = Find<QPlainTextEdit>(form, "txtReleaseNotes");
  EXPECT_EQ(notes.toPlainText(), QString("<b>Faster</b>\n") + QChar(0xFFFD));
  EXPECT_TRUE(notes.isReadOnly());
}

TEST(frmSoftwareUpdateTest, OnlyTheTwoButtonsDoMoreThanPutItOff) {
  using Row = std::pair<const char*, UpdateAnswer>;
  for (const auto& [button, answer] :
       {Row{"cmdOK", UpdateAnswer::Download},
        Row{"cmdSkipThisVersion", UpdateAnswer::SkipThisVersion},
        Row{"cmdCancel", UpdateAnswer::RemindLater}, Row{"", UpdateAnswer::RemindLater}}) {
    QTimer::singleShot(0, [name = QString(button)] {
      QWidget* form = QApplication::activeModalWidget();
      if (name.isEmpty()) QTest::keyClick(form, Qt::Key_Return);
      if (!name.isEmpty()) Click(*form, name);
    });
    EXPECT_EQ(OfferUpdate(kOffer, nullptr), answer);
  }
}

}  // namespace
}  // namespace wattlark
