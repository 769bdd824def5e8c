#include "support/RegionalSettings.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>

#include "support/DatePattern.h"
#include "support/modText.h"

namespace wattlark {

namespace {

void AppendNumber(std::string& text, int value, std::size_t width) {
  std::array<char, 12> digits;
  const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  const auto length = static_cast<std::size_t>(end - digits.data());
  if (length < width) text.append(width - length, '0');
  text.append(digits.data(), length);
}

void AppendPart(std::string& text, const PatternPart& part, const RegionalSettings& regional,
                const CivilTime& civil, int dayOfWeek) {
  const auto month = static_cast<std::size_t>(civil.month - 1);
  const auto weekDay = static_cast<std::size_t>(dayOfWeek);
  switch (part.field) {
    case PatternField::Literal:
      text += part.literal;
      break;
    case PatternField::Year:
      AppendNumber(text, civil.year, part.width);
      break;
    case PatternField::MonthName:
      text += regional.monthNames[month];
      break;
    case PatternField::ShortMonthName:
      text += regional.shortMonthNames[month];
      break;
    case PatternField::Month:
      AppendNumber(text, civil.month, part.width);
      break;
    case PatternField::DayName:
      text += regional.dayNames[weekDay];
      break;
    case PatternField::ShortDayName:
      text += regional.shortDayNames[weekDay];
      break;
    case PatternField::Day:
      AppendNumber(text, civil.day, part.width);
      break;
    case PatternField::Hour:
      AppendNumber(text, civil.hour, part.width);
      break;
    case PatternField::HalfDayHour:
      AppendNumber(text, civil.hour % 12 == 0 ? 12 : civil.hour % 12, part.width);
      break;
    case PatternField::Minute:
      AppendNumber(text, civil.minute, part.width);
      break;
    case PatternField::Second:
      AppendNumber(text, civil.second, part.width);
      break;
    case PatternField::HalfDay:
      text += civil.hour < 12 ? regional.amText : regional.pmText;
      break;
  }
}

constexpr std::array<std::string_view, 2> kNoBreakBlanks = {"\u00A0", "\u202F"};

/// Text made comparable: small letters, and one kind of blank, because systems change theirs
/// between versions (a no-break blank before AM in newer ones).
std::string Comparable(std::string_view text) {
  const std::string folded = FoldCase(text);
  std::string_view rest = folded;
  std::string comparable;
  while (!rest.empty()) {
    const auto isNext = [rest](std::string_view blank) { return rest.starts_with(blank); };
    const auto blank = std::find_if(kNoBreakBlanks.begin(), kNoBreakBlanks.end(), isNext);
    const bool isBlank = blank != kNoBreakBlanks.end();
    comparable += isBlank ? ' ' : rest.front();
    rest.remove_prefix(isBlank ? blank->size() : 1);
  }
  return comparable;
}

/// Reads a text by a pattern and collects what its fields say.
class PatternReader {
 public:
  PatternReader(const RegionalSettings& regional, std::string_view text)
      : regional_(regional), folded_(Comparable(text)), rest_(folded_) {
    const std::size_t first = rest_.find_first_not_of(kWhiteSpace);
    const std::size_t last = rest_.find_last_not_of(kWhiteSpace);
    rest_ = first == std::string_view::npos ? std::string_view()
                                            : rest_.substr(first, last - first + 1);
  }

  bool AtEnd() const { return rest_.empty(); }

  bool Read(std::string_view pattern) {
    while (!pattern.empty()) {
      if (!ReadPart(TakePatternPart(pattern))) return false;
    }
    return true;
  }

  /// The moment read; nothing when a part of the date is missing or contradicts another.
  std::optional<DateTime> Result() const {
    if (!year_ || !month_ || !day_) return std::nullopt;
    CivilTime civil;
    civil.year = *year_;
    civil.month = *month_;
    civil.day = *day_;
    civil.hour = hour_ ? *hour_ : halfDayHour_.value_or(0) % 12 + (isAfternoon_ ? 12 : 0);
    civil.minute = minute_.value_or(0);
    civil.second = second_.value_or(0);
    const std::optional<DateTime> moment = DateTime::FromCivil(civil);
    if (moment && dayOfWeek_ && moment->DayOfWeek() != *dayOfWeek_) return std::nullopt;
    return moment;
  }

 private:
  static constexpr std::string_view kWhiteSpace = " \t\r\n\v\f";

  bool ReadPart(const PatternPart& part) {
    switch (part.field) {
      case PatternField::Literal:
        return ReadLiteral(Comparable(part.literal));
      case PatternField::Year:
        return ReadNumber(4, 4, year_);
      case PatternField::MonthName:
        return ReadName(regional_.monthNames, 1, month_);
      case PatternField::ShortMonthName:
        return ReadName(regional_.shortMonthNames, 1, month_);
      case PatternField::Month:
        return ReadNumber(1, 2, month_);
      case PatternField::DayName:
        return ReadName(regional_.dayNames, 0, dayOfWeek_);
      case PatternField::ShortDayName:
        return ReadName(regional_.shortDayNames, 0, dayOfWeek_);
      case PatternField::Day:
        return ReadNumber(1, 2, day_);
      case PatternField::Hour:
        return ReadNumber(1, 2, hour_);
      case PatternField::HalfDayHour:
        return ReadNumber(1, 2, halfDayHour_) && *halfDayHour_ >= 1 && *halfDayHour_ <= 12;
      case PatternField::Minute:
        return ReadNumber(1, 2, minute_);
      case PatternField::Second:
        return ReadNumber(1, 2, second_);
      case PatternField::HalfDay:
        return ReadHalfDay();
    }
    return false;
  }

  bool ReadLiteral(std::string_view literal) {
    if (rest_.starts_with(literal)) {
      rest_.remove_prefix(literal.size());
      return true;
    }
    // The blanks that a pattern ends with went with those around the text.
    if (!literal.starts_with(rest_)) return false;
    literal.remove_prefix(rest_.size());
    rest_ = {};
    return literal.find_first_not_of(kWhiteSpace) == std::string_view::npos;
  }

  static bool Store(std::optional<int>& field, int value) {
    if (field && *field != value) return false;
    field = value;
    return true;
  }

  bool ReadNumber(std::size_t leastDigits, std::size_t mostDigits, std::optional<int>& field) {
    int value = 0;
    std::size_t count = 0;
    for (; count < mostDigits && count < rest_.size(); ++count) {
      if (rest_[count] < '0' || rest_[count] > '9') break;
      value = value * 10 + (rest_[count] - '0');
    }
    rest_.remove_prefix(count);
    return count >= leastDigits && Store(field, value);
  }

  /// Reads the longest of `names` that the text goes on with.
  bool ReadName(std::span<const std::string> names, int firstValue, std::optional<int>& field) {
    std::size_t longest = 0;
    int value = 0;
    for (std::size_t i = 0; i < names.size(); ++i) {
      const std::string name = Comparable(names[i]);
      if (name.size() > longest && rest_.starts_with(name)) {
        longest = name.size();
        value = firstValue + static_cast<int>(i);
      }
    }
    rest_.remove_prefix(longest);
    return longest > 0 && Store(field, value);
  }

  bool ReadHalfDay() {
    const std::string am = Comparable(regional_.amText);
    const std::string pm = Comparable(regional_.pmText);
    const bool isAm = rest_.starts_with(am);
    const bool isPm = rest_.starts_with(pm);
    if (!isAm && !isPm) return false;
    // One may begin with the other, or be empty.
    isAfternoon_ = isPm && (!isAm || pm.size() > am.size());
    rest_.remove_prefix(isAfternoon_ ? pm.size() : am.size());
    return true;
  }

  const RegionalSettings& regional_;
  std::string folded_;
  std::string_view rest_;
  std::optional<int> year_;
  std::optional<int> month_;
  std::optional<int> day_;
  std::optional<int> dayOfWeek_;
  std::optional<int> hour_;
  std::optional<int> halfDayHour_;
  std::optional<int> minute_;
  std::optional<int> second_;
  bool isAfternoon_ = false;
};

}  // namespace

RegionalSettings RegionalSettings::UnitedStates() {
  RegionalSettings regional;
  regional.dayNames = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                       "Thursday", "Friday", "Saturday"};
  regional.shortDayNames = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  regional.monthNames = {"January", "February", "March",     "April",   "May",      "June",
                         "July",    "August",   "September", "October", "November", "December"};
  regional.shortMonthNames = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                              "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  return regional;
}

std::string FormatDateTime(const RegionalSettings& regional, DateTime moment,
                           std::string_view pattern) {
  std::string text;
  if (moment.IsNever()) return text;
  const CivilTime civil = moment.Civil();
  const int dayOfWeek = moment.DayOfWeek();
  while (!pattern.empty()) AppendPart(text, TakePatternPart(pattern), regional, civil, dayOfWeek);
  return text;
}

std::string FormatShortDate(const RegionalSettings& regional, DateTime moment) {
  return FormatDateTime(regional, moment, regional.shortDate);
}

std::string FormatLongTime(const RegionalSettings& regional, DateTime moment) {
  return FormatDateTime(regional, moment, regional.longTime);
}

std::string FormatDateAndTime(const RegionalSettings& regional, DateTime moment) {
  if (moment.IsNever()) return {};
  return FormatShortDate(regional, moment) + ' ' + FormatLongTime(regional, moment);
}

std::optional<DateTime> ParseDateAndTime(const RegionalSettings& regional, std::string_view text) {
  PatternReader reader(regional, text);
  if (!reader.Read(regional.shortDate)) return std::nullopt;
  if (!reader.AtEnd() && !(reader.Read(" ") && reader.Read(regional.longTime) && reader.AtEnd())) {
    return std::nullopt;
  }
  return reader.Result();
}

}  // namespace wattlark
