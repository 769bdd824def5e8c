#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "acquisition/clsKillAWatt.h"

namespace wattlark {

/// The configured meters in order of loading and adding, each under the key of its address, so that
/// two meters never share one. Owns the meters. The Total is not among them.
class MeterCollection {
 public:
  /// "XBEE" and the address in decimal: XBEE5.
  static std::string Key(std::int16_t address);

  /// False, with nothing added and `meter` left with the caller, when its address is taken.
  bool Add(std::unique_ptr<clsKillAWatt>&& meter);
  /// False when that meter is not in the collection; it is destroyed otherwise.
  bool Remove(const clsKillAWatt& meter);
  /// Gives a meter another address and key; false, with nothing changed, when that is taken.
  bool ChangeAddress(clsKillAWatt& meter, std::int16_t address);

  /// The meter with that address or that name (compared without case), or null.
  clsKillAWatt* FindAddress(std::int16_t address) const;
  clsKillAWatt* FindName(const std::string& name) const;

  std::size_t Count() const { return meters_.size(); }
  bool IsEmpty() const { return meters_.empty(); }
  /// `index` from 0 in collection order.
  clsKillAWatt& operator[](std::size_t index) const { return *meters_.at(index); }
  auto begin() const { return meters_.begin(); }
  auto end() const { return meters_.end(); }

 private:
  std::vector<std::unique_ptr<clsKillAWatt>> meters_;
  std::unordered_map<std::int16_t, clsKillAWatt*> byAddress_;
};

}  // namespace wattlark
