#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <array>
#include <vector>

#include "config/MeterEdit.h"
#include "config/forms/FormControls.h"
#include "platform/Prompts.h"

namespace wattlark {

/// The properties of one meter. OK writes the entries into the meter, once all of them are good;
/// whatever else ends the dialog leaves the meter alone.
class frmEditKillAWatt : public QDialog {
  Q_OBJECT

 public:
  /// All must outlive the dialog. `meters` are those whose names and addresses are taken.
  struct Context {
    MeterCollection& meters;
    const clsKillAWatt& total;
    const RegionalSettings& regional;
    Prompts& prompts;
  };

  explicit frmEditKillAWatt(const Context& context, QWidget* parent = nullptr);

  /// Fills the dialog from a meter, which must outlive it; to be called before it is shown.
  void SetKillAWatt(clsKillAWatt& meter);
  /// True unless the last use of the dialog ended with OK.
  bool Cancelled() const { return cancelled_; }

  void reject() override;

 protected:
  void changeEvent(QEvent* event) override;

 private:
  QWidget* BuildProperties();
  QWidget* BuildAlarmZone();
  void AddRow(QGridLayout& grid, const QString& caption, QWidget* control,
              const QString& unit = {});
  void FitToFont();
  void chkAlarmActive_Click();
  void cmdOK_Click();
  MeterEdit Entries() const;
  QLineEdit* BoxOf(MeterField field) const;
  void Refuse(const MeterEditProblem& problem);
  bool IsTotal() const { return meter_ == &context_.total; }

  Context context_;
  clsKillAWatt* meter_ = nullptr;
  bool cancelled_ = true;
  std::vector<QLabel*> labels_;
  TextBox* txtName_ = nullptr;
  QLineEdit* txtXBeeAddress_ = nullptr;
  QComboBox* cboVoltage_ = nullptr;
  QComboBox* cboFrequency_ = nullptr;
  QComboBox* cboKillAWattType_ = nullptr;
  QCheckBox* chkAlarmActive_ = nullptr;
  std::array<QLineEdit*, 2> txtAlarmLimit_{};  ///< upper, lower
  QComboBox* cboAlarmDuration_ = nullptr;
  QComboBox* cboAlarmInterval_ = nullptr;
};

/// Shows the dialog over `owner` until the user ends it; whether the meter was written.
bool EditMeterProperties(const frmEditKillAWatt::Context& context, clsKillAWatt& meter,
                         const std::string& caption, QWidget* owner);

}  // namespace wattlark
