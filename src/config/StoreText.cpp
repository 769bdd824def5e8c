#include "config/StoreText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "config/modRegistry.h"
#include "support/modText.h"

namespace wattlark {

namespace {

constexpr const char* kSection = "StoreFormat";

struct TextRow {
  const char* name;
  std::string RegionalSettings::*field;
};

constexpr TextRow kTexts[] = {
    {"DecimalSeparator", &RegionalSettings::decimalSeparator},
    {"ShortDate", &RegionalSettings::shortDate},
    {"LongTime", &RegionalSettings::longTime},
    {"AMText", &RegionalSettings::amText},
    {"PMText", &RegionalSettings::pmText},
};

struct NameListRow {
  const char* name;
  std::span<std::string> names;
};

std::array<NameListRow, 4> NameLists(RegionalSettings& form) {
  return {{{"DayNames", form.dayNames},
           {"ShortDayNames", form.shortDayNames},
           {"MonthNames", form.monthNames},
           {"ShortMonthNames", form.shortMonthNames}}};
}

std::string JoinNames(std::span<const std::string> names) {
  std::string text;
  for (const std::string& name : names) text += (&name == names.data() ? "" : "|") + name;
  return text;
}

/// The form in which the store was written; nothing when none is recorded.
std::optional<RegionalSettings> RecordedForm(const modRegistry& store) {
  if (!store.AppSectionExists("", kSection)) return std::nullopt;
  RegionalSettings form;
  for (const TextRow& row : kTexts) {
    form.*row.field = store.GetAppSetting("", kSection, row.name, form.*row.field);
  }
  for (const NameListRow& row : NameLists(form)) {
    const std::string text = store.GetAppSetting("", kSection, row.name, "");
    const std::vector<std::string_view> parts = Split(text, '|');
    if (parts.size() == row.names.size()) std::copy(parts.begin(), parts.end(), row.names.begin());
  }
  return form;
}

/// Years, months, days, hours and halves of the day that a form could confuse or leave out.
bool KeepsDateTimes(const StoreText& text) {
  for (const char* iso : {"2031-02-03T00:04:05", "2031-11-23T12:34:56.007", "1999-12-31T23:59:59",
                          "2031-03-02T01:00:00"}) {
    const DateTime moment = DateTime::FromIso(iso).value_or(DateTime());
    if (text.ToDateTime(text.FromDateTime(moment)) != moment) return false;
  }
  return true;
}

RegionalSettings NeutralForm() {
  RegionalSettings form;
  form.shortDate = "yyyy-MM-dd";
  form.longTime = "HH:mm:ss";
  return form;
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

}  // namespace

StoreText::StoreText(const RegionalSettings& regional)
    : regional_(regional), midnight_(FormatLongTime(regional, DateTime::FromMilliseconds(0))) {}

StoreText StoreText::Load(const modRegistry& store, const RegionalSettings& regional) {
  const StoreText text(RecordedForm(store).value_or(regional));
  // A form that does not read back what it writes would lose every date-time at the next start.
  return KeepsDateTimes(text) ? text : StoreText(NeutralForm());
}

void StoreText::Save(modRegistry& store) const {
  if (store.AppSectionExists("", kSection)) return;
  for (const TextRow& row : kTexts) {
    store.SaveAppSetting("", kSection, row.name, regional_.*row.field);
  }
  RegionalSettings form = regional_;
  for (const NameListRow& row : NameLists(form)) {
    store.SaveAppSetting("", kSection, row.name, JoinNames(row.names));
  }
}

std::string StoreText::FromDouble(double value) const {
  std::string text = DoubleToText(value);
  if (const std::size_t point = text.find('.'); point != std::string::npos) {
    text.replace(point, 1, regional_.decimalSeparator);
  }
  return text;
}

std::optional<double> StoreText::ToDouble(std::string_view text) const {
  const std::string& separator = regional_.decimalSeparator;
  const std::size_t position = separator.empty() ? std::string_view::npos : text.find(separator);
  if (position == std::string_view::npos) return TextToDouble(text);
  return TextToDouble(std::string(text).replace(position, separator.size(), "."));
}

std::string StoreText::FromInteger(std::int64_t value) {
  return std::to_string(value);
}

std::string StoreText::FromDateTime(DateTime value) const {
  if (value.IsNever()) return {};
  std::string text = FormatDateAndTime(regional_, value);
  if (const int milliseconds = value.Civil().millisecond; milliseconds != 0) {
    const std::string digits = std::to_string(1000 + milliseconds);
    text += "." + digits.substr(1);
  }
  return text;
}

std::optional<DateTime> StoreText::ToDateTime(std::string_view text) const {
  text = Trim(text);
  if (text.empty() || text == "0") return DateTime();
  // The date 0 of older stores is written as its time alone.
  if (text == midnight_) return DateTime();
  if (text.size() > 4 && text[text.size() - 4] == '.' &&
      std::all_of(text.end() - 3, text.end(), IsDigit)) {
    const std::string_view digits = text.substr(text.size() - 3);
    const auto whole = ParseDateAndTime(regional_, text.substr(0, text.size() - 4));
    if (whole) return whole->PlusMilliseconds(*TextToInteger(digits, 0, 999));
  }
  return ParseDateAndTime(regional_, text);
}

}  // namespace wattlark
