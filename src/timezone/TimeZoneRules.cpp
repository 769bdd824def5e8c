#include "timezone/TimeZoneRules.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

namespace wattlark {

namespace {

/// A part of a local year with one offset.
struct Piece {
  DateTime start;  ///< as a rule's date
  std::int32_t offset = 0;
  std::int64_t length = 0;  ///< milliseconds
};
using Year = std::vector<Piece>;

/// How well a year can be written with a given offset for all years.
struct Fit {
  std::optional<std::size_t> span;  ///< the piece that becomes daylight time
  bool holdsNow = false;
  std::int64_t right = 0;  ///< milliseconds of the year that convert rightly

  friend bool operator<(const Fit& a, const Fit& b) {
    return std::pair(a.holdsNow, a.right) < std::pair(b.holdsNow, b.right);
  }
};

DateTime NewYear(std::int32_t year) {
  return DateTime::FromCivil({.year = year, .month = 1, .day = 1}).value_or(DateTime());
}

DateTime RuleDate(const OffsetChange& change, std::int32_t offsetBefore) {
  const DateTime date = change.utc.PlusMinutes(offsetBefore);
  return change.offset > offsetBefore ? date.PlusSeconds(1) : date;
}

Year PiecesOf(const ZoneOffsets& zone, std::int32_t year) {
  const DateTime yearStart = NewYear(year);
  const DateTime yearEnd = NewYear(year + 1);
  Year pieces;
  DateTime start = yearStart;
  std::int32_t offset = zone.firstOffset;
  const auto add = [&](DateTime end) {
    const DateTime from = std::max(start, yearStart);
    const DateTime to = std::min(end, yearEnd);
    if (from >= to) return;
    if (pieces.empty()) {
      pieces.push_back({yearStart, offset, yearStart.Milliseconds()});
    } else if (pieces.back().offset != offset) {
      pieces.push_back({from, offset, from.Milliseconds()});
    }
  };
  for (const OffsetChange& change : zone.changes) {
    add(change.utc.PlusMinutes(offset));
    start = RuleDate(change, offset);
    offset = change.offset;
  }
  add(yearEnd);
  if (pieces.empty()) pieces.push_back({yearStart, offset});
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    const DateTime end = i + 1 < pieces.size() ? pieces[i + 1].start : yearEnd;
    pieces[i].length = end.Milliseconds() - pieces[i].start.Milliseconds();
  }
  return pieces;
}

std::optional<std::size_t> PieceAt(const Year& year, DateTime now) {
  std::optional<std::size_t> found;
  for (std::size_t i = 0; i < year.size() && year[i].start <= now; ++i) found = i;
  return found;
}

Fit BestFit(const Year& year, std::int32_t offset, std::optional<std::size_t> present) {
  Fit none;
  none.holdsNow = !present || year[*present].offset == offset;
  for (const Piece& piece : year) {
    if (piece.offset == offset) none.right += piece.length;
  }
  Fit best = none;
  for (std::size_t i = 0; i < year.size(); ++i) {
    if (year[i].offset == offset) continue;
    const Fit fit{i, none.holdsNow || i == present, none.right + year[i].length};
    if (best < fit) best = fit;
  }
  return best;
}

clsSystemTime AbsoluteDate(DateTime moment) {
  const CivilTime civil = moment.Civil();
  clsSystemTime date;
  date.wYear = static_cast<std::uint16_t>(civil.year);
  date.wMonth = static_cast<std::uint16_t>(civil.month);
  date.wDayOfWeek = static_cast<std::uint16_t>(moment.DayOfWeek());
  date.wDay = static_cast<std::uint16_t>(civil.day);
  date.wHour = static_cast<std::uint16_t>(civil.hour);
  date.wMinute = static_cast<std::uint16_t>(civil.minute);
  date.wSecond = static_cast<std::uint16_t>(civil.second);
  return date;
}

clsTimeZoneInformation RuleOf(const Year& year, DateTime yearEnd, std::int32_t offset,
                              const Fit& fit) {
  clsTimeZoneInformation rule;
  rule.Bias = -offset;
  if (!fit.span) return rule;
  const Piece& span = year[*fit.span];
  rule.DaylightBias = offset - span.offset;
  rule.DaylightDate = AbsoluteDate(span.start);
  // Behind the new year, so that the tolerance does not reach into the last second.
  const DateTime end =
      *fit.span + 1 < year.size() ? year[*fit.span + 1].start : yearEnd.PlusSeconds(1);
  rule.StandardDate = AbsoluteDate(end);
  return rule;
}

}  // namespace

TimeZoneRules MakeTimeZoneRules(const ZoneOffsets& zone, std::int32_t firstYear,
                                std::int32_t lastYear, DateTime now) {
  std::vector<Year> years;
  for (std::int32_t year = firstYear; year <= lastYear; ++year) {
    years.push_back(PiecesOf(zone, year));
  }
  const std::int32_t presentYear = std::clamp(now.Civil().year, firstYear, lastYear);
  const auto presentIndex = static_cast<std::size_t>(presentYear - firstYear);
  const Year& present = years[presentIndex];
  const std::optional<std::size_t> presentPiece = PieceAt(present, now);

  std::vector<Fit> fits;
  std::int32_t offset = 0;
  std::int64_t rightInAll = 0;
  for (const Piece& candidate : present) {
    std::vector<Fit> candidateFits;
    std::int64_t right = 0;
    for (const Year& year : years) {
      candidateFits.push_back(
          BestFit(year, candidate.offset, &year == &present ? presentPiece : std::nullopt));
      right += candidateFits.back().right;
    }
    const bool better = fits.empty() || fits[presentIndex] < candidateFits[presentIndex] ||
                        (!(candidateFits[presentIndex] < fits[presentIndex]) && right > rightInAll);
    if (!better) continue;
    fits = std::move(candidateFits);
    offset = candidate.offset;
    rightInAll = right;
  }

  TimeZoneRules rules;
  rules.firstYear = firstYear;
  for (std::size_t i = 0; i < years.size(); ++i) {
    const DateTime yearEnd = NewYear(firstYear + static_cast<std::int32_t>(i) + 1);
    rules.years.push_back(RuleOf(years[i], yearEnd, offset, fits[i]));
  }
  // Without a date in the standard rule no year would have daylight time.
  rules.standard = rules.years[presentIndex];
  for (const clsTimeZoneInformation& rule : rules.years) {
    if (rules.standard.DaylightDate.wMonth == 0) rules.standard = rule;
  }
  return rules;
}

}  // namespace wattlark
