#pragma once

#include <cstddef>
#include <cstdint>

namespace wattlark {

/// Who sends when: every meter one burst a period, one after the other.
///
/// The meters' first bursts follow each other by period / meters, but by 0.25 s at most, so that a
/// few meters are all heard at once.
class Schedule {
 public:
  struct Turn {
    std::size_t meter = 0;          ///< 0 to meterCount - 1
    std::int64_t milliseconds = 0;  ///< since the start
  };

  /// `meterCount` at least 1, `periodSeconds` above 0.
  Schedule(std::size_t meterCount, double periodSeconds);

  /// The turn that comes next.
  Turn Next() const;
  void Advance();
  /// Begins anew with the first meter's first burst at `milliseconds`.
  void Restart(std::int64_t milliseconds);

 private:
  std::size_t meterCount_;
  double period_;
  double spacing_;
  std::int64_t start_ = 0;
  std::size_t meter_ = 0;
  std::int64_t round_ = 0;
};

}  // namespace wattlark
