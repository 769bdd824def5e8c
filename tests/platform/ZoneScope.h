#pragma once

#include <QByteArray>
#include <ctime>

namespace wattlark {

/// A zone of the process's own, for as long as this lives.
class ZoneScope {
 public:
  explicit ZoneScope(const char* zone) { Set(zone); }
  ~ZoneScope() {
    before_.isNull() ? qunsetenv("TZ") : qputenv("TZ", before_);
    tzset();
  }
  ZoneScope(const ZoneScope&) = delete;
  ZoneScope& operator=(const ZoneScope&) = delete;

  void Set(const char* zone) {
    qputenv("TZ", zone);
    tzset();
  }

 private:
  QByteArray before_ = qgetenv("TZ");
};

}  // namespace wattlark
