// Storing and loading of a meter: one table of values, in the order in which both directions handle
// them.

#include <array>
#include <limits>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "acquisition/clsKillAWatt.h"
#include "config/StoreText.h"
#include "config/modRegistry.h"
#include "support/modSeries.h"
#include "support/modText.h"

namespace wattlark {

namespace {

constexpr std::array kIntervalNames{"Minute", "Hour", "Day", "Week", "Month", "Year"};
constexpr std::array kPeriodNames{"Yesterday", "Today",  "ThisWeek",  "ThisMonth",
                                  "ThisYear",  "ToDate", "SinceReset"};

// The values of one section, fetched together: asking the store for each of them would be most of a
// start's time. A text that does not convert is noted and leaves the field alone.
class Reader {
 public:
  Reader(const modRegistry& store, const StoreText& text, const std::string& section,
         std::vector<UnreadableValue>* unreadable)
      : text_(text), unreadable_(unreadable) {
    std::vector<std::string> names;
    std::vector<std::string> texts;
    store.EnumStringValues(Hive::CurrentUser, modRegistry::AppKeyPath("", section), names, texts);
    for (std::size_t i = 0; i < names.size(); ++i) {
      texts_.emplace(FoldCase(names[i]), std::move(texts[i]));
    }
  }

  std::string Text(const std::string& name, const std::string& present) const {
    const auto found = texts_.find(FoldCase(name));
    return found == texts_.end() || found->second.empty() ? present : found->second;
  }

  template <typename Convert, typename Assign>
  void Value(const std::string& name, Convert convert, Assign assign) const {
    const std::string stored = Text(name, "");
    if (stored.empty()) return;
    if (const auto value = convert(stored)) {
      assign(*value);
    } else if (unreadable_ != nullptr) {
      unreadable_->push_back({name, stored});
    }
  }

  template <typename Assign>
  void Double(const std::string& name, Assign assign) const {
    Value(
        name, [this](const std::string& stored) { return text_.ToDouble(stored); }, assign);
  }

  template <typename Integer, typename Assign>
  void Whole(const std::string& name, Assign assign) const {
    Value(
        name,
        [](const std::string& stored) {
          return TextToInteger(stored, std::numeric_limits<Integer>::min(),
                               std::numeric_limits<Integer>::max());
        },
        [&assign](std::int64_t value) { assign(static_cast<Integer>(value)); });
  }

  template <typename Assign>
  void Moment(const std::string& name, Assign assign) const {
    Value(
        name, [this](const std::string& stored) { return text_.ToDateTime(stored); }, assign);
  }

 private:
  const StoreText& text_;
  std::vector<UnreadableValue>* unreadable_;
  std::unordered_map<std::string, std::string> texts_;  ///< by folded name
};

}  // namespace

bool clsKillAWatt::LoadSettings(const modRegistry& store, const StoreText& text,
                                const std::string& section,
                                std::vector<UnreadableValue>* unreadable) {
  if (!store.AppSectionExists("", section)) return false;
  const Reader reader(store, text, section, unreadable);

  name_ = reader.Text("Name", name_);
  reader.Whole<std::int16_t>("XBeeAddress", [this](auto value) { xbeeAddress_ = value; });
  reader.Value("AlarmActive", TextToBoolean, [this](bool value) { alarm_.SetAlarmActive(value); });
  reader.Double("AlarmUpperLimit", [this](double value) { alarm_.SetAlarmUpperLimit(value); });
  reader.Double("AlarmLowerLimit", [this](double value) { alarm_.SetAlarmLowerLimit(value); });
  reader.Whole<std::int32_t>("AlarmDuration",
                             [this](auto value) { alarm_.SetAlarmDuration(value); });
  reader.Whole<std::int32_t>("AlarmInterval",
                             [this](auto value) { alarm_.SetAlarmInterval(value); });
  reader.Double("NominalVoltage", [this](double value) { SetNominalVoltage(value); });
  reader.Double("NominalFrequency", [this](double value) { SetNominalFrequency(value); });
  reader.Whole<std::int16_t>("CurrentOffset", [this](auto value) { SetCurrentOffset(value); });
  reader.Double("CurrentScaler", [this](double value) { SetCurrentScaler(value); });
  reader.Double("VoltageScaler", [this](double value) { SetVoltageScaler(value); });
  SetVoltageScaler(voltageScaler_);  // a missing one is bounded by the loaded voltage as well
  reader.Whole<std::int32_t>("KillAWattType", [this](auto value) { SetKillAWattType(value); });
  reader.Moment("Timestamp", [this](DateTime value) { statistics_.SetTimestamp(value); });

  for (int i = 0; i < IntervalCount; ++i) {
    const std::string interval = kIntervalNames[static_cast<std::size_t>(i)];
    SplitSeries(reader.Text("DemandRecent" + interval, ""), statistics_.DemandRecent(i));
    SplitSeries(reader.Text("UsageRecent" + interval, ""), statistics_.UsageRecent(i));
  }
  for (int i = 0; i < PeriodCount; ++i) {
    const std::string period = kPeriodNames[static_cast<std::size_t>(i)];
    reader.Double("Usage" + period, [&](double value) { statistics_.SetUsage(i, value); });
    reader.Double("Peak" + period, [&](double value) { statistics_.SetPeak(i, value); });
    reader.Moment("PeakTime" + period, [&](DateTime value) { statistics_.SetPeakTime(i, value); });
  }
  return true;
}

bool clsKillAWatt::SaveSettings(modRegistry& store, const StoreText& text,
                                const std::string& section, SaveExtent extent) const {
  const bool leavesOutMinute =
      extent == SaveExtent::Progress &&
      store.GetAppSetting("", section, "Timestamp", "") != text.FromDateTime(Timestamp());
  bool saved = true;
  const auto save = [&](const std::string& name, const std::string& value) {
    saved = store.SaveAppSetting("", section, name, value) && saved;
  };

  save("Name", name_);
  save("XBeeAddress", StoreText::FromInteger(xbeeAddress_));
  save("AlarmActive", StoreText::FromBoolean(alarm_.AlarmActive()));
  save("AlarmUpperLimit", text.FromDouble(alarm_.AlarmUpperLimit()));
  save("AlarmLowerLimit", text.FromDouble(alarm_.AlarmLowerLimit()));
  save("AlarmDuration", StoreText::FromInteger(alarm_.AlarmDuration()));
  save("AlarmInterval", StoreText::FromInteger(alarm_.AlarmInterval()));
  save("NominalVoltage", text.FromDouble(nominalVoltage_));
  save("NominalFrequency", text.FromDouble(nominalFrequency_));
  save("CurrentOffset", StoreText::FromInteger(currentOffset_));
  save("CurrentScaler", text.FromDouble(currentScaler_));
  save("VoltageScaler", text.FromDouble(voltageScaler_));
  save("KillAWattType", StoreText::FromInteger(killAWattType_));
  save("Timestamp", text.FromDateTime(statistics_.Timestamp()));

  const MeterStatistics& statistics = statistics_;
  const auto saveRecent = [&](const char* prefix, auto series) {
    for (int i = 0; i < IntervalCount; ++i) {
      const bool isOut = leavesOutMinute && i == Minute;
      save(std::string(prefix) + kIntervalNames[static_cast<std::size_t>(i)],
           isOut ? std::string() : JoinSeries(series(i)));
    }
  };
  saveRecent("DemandRecent", [&](int i) { return statistics.DemandRecent(i); });
  saveRecent("UsageRecent", [&](int i) { return statistics.UsageRecent(i); });
  const auto savePeriods = [&](const char* prefix, auto value) {
    for (int i = 0; i < PeriodCount; ++i) {
      save(std::string(prefix) + kPeriodNames[static_cast<std::size_t>(i)], value(i));
    }
  };
  savePeriods("Usage", [&](int i) { return text.FromDouble(statistics.Usage(i)); });
  savePeriods("Peak", [&](int i) { return text.FromDouble(statistics.Peak(i)); });
  savePeriods("PeakTime", [&](int i) { return text.FromDateTime(statistics.PeakTime(i)); });
  return saved;
}

}  // namespace wattlark
