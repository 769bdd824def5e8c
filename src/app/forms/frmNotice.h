#pragma once

#include <QColor>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <QVariantAnimation>
#include <QWidget>
#include <string>

#include "platform/Desktop.h"
#include "platform/Prompts.h"

namespace wattlark {

struct NoticeContent {
  std::string title;
  std::string text;       ///< plain; line ends are CR LF or LF
  std::string clickText;  ///< empty for none
  std::string address;    ///< of the web; empty: a click shows the owner
  QColor headerColor;
  int displayMilliseconds = 0;  ///< between sliding up and sliding down
  QWidget* owner = nullptr;     ///< may be deleted before the notice
};

/// A notice that slides up at the bottom right of the work area, stays for a while, slides down and
/// deletes itself. It takes the focus from nobody and blocks nothing. Escape sends it away; a click
/// on its click text opens the address, or brings up the owner, and sends it away as well.
class frmNotice : public QWidget {
  Q_OBJECT

 public:
  static constexpr int SlideMilliseconds = 300;

  /// To be created with `new`. Both ports must outlive the notice.
  frmNotice(Desktop& desktop, Prompts& prompts, int slideMilliseconds = SlideMilliseconds);

  /// Shows the notice. One that is on its way already changes its content, comes up again where it
  /// was going down, and stays for the whole time from then on.
  void ScrollNotice(const NoticeContent& content);
  /// It has slid down, and is about to delete itself.
  bool IsGone() const { return isGone_; }

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void BuildHeader();
  void BuildText();
  void Fill(const NoticeContent& content);
  void ColorHeader(const QColor& color);
  void Arrange();
  void SlideTo(int height);
  void Place(int height);
  void OnSlid();
  void lblClickText_Click();

  Desktop& desktop_;
  Prompts& prompts_;
  std::string address_;
  QPointer<QWidget> owner_;
  bool isGone_ = false;
  QTimer tmrScrollForm_{this};
  QVariantAnimation slide_;  ///< of the height that is in view
  QWidget* sheet_;           ///< all that is seen; hangs from the window's upper edge
  QVBoxLayout* column_;
  QWidget* shpHeader_ = nullptr;
  QLabel* picAlarm_ = nullptr;
  QLabel* lblTitle_ = nullptr;
  QPlainTextEdit* lblNoticeText_ = nullptr;
  QPushButton* lblClickText_ = nullptr;
};

}  // namespace wattlark
