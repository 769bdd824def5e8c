#include "platform/qt/SystemTimeZone.h"

#include <QDateTime>
#include <QTimeZone>
#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace wattlark {

namespace {

constexpr std::int32_t kYearsAround = 10;
constexpr int kSecondsPerMinute = 60;

std::int32_t Minutes(int seconds) {
  return static_cast<std::int32_t>(std::lround(static_cast<double>(seconds) / kSecondsPerMinute));
}

QDateTime UtcNewYear(std::int32_t year) {
  return {QDate(year, 1, 1), QTime(0, 0), Qt::UTC};
}

QString OffsetName(std::int32_t offset) {
  const std::int32_t size = std::abs(offset);
  return QStringLiteral("UTC%1%2:%3")
      .arg(QLatin1Char(offset < 0 ? '-' : '+'))
      .arg(size / 60, 2, 10, QLatin1Char('0'))
      .arg(size % 60, 2, 10, QLatin1Char('0'));
}

}  // namespace

ZoneOffsets OffsetsOf(const QTimeZone& zone, std::int32_t firstYear, std::int32_t lastYear) {
  // Two days more at each end, so that the local year of every zone is whole.
  const QDateTime from = UtcNewYear(firstYear).addDays(-2);
  const QDateTime to = UtcNewYear(lastYear + 1).addDays(2);
  ZoneOffsets offsets;
  offsets.firstOffset = Minutes(zone.offsetFromUtc(from));
  for (const QTimeZone::OffsetData& change : zone.transitions(from, to)) {
    offsets.changes.push_back({DateTime::FromMilliseconds(change.atUtc.toMSecsSinceEpoch()),
                               Minutes(change.offsetFromUtc)});
  }
  return offsets;
}

std::optional<std::string> SystemTimeZone::CurrentZone() {
  const DateTime now = clock_.Now();
  const std::int32_t year = std::clamp(now.Civil().year, kYearsAround + 1, 9998 - kYearsAround);
  const std::int32_t firstYear = year - kYearsAround;
  const std::int32_t lastYear = year + kYearsAround;

  const QDateTime local = QDateTime::currentDateTime();
  const QTimeZone zone = QTimeZone::systemTimeZone();
  const std::int32_t offset = Minutes(local.offsetFromUtc());
  QString name = OffsetName(offset);
  ZoneTexts texts{"(" + name.toStdString() + ")", name.toStdString(), name.toStdString()};
  ZoneOffsets offsets{offset, {}};
  if (zone.isValid() && zone.offsetFromUtc(local) == local.offsetFromUtc()) {
    const auto nameFor = [&](QTimeZone::TimeType type) {
      return zone.displayName(type, QTimeZone::LongName).toStdString();
    };
    name = QString::fromUtf8(zone.id());
    texts = {texts.display + " " + name.toStdString(), nameFor(QTimeZone::StandardTime),
             nameFor(QTimeZone::DaylightTime)};
    offsets = OffsetsOf(zone, firstYear, lastYear);
  }
  const std::string key = name.toStdString();
  registry_.Serve(key, texts, MakeTimeZoneRules(offsets, firstYear, lastYear, now));
  return key;
}

}  // namespace wattlark
