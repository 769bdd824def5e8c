#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "support/DateTime.h"
#include "support/RegionalSettings.h"

namespace wattlark {

class modRegistry;

/// The text form of stored values: numbers and date-times in a regional form, booleans as "True"
/// and "False".
///
/// The regional form in which a store was first written is recorded in the store (section
/// "StoreFormat") and kept from then on, so that a user who changes the system's language, or runs
/// the same profile from a session and from a service, never has 11/12 read as the 12th of
/// November. A store without that record is read and written in the user's present form.
class StoreText {
 public:
  explicit StoreText(const RegionalSettings& regional);

  /// The form recorded in the store, else `regional`.
  static StoreText Load(const modRegistry& store, const RegionalSettings& regional);
  /// Records the form in the store when none is recorded yet.
  void Save(modRegistry& store) const;

  /// Shortest text that reads back as the same double, with the form's decimal separator.
  std::string FromDouble(double value) const;
  /// Nothing when the text is no finite number. "." and "," both pass as decimal separator: no
  /// thousands separators are ever stored.
  std::optional<double> ToDouble(std::string_view text) const;
  static std::string FromInteger(std::int64_t value);
  static std::string FromBoolean(bool value) { return value ? "True" : "False"; }
  /// Short date, blank, long time, then "." and three digits when there are milliseconds; empty for
  /// "never".
  std::string FromDateTime(DateTime value) const;
  /// Nothing when the text is no date-time; "never" for an empty text and for "0".
  std::optional<DateTime> ToDateTime(std::string_view text) const;

 private:
  RegionalSettings regional_;
  std::string midnight_;  ///< the time of the date 0
};

}  // namespace wattlark
