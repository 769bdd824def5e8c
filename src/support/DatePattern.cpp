#include "support/DatePattern.h"

#include <algorithm>
#include <array>

namespace wattlark {

namespace {

struct FieldLetters {
  std::string_view letters;
  PatternField field;
};

// Longer runs of a letter stand before the shorter ones that they start with.
constexpr std::array kFields = {
    FieldLetters{"yyyy", PatternField::Year},
    FieldLetters{"MMMM", PatternField::MonthName},
    FieldLetters{"MMM", PatternField::ShortMonthName},
    FieldLetters{"MM", PatternField::Month},
    FieldLetters{"M", PatternField::Month},
    FieldLetters{"dddd", PatternField::DayName},
    FieldLetters{"ddd", PatternField::ShortDayName},
    FieldLetters{"dd", PatternField::Day},
    FieldLetters{"d", PatternField::Day},
    FieldLetters{"HH", PatternField::Hour},
    FieldLetters{"H", PatternField::Hour},
    FieldLetters{"hh", PatternField::HalfDayHour},
    FieldLetters{"h", PatternField::HalfDayHour},
    FieldLetters{"mm", PatternField::Minute},
    FieldLetters{"ss", PatternField::Second},
    FieldLetters{"AP", PatternField::HalfDay},
};

const FieldLetters* FindField(std::string_view pattern) {
  const auto found = std::find_if(kFields.begin(), kFields.end(), [&](const FieldLetters& field) {
    return pattern.starts_with(field.letters);
  });
  return found == kFields.end() ? nullptr : &*found;
}

}  // namespace

PatternPart TakePatternPart(std::string_view& pattern) {
  PatternPart part;
  if (const FieldLetters* field = FindField(pattern)) {
    part.field = field->field;
    part.width = field->letters.size();
    pattern.remove_prefix(part.width);
    return part;
  }
  bool isQuoted = false;
  while (!pattern.empty() && (isQuoted || FindField(pattern) == nullptr)) {
    std::size_t taken = 1;
    if (pattern.starts_with("''")) {
      part.literal += '\'';
      taken = 2;
    } else if (pattern.front() == '\'') {
      isQuoted = !isQuoted;
    } else {
      part.literal += pattern.front();
    }
    pattern.remove_prefix(taken);
  }
  return part;
}

}  // namespace wattlark
