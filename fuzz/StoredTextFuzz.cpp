// Stored text of any form: nothing crashes, what reads is finite, and what reads is written in a
// form that reads back as the same.

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

#include "Require.h"
#include "config/StoreText.h"
#include "support/NoValue.h"
#include "support/modSeries.h"
#include "support/modText.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace wattlark;
  const std::string text(TextOf(data, size));
  RegionalSettings german = RegionalSettings::UnitedStates();
  german.decimalSeparator = ",";
  german.shortDate = "dd.MM.yyyy";
  german.longTime = "HH:mm:ss";
  for (const RegionalSettings& regional : {RegionalSettings::UnitedStates(), german}) {
    const StoreText store(regional);
    if (const auto number = store.ToDouble(text)) {
      Require(std::isfinite(*number));
      Require(store.ToDouble(store.FromDouble(*number)) == *number);
    }
    if (const auto moment = store.ToDateTime(text)) {
      Require(store.ToDateTime(store.FromDateTime(*moment)) == *moment);
    }
  }
  TextToBoolean(text);
  if (const auto whole = TextToInteger(text, -32768, 32767)) {
    Require(*whole >= -32768 && *whole <= 32767);
  }
  FoldCase(text);

  std::array<double, 60> series;
  series.fill(NoValue);
  SplitSeries(text, series);
  std::array<double, 60> again{};
  SplitSeries(JoinSeries(series), again);
  for (std::size_t i = 0; i < series.size(); ++i) {
    Require(std::isfinite(series[i]) && series[i] == again[i]);
  }
  return 0;
}
