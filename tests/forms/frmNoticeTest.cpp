#include <gtest/gtest.h>

#include <QApplication>
#include <QMainWindow>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QWindow>
#include <memory>
#include <ostream>

#include "app/forms/Notices.h"
#include "platform/qtwidgets/Theme.h"
#include "twins/RecordingDesktop.h"
#include "twins/ScriptedPrompts.h"

namespace wattlark {
namespace {

constexpr int kAtOnce = 0;
constexpr int kForEver = 1000000;  // ms; no test waits for it

struct frmNoticeTest : testing::Test {
  ~frmNoticeTest() override { delete notice; }

  void Create(int slideMilliseconds) {
    notice = new frmNotice(desktop, prompts, slideMilliseconds);
  }
  NoticeContent Content(const std::string& text = "Kitchen: Using 612.4 Watts\r\n") {
    return {.title = "Alarm!",
            .text = text,
            .clickText = "Click here for details...",
            .address = "",
            .headerColor = QColor("#ffffdc"),
            .displayMilliseconds = kForEver,
            .owner = &owner};
  }
  QString Text() { return notice->findChild<QPlainTextEdit*>("lblNoticeText")->toPlainText(); }
  QPushButton& ClickText() { return *notice->findChild<QPushButton*>("lblClickText"); }
  QTimer& Timer() { return *notice->findChild<QTimer*>("tmrScrollForm"); }
  bool IsGone() {
    return QTest::qWaitFor([this] { return notice == nullptr; });
  }
  static QRect WorkArea() { return QGuiApplication::primaryScreen()->availableGeometry(); }

  RecordingDesktop desktop;
  ScriptedPrompts prompts;
  QMainWindow owner;
  QPointer<frmNotice> notice;
};

TEST_F(frmNoticeTest, StandsInTheCornerForItsTimeAndThenDeletesItself) {
  Create(kAtOnce);
  notice->ScrollNotice(Content());
  EXPECT_TRUE(notice->isVisible());
  EXPECT_EQ(notice->geometry().bottomRight(), WorkArea().bottomRight());
  EXPECT_EQ(notice->findChild<QLabel*>("lblTitle")->text(), "Alarm!");
  EXPECT_EQ(Text(), "Kitchen: Using 612.4 Watts");
  EXPECT_TRUE(Timer().isActive());
  EXPECT_EQ(Timer().interval(), kForEver);
  NoticeContent brief = Content();
  brief.displayMilliseconds = 1;
  notice->ScrollNotice(brief);
  EXPECT_TRUE(IsGone());
}

TEST_F(frmNoticeTest, SlidesWithoutBlockingAndWithoutLeavingTheWorkArea) {
  Create(50);
  std::vector<QRect> places;
  notice->ScrollNotice(Content());
  EXPECT_LT(notice->height(), 20) << "still below";
  EXPECT_FALSE(Timer().isActive());
  ASSERT_TRUE(QTest::qWaitFor([&] {
    places.push_back(notice->geometry());
    return Timer().isActive();
  }));
  const QRect up = notice->geometry();
  EXPECT_GT(up.height(), 148);
  for (const QRect& place : places) {
    EXPECT_EQ(place.bottomRight(), WorkArea().bottomRight());
    EXPECT_EQ(place.width(), up.width());
  }
  QTest::keyClick(notice, Qt::Key_Escape);
  EXPECT_TRUE(IsGone());
}

TEST_F(frmNoticeTest, TakesTheFocusFromNobody) {
  Create(kAtOnce);
  EXPECT_TRUE(notice->testAttribute(Qt::WA_ShowWithoutActivating));
  EXPECT_FALSE(notice->testAttribute(Qt::WA_QuitOnClose));
  EXPECT_EQ(notice->windowType(), Qt::Tool);
  EXPECT_TRUE(notice->windowFlags() & Qt::FramelessWindowHint);
  EXPECT_TRUE(notice->windowFlags() & Qt::WindowStaysOnTopHint);
}

TEST_F(frmNoticeTest, ANewNoticeTakesThePlaceOfOneThatSlides) {
  Create(kForEver);
  notice->ScrollNotice(Content());
  const int height = notice->height();
  notice->ScrollNotice(Content("Kitchen: Using 612.4 Watts\r\nOffice: Using 80.0 Watts\r\n"));
  EXPECT_EQ(Text(), "Kitchen: Using 612.4 Watts\nOffice: Using 80.0 Watts");
  EXPECT_NEAR(notice->height(), height, 5) << "it goes on from where it was";
}

TEST_F(frmNoticeTest, ComesUpAgainForANewNotice) {
  Create(50);
  notice->ScrollNotice(Content());
  ASSERT_TRUE(QTest::qWaitFor([this] { return Timer().isActive(); }));
  const int height = notice->height();
  QTest::keyClick(notice, Qt::Key_Escape);
  ASSERT_TRUE(QTest::qWaitFor([&] { return notice->height() < height; }));
  notice->ScrollNotice(Content("Office: Using 80.0 Watts"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return Timer().isActive(); }));
  EXPECT_EQ(notice->height(), height);
  EXPECT_EQ(Text(), "Office: Using 80.0 Watts");
}

TEST_F(frmNoticeTest, AClickShowsTheOwner) {
  owner.showMinimized();
  Create(kAtOnce);
  notice->ScrollNotice(Content());
  QTest::mouseClick(&ClickText(), Qt::LeftButton);
  EXPECT_TRUE(owner.isVisible());
  EXPECT_FALSE(owner.isMinimized());
  EXPECT_TRUE(desktop.addresses.empty());
  EXPECT_TRUE(IsGone());
}

TEST_F(frmNoticeTest, AClickOpensTheAddressInsteadWhenThereIsOne) {
  Create(kAtOnce);
  NoticeContent content = Content();
  content.address = "https://example.org/a";
  notice->ScrollNotice(content);
  ClickText().setFocus();
  QTest::keyClick(&ClickText(), Qt::Key_Return);
  EXPECT_EQ(desktop.addresses, std::vector<std::string>{"https://example.org/a"});
  EXPECT_FALSE(owner.isVisible());
}

TEST_F(frmNoticeTest, AClickWithoutItsOwnerDoesNothing) {
  Create(kAtOnce);
  auto gone = std::make_unique<QWidget>();
  NoticeContent content = Content();
  content.owner = gone.get();
  notice->ScrollNotice(content);
  gone.reset();
  ClickText().click();
  EXPECT_TRUE(IsGone());
}

TEST_F(frmNoticeTest, HidesTheClickTextWhenThereIsNone) {
  Create(kAtOnce);
  NoticeContent content = Content();
  content.clickText = "";
  notice->ScrollNotice(content);
  EXPECT_FALSE(ClickText().isVisible());
  notice->ScrollNotice(Content());
  EXPECT_TRUE(ClickText().isVisible());
}

// 2220 twips of a fifteenth of a pixel.
TEST_F(frmNoticeTest, ClickTextNeverStandsAbove148Pixels) {
  Create(kAtOnce);
  for (const char* text :
       {"", "Kitchen: Using 612.4 Watts", "a\r\nb\r\nc\r\nd\r\ne\r\nf\r\ng\r\nh"}) {
    notice->ScrollNotice(Content(text));
    EXPECT_GE(ClickText().mapTo(notice, QPoint(0, 0)).y(), 148) << text;
  }
}

TEST_F(frmNoticeTest, HighlightsTheClickTextUnderThePointer) {
  Create(kAtOnce);
  notice->ScrollNotice(Content());
  const QColor accent = Theme::FromPalette(notice->palette()).accent;
  // Beside the text, within the label.
  const auto ground = [this] { return ClickText().grab().toImage().pixelColor(4, 14); };
  ASSERT_NE(ground(), accent);
  QEnterEvent enter({5, 5}, {5, 5}, {5, 5});
  QApplication::sendEvent(&ClickText(), &enter);
  EXPECT_EQ(ground(), accent);
  QEvent leave(QEvent::Leave);
  QApplication::sendEvent(&ClickText(), &leave);
  EXPECT_NE(ground(), accent);
}

struct LongCase {
  const char* name;
  std::string text;
};

std::ostream& operator<<(std::ostream& out, const LongCase& text) {
  return out << text.name;
}

std::string Lines(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += "Meter: Using 1.0 Watts\r\n";
  return text;
}

class LongTest : public frmNoticeTest, public testing::WithParamInterface<LongCase> {};

TEST_P(LongTest, StaysWithinTheWorkArea) {
  Create(kAtOnce);
  notice->ScrollNotice(Content(GetParam().text));
  EXPECT_TRUE(WorkArea().contains(notice->geometry()));
  EXPECT_TRUE(notice->rect().contains(ClickText().mapTo(notice, ClickText().rect().bottomRight())));
  auto& text = *notice->findChild<QPlainTextEdit*>("lblNoticeText");
  const bool scrolls = std::string(GetParam().name) == "ManyLines";
  EXPECT_TRUE(
      QTest::qWaitFor([&] { return (text.verticalScrollBar()->maximum() > 0) == scrolls; }, 500));
  EXPECT_EQ(text.focusPolicy() != Qt::NoFocus, scrolls) << "to be scrolled with keys";
}

INSTANTIATE_TEST_SUITE_P(Texts, LongTest,
                         testing::Values(LongCase{"OneWord", std::string(255, 'W')},
                                         LongCase{"TenMeters", Lines(10)},
                                         LongCase{"ManyLines", Lines(200)}),
                         [](const auto& text) { return text.param.name; });

TEST_F(frmNoticeTest, ShowsMarkUpAsText) {
  Create(kAtOnce);
  NoticeContent content = Content("<b>Kitchen</b>&amp;: Using 1.0 Watts");
  content.title = "<i>Alarm!</i>";
  notice->ScrollNotice(content);
  EXPECT_EQ(Text(), "<b>Kitchen</b>&amp;: Using 1.0 Watts");
  EXPECT_EQ(notice->findChild<QLabel*>("lblTitle")->textFormat(), Qt::PlainText);
}

TEST_F(frmNoticeTest, TitleIsReadableOnEveryHeaderColor) {
  Create(kAtOnce);
  for (const char* color : {"#ffffdc", "#000000", "#3a424a", "#808080", "#ff0000"}) {
    NoticeContent content = Content();
    content.headerColor = QColor(color);
    notice->ScrollNotice(content);
    const QPalette header = notice->findChild<QWidget*>("shpHeader")->palette();
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

TEST(NoticesTest, TwoMetersOfOneTickAreOneNotice) {
  RecordingDesktop desktop;
  ScriptedPrompts prompts;
  QWidget owner;
  {
    Notices notices(desktop, prompts);
    notices.ShowAlarm({{}, "Kitchen", "", "Kitchen: Using 612.4 Watts\r\n"}, owner);
    notices.ShowAlarm(
        {{}, "Office", "", "Kitchen: Using 612.4 Watts\r\nOffice: Using 80.0 Watts\r\n"}, owner);
    ASSERT_EQ(NoticesOnScreen().size(), 1u);
    const frmNotice& notice = *NoticesOnScreen()[0];
    EXPECT_EQ(notice.windowTitle(), "Alarm!");
    EXPECT_EQ(notice.findChild<QPlainTextEdit*>("lblNoticeText")->toPlainText(),
              "Kitchen: Using 612.4 Watts\nOffice: Using 80.0 Watts");
    EXPECT_EQ(notice.findChild<QPushButton*>("lblClickText")->text(), "Click here for details...");
    EXPECT_EQ(notice.findChild<QTimer*>("tmrScrollForm")->interval(), 7000);
    EXPECT_EQ(notice.findChild<QWidget*>("shpHeader")->palette().color(QPalette::Window),
              QGuiApplication::palette().color(QPalette::ToolTipBase));
  }
  EXPECT_TRUE(NoticesOnScreen().empty());
}

TEST(NoticesTest, ANoticeAfterTheLastOneHasGoneStays) {
  RecordingDesktop desktop;
  ScriptedPrompts prompts;
  QWidget owner;
  Notices notices(desktop, prompts);
  notices.ShowAlarm({{}, "Kitchen", "", "Kitchen: Using 612.4 Watts\r\n"}, owner);
  ASSERT_EQ(NoticesOnScreen().size(), 1u);
  const QPointer<frmNotice> first = NoticesOnScreen()[0];
  QTest::keyClick(first, Qt::Key_Escape);
  // Gone from the screen, not yet deleted.
  ASSERT_TRUE(QTest::qWaitFor([&] { return first == nullptr || first->IsGone(); }));
  notices.ShowAlarm({{}, "Office", "", "Office: Using 80.0 Watts\r\n"}, owner);
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(first, nullptr);
  EXPECT_EQ(NoticesOnScreen().size(), 1u);
}

}  // namespace
}  // namespace wattlark
