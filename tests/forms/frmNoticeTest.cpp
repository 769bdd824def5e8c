#include <QMainWindow>
#include <QPlainTextEdit>
#include <QScreen>
#include <QScrollBar>
#include <memory>

#include "app/forms/Notices.h"
#include "forms/FormChecks.h"
#include "platform/qtwidgets/Theme.h"
#include "twins/RecordingDesktop.h"
#include "twins/ScriptedPrompts.h"

namespace wattlark {
namespace {

constexpr int kAtOnce = 0;
constexpr int kForEver = 1000000;  // ms; no test waits for it
constexpr const char* kText = "Kitchen: Using 612.4 Watts\r\n";

struct frmNoticeTest : testing::Test {
  ~frmNoticeTest() override { delete notice; }

  void Show(const NoticeContent& content, int slideMilliseconds = kAtOnce) {
    if (notice == nullptr) notice = new frmNotice(desktop, prompts, slideMilliseconds);
    notice->ScrollNotice(content);
  }
  NoticeContent Content(const std::string& text = kText) {
    return {.title = "<i>Alarm!</i>",
            .text = text,
            .clickText = "Click here for details...",
            .address = "",
            .headerColor = QColor("#ffffdc"),
            .displayMilliseconds = kForEver,
            .owner = &owner};
  }
  QPlainTextEdit& TextBox() const { return Find<QPlainTextEdit>(*notice, "lblNoticeText"); }
  QPushButton& ClickText() const { return Find<QPushButton>(*notice, "lblClickText"); }
  QTimer& Timer() const { return *notice->findChild<QTimer*>("tmrScrollForm"); }
  bool IsGone() const {
    return QTest::qWaitFor([this] { return notice == nullptr; });
  }
  static QRect WorkArea() { return QGuiApplication::primaryScreen()->availableGeometry(); }

  RecordingDesktop desktop;
  ScriptedPrompts prompts;
  QMainWindow owner;
  QPointer<frmNotice> notice;
};

TEST_F(frmNoticeTest, StandsInTheCornerForItsTimeAndThenDeletesItself) {
  Show(Content("<b>Kitchen</b>&amp;: Using 612.4 Watts\r\n"));
  EXPECT_TRUE(notice->isVisible());
  EXPECT_EQ(notice->geometry().bottomRight(), WorkArea().bottomRight());
  const auto& title = Find<QLabel>(*notice, "lblTitle");
  EXPECT_EQ(title.text(), "<i>Alarm!</i>");
  EXPECT_EQ(title.textFormat(), Qt::PlainText);
  EXPECT_EQ(TextBox().toPlainText(), "<b>Kitchen</b>&amp;: Using 612.4 Watts");
  EXPECT_TRUE(Timer().isActive());
  EXPECT_EQ(Timer().interval(), kForEver);
  // It takes the focus from nobody.
  EXPECT_TRUE(notice->testAttribute(Qt::WA_ShowWithoutActivating));
  EXPECT_FALSE(notice->testAttribute(Qt::WA_QuitOnClose));
  EXPECT_EQ(notice->windowFlags() & (Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::Tool),
            Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::Tool);
  NoticeContent brief = Content();
  brief.displayMilliseconds = 1;
  Show(brief);
  EXPECT_TRUE(IsGone());
}

TEST_F(frmNoticeTest, SlidesWithoutBlockingAndWithoutLeavingTheWorkArea) {
  Show(Content(), 50);
  const int below = notice->height();
  EXPECT_LT(below, 20);
  Show(Content("Office: Using 80.0 Watts\r\n"), 50);
  EXPECT_NEAR(notice->height(), below, 5) << "a new one takes the place of one that slides";
  EXPECT_FALSE(Timer().isActive());
  ASSERT_TRUE(QTest::qWaitFor([&] {
    EXPECT_EQ(notice->geometry().bottomRight(), WorkArea().bottomRight());
    return Timer().isActive();
  }));
  const int up = notice->height();
  EXPECT_GT(up, 148);
  // It comes up again for a new notice, and goes for good otherwise.
  QTest::keyClick(notice, Qt::Key_Escape);
  ASSERT_TRUE(QTest::qWaitFor([&] { return notice->height() < up; }));
  Show(Content("Office: Using 80.0 Watts"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return Timer().isActive(); }));
  EXPECT_EQ(notice->height(), up);
  QTest::keyClick(notice, Qt::Key_Escape);
  EXPECT_TRUE(IsGone());
}

TEST_F(frmNoticeTest, AClickShowsTheOwnerOrOpensTheAddressWhenThereIsOne) {
  owner.showMinimized();
  Show(Content());
  QTest::mouseClick(&ClickText(), Qt::LeftButton);
  EXPECT_TRUE(owner.isVisible() && !owner.isMinimized());
  EXPECT_TRUE(desktop.addresses.empty());
  EXPECT_TRUE(IsGone());

  auto brief = std::make_unique<QWidget>();
  NoticeContent content = Content();
  content.owner = brief.get();
  Show(content);
  brief.reset();
  ClickText().click();
  EXPECT_TRUE(IsGone());

  owner.hide();
  content.owner = &owner;
  content.address = "https://example.org/a";
  Show(content);
  ClickText().setFocus();
  QTest::keyClick(&ClickText(), Qt::Key_Return);
  EXPECT_EQ(desktop.addresses, std::vector<std::string>{"https://example.org/a"});
  EXPECT_FALSE(owner.isVisible());
}

TEST_F(frmNoticeTest, StaysWithinTheWorkAreaAndIsReadableOnEveryColor) {
  for (const int lines : {0, 10, 200}) {
    const bool scrolls = lines == 200;
    Show(Content(QString("Meter: Using 1.0 Watts\r\n").repeated(lines).toStdString()));
    EXPECT_TRUE(WorkArea().contains(notice->geometry()));
    EXPECT_TRUE(
        notice->rect().contains(ClickText().mapTo(notice, ClickText().rect().bottomRight())));
    const QScrollBar& bar = *TextBox().verticalScrollBar();
    EXPECT_TRUE(QTest::qWaitFor([&] { return (bar.maximum() > 0) == scrolls; }, 500));
    EXPECT_EQ(TextBox().focusPolicy() != Qt::NoFocus, scrolls) << "to be scrolled with keys";
  }
  for (const char* color : {"#ffffdc", "#000000", "#808080"}) {
    NoticeContent content = Content();
    content.headerColor = QColor(color);
    Show(content);
    const QPalette header = Find(*notice, "shpHeader").palette();
    EXPECT_EQ(header.color(QPalette::Window), QColor(color));
    EXPECT_GE(ContrastRatio(header.color(QPalette::WindowText), QColor(color)), 4.5) << color;
  }
}

std::vector<frmNotice*> NoticesOnScreen() {
  std::vector<frmNotice*> found;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    auto* notice = qobject_cast<frmNotice*>(window);
    if (notice != nullptr && notice->isVisible()) found.push_back(notice);
  }
  return found;
}

TEST_F(frmNoticeTest, AlarmsShareANoticeUntilItHasGone) {
  {
    Notices notices(desktop, prompts);
    const std::string both = std::string(kText) + "Office: Using 80.0 Watts\r\n";
    notices.ShowAlarm({{}, "Kitchen", "", kText}, owner);
    notices.ShowAlarm({{}, "Office", "", both}, owner);
    ASSERT_EQ(NoticesOnScreen().size(), 1u);
    notice = NoticesOnScreen()[0];
    EXPECT_EQ(TextBox().toPlainText(), "Kitchen: Using 612.4 Watts\nOffice: Using 80.0 Watts");
    EXPECT_EQ(ClickText().text(), "Click here for details...");
    EXPECT_EQ(Timer().interval(), 7000);
    QTest::keyClick(notice, Qt::Key_Escape);
    // Gone from the screen, not yet deleted.
    ASSERT_TRUE(QTest::qWaitFor([&] { return notice == nullptr || notice->IsGone(); }));
    notices.ShowAlarm({{}, "Kitchen", "", kText}, owner);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(notice, nullptr);
    EXPECT_EQ(NoticesOnScreen().size(), 1u);
  }
  EXPECT_TRUE(NoticesOnScreen().empty());
}

}  // namespace
}  // namespace wattlark
