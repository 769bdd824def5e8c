#include "platform/qt/SystemClock.h"

#include <QDateTime>
#include <chrono>
#include <ctime>

namespace wattlark {

DateTime SystemClock::Now() const {
  using std::chrono::milliseconds;
  const std::int64_t utc =
      std::chrono::duration_cast<milliseconds>(std::chrono::system_clock::now().time_since_epoch())
          .count();
  const std::int64_t minute = utc / 60000;
  if (minute != offsetMinute_) {
    offsetMilliseconds_ = QDateTime::fromMSecsSinceEpoch(utc).offsetFromUtc() * std::int64_t{1000};
    offsetMinute_ = minute;
  }
  return DateTime::FromMilliseconds(utc + offsetMilliseconds_);
}

std::uint32_t SystemClock::Ticks() const {
#ifdef CLOCK_BOOTTIME
  // The steady clock stands still while the computer sleeps.
  timespec time{};
  if (clock_gettime(CLOCK_BOOTTIME, &time) == 0) {
    return static_cast<std::uint32_t>(time.tv_sec * std::uint64_t{1000} +
                                      static_cast<std::uint64_t>(time.tv_nsec) / 1000000);
  }
#endif
  return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                        std::chrono::steady_clock::now().time_since_epoch())
                                        .count());
}

}  // namespace wattlark
