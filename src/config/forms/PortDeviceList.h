#pragma once

#include <QComboBox>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "config/PortDevices.h"
#include "config/forms/FieldNote.h"

namespace wattlark {

/// The device that a COM number means: a list of the serial devices that are there, into which
/// another path can be typed. Its note says why the device cannot be opened. Changes are kept for
/// every number until they are asked for.
class PortDeviceList : public QComboBox {
 public:
  struct Ports {
    const PortDevices& devices;
    /// The devices that are there now, with their product names.
    std::function<std::vector<SerialDevice>()> listDevices;
    /// Why a device cannot be opened; empty when it can.
    std::function<std::string(const std::string& path)> deviceProblem;
  };

  explicit PortDeviceList(Ports ports);

  /// To be put where there is room for it.
  FieldNote* Note() { return note_; }
  /// Shows the device of that number; one below 1 has none.
  void ShowPort(int portNumber);
  /// The paths that the user has changed or chosen from the list, by port number.
  std::map<int, std::string> Changed() const;

  void showPopup() override;

 private:
  void FillList();
  void NoteEdit();
  void Check();
  std::string Entered() const;

  Ports ports_;
  FieldNote* note_;
  int portNumber_ = -1;  ///< none was shown yet
  std::map<int, std::string> shown_;
  std::map<int, std::string> entered_;
  std::set<int> chosen_;
};

}  // namespace wattlark
