#pragma once

#include <optional>
#include <span>
#include <string>

#include "acquisition/MeterCollection.h"
#include "config/ListEntries.h"
#include "support/RegionalSettings.h"

namespace wattlark {

std::span<const ListEntry> VoltageEntries();
std::span<const ListEntry> FrequencyEntries();
std::span<const ListEntry> KillAWattTypeEntries();
std::span<const ListEntry> AlarmDurationEntries();
std::span<const ListEntry> AlarmIntervalEntries();

/// Whether a meter of that name can be stored: not empty, at most 255 bytes, without "\" or NUL.
bool IsMeterKeyName(const std::string& name);
/// Why a user may not give a meter that name, or an empty text: empty, with "\", longer than a
/// stored key may be, or another meter's. `meter` is the one that would take it, null for a new
/// one.
std::string MeterNameProblem(const MeterCollection& meters, const clsKillAWatt* meter,
                             const std::string& name);

/// The contents of the meter dialog. The lists hold the index of the selected entry, or -1.
struct MeterEdit {
  std::string name;
  std::string xbeeAddress;
  int voltage = -1;
  int frequency = -1;
  int killAWattType = -1;
  bool alarmActive = false;
  std::string upperLimit;  ///< watts, as the user writes numbers
  std::string lowerLimit;
  int alarmDuration = -1;
  int alarmInterval = -1;
};

enum class MeterField { Name, XBeeAddress, UpperLimit, LowerLimit };

struct MeterEditProblem {
  MeterField field;
  std::string text;            ///< names the field and says what is expected
  bool isDuplicateID = false;  ///< the address is another meter's
};

MeterEdit MakeMeterEdit(const clsKillAWatt& meter, const RegionalSettings& regional);
/// Why the entries cannot be taken, the first field in tab order; nothing when they can. `meter` is
/// the one being edited; it may be in `meters` or new.
std::optional<MeterEditProblem> CheckMeterEdit(const MeterEdit& edit, const MeterCollection& meters,
                                               const clsKillAWatt& meter,
                                               const RegionalSettings& regional);
/// Writes entries that passed the check into the meter, in the dialog's order; a list without a
/// selection writes 0, but leaves voltage and frequency alone. A changed voltage scales the voltage
/// calibration; a changed address re-keys a meter of the collection. True when the alarm interval
/// was raised to the duration.
bool ApplyMeterEdit(const MeterEdit& edit, MeterCollection& meters, clsKillAWatt& meter,
                    const RegionalSettings& regional);
/// Whether the key filter of the limit boxes lets a typed character through: Backspace, "+", "-",
/// ".", digits, and what separates decimals in the region.
bool IsLimitCharacter(char32_t character, const RegionalSettings& regional);

}  // namespace wattlark
