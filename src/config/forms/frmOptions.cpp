#include "config/forms/frmOptions.h"

#include <QEvent>
#include <QScreen>
#include <QScrollArea>
#include <QTabBar>
#include <QVBoxLayout>
#include <utility>

#include "config/forms/CSVTab.h"
#include "config/forms/GeneralTab.h"
#include "config/forms/GoogleDocTab.h"
#include "config/forms/PachubeTab.h"
#include "config/forms/PowerMeterTab.h"
#include "config/forms/TwitterTab.h"

namespace wattlark {

namespace {

// As large as its tab needs to be, but no larger than the dialog can be on the screen: with a very
// large font one scrolls.
class TabScroll : public QScrollArea {
 public:
  explicit TabScroll(QWidget* tab) {
    setWidgetResizable(true);
    setFrameShape(NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidget(tab);
    tab->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
  }

  QSize sizeHint() const override {
    QSize hint = widget()->sizeHint();
    const QLayout* rows = widget()->layout();
    // A scroll bar that is there goes only when the narrower rows beside it have room.
    const int width = isVisible() ? viewport()->width() : hint.width();
    if (rows->hasHeightForWidth()) hint.setHeight(rows->totalHeightForWidth(width));
    return hint;
  }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (watched == widget() && event->type() == QEvent::LayoutRequest) updateGeometry();
    return QScrollArea::eventFilter(watched, event);
  }
};

}  // namespace

frmOptions::frmOptions(Context context, QWidget* parent)
    : QDialog(parent),
      context_(std::move(context)),
      tabOptions_(Named(new QTabWidget, "tabOptions")),
      general_(new GeneralTab(context_.target.regional, context_.devices)),
      csv_(new CSVTab(context_.target.prompts)),
      pachube_(new PachubeTab),
      google_(new GoogleDocTab),
      powerMeter_(new PowerMeterTab(context_.target.prompts)),
      twitter_(new TwitterTab) {
  setObjectName("frmOptions");
  setWindowTitle("Options");
  AddTab(general_, "General");
  AddTab(csv_, "CSV Log File");
  AddTab(pachube_, "Pachube");
  AddTab(google_, "Google Doc");
  AddTab(powerMeter_, "Google PowerMeter");
  AddTab(twitter_, "Twitter");
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(DialogMargin, DialogMargin, DialogMargin, DialogMargin);
  column->setSpacing(DialogMargin);
  column->addWidget(tabOptions_);
  column->addWidget(MakeOKCancel(*this, [this] { cmdOK_Click(); }));
  Load(MakeOptionsEdit(context_.target.settings, context_.target.regional));
  FitHeights(*this);
}

void frmOptions::AddTab(QWidget* tab, const QString& caption) {
  tabOptions_->addTab(new TabScroll(tab), caption);
}

void frmOptions::Load(const OptionsEdit& edit) {
  general_->Load(edit.general);
  csv_->Load(edit.csv);
  pachube_->Load(edit.pachube);
  google_->Load(edit.google);
  powerMeter_->Load(edit.powerMeter);
  twitter_->Load(edit.twitter);
}

QSize frmOptions::FullSize() const {
  const QSize room = screen()->availableSize() - QSize(2 * DialogMargin, 4 * DialogMargin);
  // The tab strip scrolls where it must, and asks for no room then.
  const int strip = tabOptions_->tabBar()->sizeHint().width() + 3 * DialogMargin;
  return sizeHint().expandedTo({strip, 0}).boundedTo(room);
}

void frmOptions::FitToScreen() {
  for (QWidget* child : findChildren<QWidget*>()) child->ensurePolished();
  layout()->activate();
  resize(FullSize());
}

bool frmOptions::event(QEvent* event) {
  const bool isTaken = QDialog::event(event);
  // Room for a note that has come up.
  if (event->type() == QEvent::LayoutRequest && isVisible()) {
    resize(size().expandedTo(FullSize()));
  }
  return isTaken;
}

void frmOptions::showEvent(QShowEvent* event) {
  FitToScreen();
  QDialog::showEvent(event);
}

void frmOptions::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() != QEvent::FontChange && event->type() != QEvent::StyleChange) return;
  FitHeights(*this);
  if (isVisible()) FitToScreen();
}

void frmOptions::cmdOK_Click() {
  OptionsEdit edit;
  general_->Store(edit.general);
  csv_->Store(edit.csv);
  pachube_->Store(edit.pachube);
  google_->Store(edit.google);
  powerMeter_->Store(edit.powerMeter);
  twitter_->Store(edit.twitter);
  if (!ApplyOptionsEdit(edit, context_.target)) context_.onSaveFailed();
  accept();
}

}  // namespace wattlark
