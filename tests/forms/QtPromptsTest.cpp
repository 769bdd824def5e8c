#include <gtest/gtest.h>

#include <QApplication>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <functional>
#include <ostream>

#include "platform/qtwidgets/QtPrompts.h"

namespace wattlark {
namespace {

using Buttons = QMessageBox::StandardButtons;

struct QtPromptsTest : testing::Test {
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
};

void Click(QMessageBox& box, QMessageBox::StandardButton button) {
  ASSERT_NE(box.button(button), nullptr);
  box.button(button)->click();
}

struct AnswerCase {
  PromptButtons buttons;
  PromptAnswer defaultAnswer;
  Buttons shown;
  QMessageBox::StandardButton clicked;
  PromptAnswer answer;
  PromptAnswer answerToEscape;
};

class AnswerTest : public QtPromptsTest, public testing::WithParamInterface<AnswerCase> {};

TEST_P(AnswerTest, ComesFromTheButton) {
  const AnswerCase& c = GetParam();
  const PromptMessage message{"Text", "Wattlark", PromptIcon::None, c.buttons, c.defaultAnswer};
  EXPECT_EQ(Ask(message,
                [&](QMessageBox& box) {
                  EXPECT_EQ(box.standardButtons(), c.shown);
                  for (const QAbstractButton* button : box.buttons()) {
                    EXPECT_GE(button->minimumHeight(), 26);
                  }
                  Click(box, c.clicked);
                }),
            c.answer);
  EXPECT_EQ(Ask(message, [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); }),
            c.defaultAnswer);
  EXPECT_EQ(Ask(message, [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); }),
            c.answerToEscape);
  EXPECT_EQ(Ask(message, [](QMessageBox& box) { box.close(); }), c.answerToEscape);
}

INSTANTIATE_TEST_SUITE_P(
    Boxes, AnswerTest,
    testing::Values(
        AnswerCase{PromptButtons::OK, PromptAnswer::OK, QMessageBox::Ok, QMessageBox::Ok,
                   PromptAnswer::OK, PromptAnswer::OK},
        AnswerCase{PromptButtons::OKCancel, PromptAnswer::Cancel,
                   QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Ok, PromptAnswer::OK,
                   PromptAnswer::Cancel},
        AnswerCase{PromptButtons::OKCancel, PromptAnswer::OK, QMessageBox::Ok | QMessageBox::Cancel,
                   QMessageBox::Cancel, PromptAnswer::Cancel, PromptAnswer::Cancel},
        AnswerCase{PromptButtons::YesNo, PromptAnswer::No, QMessageBox::Yes | QMessageBox::No,
                   QMessageBox::Yes, PromptAnswer::Yes, PromptAnswer::No},
        AnswerCase{PromptButtons::YesNo, PromptAnswer::Yes, QMessageBox::Yes | QMessageBox::No,
                   QMessageBox::No, PromptAnswer::No, PromptAnswer::No}));

TEST_F(QtPromptsTest, ShowsCaptionTextAndIcon) {
  Ask({"First\r\nSecond", "Duplicate ID", PromptIcon::Exclamation}, [](QMessageBox& box) {
    EXPECT_EQ(box.windowTitle(), "Duplicate ID");
    EXPECT_EQ(box.text(), "First\nSecond");
    EXPECT_EQ(box.icon(), QMessageBox::Warning);
  });
  Ask({"Text", "", PromptIcon::Information},
      [](QMessageBox& box) { EXPECT_EQ(box.icon(), QMessageBox::Information); });
  Ask({"Text", ""}, [](QMessageBox& box) { EXPECT_EQ(box.icon(), QMessageBox::NoIcon); });
}

TEST_F(QtPromptsTest, ShowsMarkUpAsText) {
  const std::string hostile = "Another meter has the name \"<img src='file:///etc/passwd'><b>x\".";
  Ask({hostile, "<b>"}, [&](QMessageBox& box) {
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.text().remove(QChar(0x200B)).toStdString(), hostile);
  });
}

TEST_F(QtPromptsTest, ShowsTheFirstOfManyLinesAndAllOnDemand) {
  std::string text;
  for (int i = 1; i <= 500; ++i) text += "line " + std::to_string(i) + "\r\n";
  Ask({text, ""}, [](QMessageBox& box) {
    EXPECT_TRUE(box.text().endsWith("line 20\n\u2026")) << box.text().toStdString();
    EXPECT_TRUE(box.detailedText().endsWith("line 500"));
    EXPECT_LE(box.height(), box.screen()->availableGeometry().height());
  });
}

TEST_F(QtPromptsTest, ALongWordMakesNoBoxWiderThanTheScreen) {
  Ask({"The file /" + std::string(5000, 'W') + " is missing.", ""}, [](QMessageBox& box) {
    EXPECT_LE(box.width(), box.screen()->availableGeometry().width());
    const auto* label = box.findChild<QLabel*>("qt_msgbox_label");
    ASSERT_NE(label, nullptr);
    EXPECT_LE(label->heightForWidth(label->width()), label->height());
    EXPECT_LE(box.height(), box.screen()->availableGeometry().height());
  });
}

struct TextCase {
  std::string text;
  QString shown;
};

class BoxTextTest : public testing::TestWithParam<TextCase> {};

TEST_P(BoxTextTest, BreaksLinesAndLongWords) {
  EXPECT_EQ(BoxText(GetParam().text), GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, BoxTextTest,
    testing::Values(TextCase{"", ""}, TextCase{"a\r\nb\nc\r\n", "a\nb\nc"},
                    TextCase{std::string(40, 'x'), QString(40, 'x')},
                    TextCase{std::string(81, 'x'), QString(40, 'x') + QChar(0x200B) +
                                                       QString(40, 'x') + QChar(0x200B) + "x"},
                    TextCase{std::string(30, 'x') + "\n" + std::string(30, 'y'),
                             QString(30, 'x') + "\n" + QString(30, 'y')},
                    // A character of two units stays whole.
                    TextCase{std::string(39, 'x') + "\xF0\x9F\x94\x8Cy",
                             QString(39, 'x') + QString::fromUtf8("\xF0\x9F\x94\x8C") +
                                 QChar(0x200B) + "y"},
                    TextCase{"a\xFF", QString("a") + QChar(0xFFFD)}));

TEST_F(QtPromptsTest, BelongsToTheDialogThatIsOpen) {
  QDialog dialog;
  QTimer::singleShot(0, [&] {
    Ask({"Text", ""}, [&](QMessageBox& box) { EXPECT_EQ(box.parentWidget(), &dialog); });
    dialog.reject();
  });
  dialog.exec();
}

TEST_F(QtPromptsTest, ChoosesAFileToSaveTo) {
  const auto choose = [](bool accept) {
    QTimer::singleShot(0, [accept] {
      auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
      ASSERT_NE(dialog, nullptr);
      EXPECT_EQ(dialog->windowTitle(), "Save As");
      EXPECT_EQ(dialog->acceptMode(), QFileDialog::AcceptSave);
      dialog->selectFile("/nowhere-at-all.txt");
      static_cast<QDialog*>(dialog)->done(accept ? QDialog::Accepted : QDialog::Rejected);
    });
    return QtPrompts().ChooseSaveFile({"Save As"});
  };
  EXPECT_EQ(choose(true), "/nowhere-at-all.txt");
  EXPECT_EQ(choose(false), std::nullopt);
}

TEST_F(QtPromptsTest, AFileToAddToIsNotReplacedButMakingOneIsAgreed) {
  std::vector<QString> questions;
  const auto choose = [&](const std::string& file,
                          const std::vector<QMessageBox::StandardButton>& answers) {
    auto* next = new QTimer(qApp);
    QObject::connect(next, &QTimer::timeout, [&questions, answers, index = 0U]() mutable {
      QWidget* window = QApplication::activeModalWidget();
      if (auto* box = qobject_cast<QMessageBox*>(window)) {
        questions.push_back(box->text());
        if (index < answers.size()) box->button(answers[index++])->click();
      } else if (auto* dialog = qobject_cast<QFileDialog*>(window)) {
        EXPECT_TRUE(dialog->testOption(QFileDialog::DontConfirmOverwrite));
        static_cast<QDialog*>(dialog)->done(QDialog::Accepted);
      }
    });
    next->start(0);
    const auto chosen = QtPrompts().ChooseSaveFile({"Save Log File", "CSV (*.csv)", file, true});
    delete next;
    return chosen;
  };
  const std::string present = QApplication::applicationFilePath().toStdString();
  EXPECT_EQ(choose(present, {}), present);
  EXPECT_TRUE(questions.empty());
  EXPECT_EQ(choose("/nowhere.csv", {QMessageBox::No, QMessageBox::Yes}), "/nowhere.csv");
  ASSERT_EQ(questions.size(), 2U);
  EXPECT_EQ(questions[0], "/nowhere.csv\nThis file does not exist. Create the file?");
}

}  // namespace
}  // namespace wattlark
