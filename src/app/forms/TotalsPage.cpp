#include "app/forms/TotalsPage.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/TotalsGridView.h"
#include "app/Units.h"
#include "app/forms/PageFrame.h"
#include "app/forms/SelectorGroup.h"
#include "app/forms/TotalsGrid.h"
#include "platform/qtwidgets/Icons.h"
#include "platform/qtwidgets/Theme.h"

namespace wattlark {

namespace {

constexpr int kButtonHeight = 28;

}  // namespace

TotalsPage::TotalsPage(Monitor& monitor, MeterSelection& selection, Prompts& prompts,
                       QWidget* parent)
    : QWidget(parent),
      monitor_(monitor),
      selection_(selection),
      prompts_(prompts),
      elaTotalUnit_(SelectorGroup::Units("elaTotalUnit", this)),
      flxTotals_(new TotalsGrid(this)),
      elaReset_(new QPushButton("Reset…", this)) {
  setObjectName("TotalsPage");
  BuildLayout();
  elaTotalUnit_->Show(monitor_.Profile().Settings().TotalUnit);
  connect(elaTotalUnit_, &SelectorGroup::Chosen, this, [this](int unit) {
    monitor_.Profile().Settings().TotalUnit = unit;
    Refresh();
  });
  connect(elaReset_, &QPushButton::clicked, this, [this] { Reset(); });
}

void TotalsPage::BuildLayout() {
  elaReset_->setObjectName("elaReset");
  elaReset_->setAccessibleName("Reset");
  elaReset_->setMinimumHeight(kButtonHeight);
  ShowResetIcon();
  auto* foot = new QHBoxLayout;
  foot->addStretch(1);
  foot->addWidget(elaReset_);
  QVBoxLayout* column = PageColumn(*this);
  column->addWidget(elaTotalUnit_);
  column->addWidget(flxTotals_, 1);
  column->addLayout(foot);
}

void TotalsPage::ShowResetIcon() {
  const Theme theme = Theme::FromPalette(palette());
  elaReset_->setIcon(TintedIcon("reset", {theme.text, theme.text, theme.hairline}));
}

void TotalsPage::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) ShowResetIcon();
}

void TotalsPage::Refresh() {
  const clsKillAWatt* meter = selection_.SelectedKillAWatt(false);
  if (meter == nullptr) return;
  flxTotals_->SetView(MakeTotalsGridView(*meter, monitor_.Profile().Settings(), monitor_.Regional(),
                                         monitor_.Now()));
}

void TotalsPage::Reset() {
  if (selection_.SelectedKillAWatt(false) == nullptr) return;
  const bool isPower = TotalUnit() == PowerUnit;
  const PromptAnswer answer = prompts_.Ask(
      {isPower ? "Are you sure you want to reset the peak demand?"
               : "Are you sure you want to reset the usage?",
       ApplicationTitle, PromptIcon::Exclamation, PromptButtons::YesNo, PromptAnswer::No});
  // The meter may have gone while the question stood open.
  clsKillAWatt* meter = selection_.SelectedKillAWatt(false);
  if (answer != PromptAnswer::Yes || meter == nullptr) return;
  if (isPower) {
    meter->Statistics().ResetPeak();
  } else {
    meter->Statistics().ResetUsage();
  }
  Refresh();
}

int TotalsPage::TotalUnit() const {
  return elaTotalUnit_->Selected();
}

void TotalsPage::SetTotalUnit(int unit) {
  elaTotalUnit_->Select(unit);
}

}  // namespace wattlark
