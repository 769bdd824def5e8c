#pragma once

#include <optional>

#include "config/OptionsEdit.h"
#include "config/forms/OptionsTab.h"
#include "config/forms/PortDeviceList.h"

namespace wattlark {

/// How the program starts, the serial port, and what electricity costs and emits.
class GeneralTab : public OptionsTab {
 public:
  /// `regional` must outlive the tab. Without `devices` a port number is all there is to choose.
  GeneralTab(const RegionalSettings& regional, const std::optional<PortDeviceList::Ports>& devices);

  void Load(const GeneralOptions& edit);
  void Store(GeneralOptions& edit) const;

 private:
  QWidget* BuildApplication();
  QWidget* BuildCommunications();
  QWidget* BuildElectricity();
  QComboBox* AddSerialList(QGridLayout& grid, int row, int column, const QString& caption,
                           QComboBox* list);
  void ShowElectricity(const std::string& mils, const std::string& co2);
  void cboServiceState_Click(int index);

  const RegionalSettings& regional_;
  std::string keptMils_;
  std::string keptCO2_;
  QCheckBox* chkShowAtLaunch_ = nullptr;
  QCheckBox* chkRunAtStartup_ = nullptr;
  QCheckBox* chkAutoUpdate_ = nullptr;
  QCheckBox* chkDemoMode_ = nullptr;
  QComboBox* cboPortNum_ = nullptr;
  PortDeviceList* cboPortDevice_ = nullptr;  ///< null where ports have no devices
  QComboBox* cboBaudRate_ = nullptr;
  QComboBox* cboParity_ = nullptr;
  QComboBox* cboDataBits_ = nullptr;
  QComboBox* cboStopBits_ = nullptr;
  QComboBox* cboServiceState_ = nullptr;
  QLineEdit* txtMils_ = nullptr;
  QLineEdit* txtCO2_ = nullptr;
};

}  // namespace wattlark
