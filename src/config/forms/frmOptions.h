#pragma once

#include <QDialog>
#include <QTabWidget>
#include <functional>
#include <optional>

#include "config/OptionsActions.h"
#include "config/forms/PortDeviceList.h"

namespace wattlark {

class CSVTab;
class GeneralTab;
class GoogleDocTab;
class PachubeTab;
class PowerMeterTab;
class TwitterTab;

/// The options: shows the settings as they are when it is made; OK applies and saves what was
/// edited, whatever else ends the dialog leaves everything as it was.
class frmOptions : public QDialog {
  Q_OBJECT

 public:
  struct Context {
    OptionsTarget target;
    /// Those of `target.devices`; nothing where a port number needs no device.
    std::optional<PortDeviceList::Ports> devices;
    /// The settings are in force but the store did not take them.
    std::function<void()> onSaveFailed;
  };

  explicit frmOptions(Context context, QWidget* parent = nullptr);

 protected:
  bool event(QEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void AddTab(QWidget* tab, const QString& caption);
  void Load(const OptionsEdit& edit);
  /// What all tabs need, as far as the screen has it.
  QSize FullSize() const;
  void FitToScreen();
  void cmdOK_Click();

  Context context_;
  QTabWidget* tabOptions_;
  GeneralTab* general_;
  CSVTab* csv_;
  PachubeTab* pachube_;
  GoogleDocTab* google_;
  PowerMeterTab* powerMeter_;
  TwitterTab* twitter_;
};

}  // namespace wattlark
