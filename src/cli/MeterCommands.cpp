#include "cli/MeterCommands.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <ostream>
#include <utility>

#include "app/ProfileData.h"
#include "cli/MeterJson.h"
#include "cli/ProfileStore.h"
#include "cli/RunOptions.h"
#include "cli/TextTable.h"
#include "config/MeterEdit.h"
#include "platform/qt/SystemClock.h"
#include "support/modFormat.h"
#include "support/modText.h"

namespace wattlark {

namespace {

constexpr const char* kTotalSection = "TotalKillAWatt";
constexpr std::int64_t kLargestAddress = 32767;
constexpr std::int64_t kLongestTime = std::numeric_limits<std::int32_t>::max();

/// Puts what the user typed into a new meter; the first thing that does not fit is kept in words.
class NewMeterReader {
 public:
  NewMeterReader(const RegionalSettings& regional, clsKillAWatt& meter)
      : text_(regional), meter_(meter) {}

  /// Empty, or what does not fit.
  std::string Read(const NewMeter& options) {
    meter_.SetName(options.name);
    Note(MeterNameProblem(MeterCollection(), nullptr, options.name));
    if (!IsUtf8(options.name)) Note("The name is not UTF-8 text.");
    if (const auto address = Whole("XBee address", options.address, kLargestAddress)) {
      meter_.SetXBeeAddress(static_cast<std::int16_t>(*address));
    }
    if (const auto type = Choice("type", options.type, {"load", "generator"})) {
      meter_.SetKillAWattType(*type == 0 ? LoadMeter : GeneratorMeter);
    }
    if (const auto voltage = Choice("voltage", options.voltage, {"120", "240"})) {
      meter_.ChangeNominalVoltage(*voltage == 0 ? 120 : 240);
    }
    if (const auto frequency = Choice("frequency", options.frequency, {"50", "60"})) {
      meter_.SetNominalFrequency(*frequency == 0 ? 50 : 60);
    }
    ReadAlarm(options);
    return problem_;
  }

 private:
  void ReadAlarm(const NewMeter& options) {
    MeterAlarm& alarm = meter_.Alarm();
    if (const auto active = Choice("alarm", options.alarm, {"off", "on"})) {
      alarm.SetAlarmActive(*active == 1);
    }
    if (const auto watts = Number("upper alarm limit", options.alarmUpper)) {
      alarm.SetAlarmUpperLimit(*watts);
    }
    if (const auto watts = Number("lower alarm limit", options.alarmLower)) {
      alarm.SetAlarmLowerLimit(*watts);
    }
    if (const auto seconds = Whole("alarm duration", options.alarmDuration, kLongestTime)) {
      alarm.SetAlarmDuration(static_cast<std::int32_t>(*seconds));
    }
    if (const auto seconds = Whole("alarm interval", options.alarmInterval, kLongestTime)) {
      alarm.SetAlarmInterval(static_cast<std::int32_t>(*seconds));
    }
  }

  void Note(const std::string& problem) {
    if (problem_.empty()) problem_ = problem;
  }

  std::optional<std::int64_t> Whole(const std::string& what,
                                    const std::optional<std::string>& typed, std::int64_t largest) {
    if (!typed) return std::nullopt;
    const auto value = TextToInteger(*typed, 0, largest);
    if (!value) {
      Note("The " + what + " \"" + *typed + "\" is not a whole number from 0 to " +
           std::to_string(largest) + ".");
    }
    return value;
  }

  std::optional<double> Number(const std::string& what, const std::optional<std::string>& typed) {
    if (!typed) return std::nullopt;
    const auto value = text_.ToDouble(*typed);
    if (!value) Note("The " + what + " \"" + *typed + "\" is not a number.");
    return value;
  }

  /// The index of the word that was typed.
  std::optional<int> Choice(const std::string& what, const std::optional<std::string>& typed,
                            const std::pair<const char*, const char*>& words) {
    if (!typed) return std::nullopt;
    const std::string word = FoldCase(*typed);
    if (word == words.first) return 0;
    if (word == words.second) return 1;
    Note("The " + what + " is " + words.first + " or " + words.second + ", not \"" + *typed +
         "\".");
    return std::nullopt;
  }

  StoreText text_;
  clsKillAWatt& meter_;
  std::string problem_;
};

/// Saves the meters in one transaction and answers the exit status.
int SaveMeters(ProfileStore& store, ProfileData& profile, std::ostream& messages) {
  Registry& registry = store.Port();
  bool saved = registry.Begin();
  if (saved) {
    const bool hadTotal = store.Values().AppSectionExists("", kTotalSection);
    saved = profile.SaveMeters(store.Values()) && ProfileData::RequestCSVHeader(store.Values());
    // A start makes the Total of a new profile from its meters and its own time.
    if (saved && !hadTotal) saved = store.Values().DeleteAppSection("", kTotalSection);
    if (saved) {
      saved = registry.Commit();
    } else {
      registry.Rollback();
    }
  }
  if (saved) return ExitOK;
  TellUser(messages, "Nothing was changed: " + registry.ErrorText());
  return ExitRefused;
}

bool IsSkipped(const ProfileData& profile, const std::string& name) {
  return std::ranges::any_of(profile.SkippedMeters(), [&](const std::string& skipped) {
    return FoldCase(skipped) == FoldCase(name);
  });
}

/// Why the meter cannot join the profile, or an empty text.
std::string JoinProblem(const ProfileData& profile, const clsKillAWatt& meter) {
  const std::string problem = MeterNameProblem(profile.Meters(), nullptr, meter.Name());
  if (!problem.empty()) return problem;
  if (IsSkipped(profile, meter.Name())) {
    return "Another meter, which is not loaded, has the name \"" + meter.Name() + "\".";
  }
  if (profile.Meters().FindAddress(meter.XBeeAddress()) != nullptr) {
    return "A Kill-A-Watt with that XBee address is already defined";
  }
  return {};
}

std::string AlarmText(const MeterAlarm& alarm, const RegionalSettings& regional) {
  if (!alarm.AlarmActive()) return "off";
  return "outside " + FormatPower(regional, alarm.AlarmLowerLimit()) + " to " +
         FormatPower(regional, alarm.AlarmUpperLimit()) + " for " +
         std::to_string(alarm.AlarmDuration()) + " s, every " +
         std::to_string(alarm.AlarmInterval()) + " s";
}

std::string MetersText(const ProfileData& profile, const RegionalSettings& regional) {
  constexpr auto kRight = TextTable::Align::Right;
  TextTable table({{"Meter"},
                   {"Address", kRight},
                   {"Type"},
                   {"Voltage", kRight},
                   {"Frequency", kRight},
                   {"Alarm"},
                   {"To date", kRight},
                   {"Last reading"}});
  for (const auto& meter : profile.Meters()) {
    table.AddRow({meter->Name(), std::to_string(meter->XBeeAddress()),
                  meter->KillAWattType() == GeneratorMeter ? "generator" : "load",
                  FormatNumberAuto(regional, meter->NominalVoltage(), 0) + " V",
                  FormatNumberAuto(regional, meter->NominalFrequency(), 0) + " Hz",
                  AlarmText(meter->Alarm(), regional),
                  FormatEnergy(regional, meter->Statistics().Usage(ToDate)),
                  meter->Timestamp().ToIso()});
  }
  return table.Text();
}

}  // namespace

int AddMeter(const std::string& profileFolder, const NewMeter& options,
             CommandEnvironment& environment) {
  std::ostream& messages = environment.messages;
  auto meter = std::make_unique<clsKillAWatt>();
  std::string problem = NewMeterReader(environment.regional, *meter).Read(options);
  if (!problem.empty()) {
    TellUser(messages, problem);
    return ExitRefused;
  }
  MeterAlarm& alarm = meter->Alarm();
  const bool adjusted = alarm.AlarmInterval() < alarm.AlarmDuration();
  if (adjusted) alarm.SetAlarmInterval(alarm.AlarmDuration());

  ProfileStore store(profileFolder);
  if (!store.OpenForChanges(messages)) return ExitRefused;
  ProfileData profile(environment.regional);
  if (!store.Load(profile, messages)) return ExitRefused;
  problem = JoinProblem(profile, *meter);
  if (!problem.empty()) {
    TellUser(messages, problem);
    return ExitRefused;
  }
  profile.Meters().Add(std::move(meter));
  const int status = SaveMeters(store, profile, messages);
  if (status == ExitOK && adjusted) {
    TellUser(messages,
             "The alarm interval was adjusted upward so that it was at least equal to the duration "
             "above or below the limits.");
  }
  return status;
}

int RemoveMeter(const std::string& profileFolder, const std::string& name,
                CommandEnvironment& environment) {
  ProfileStore store(profileFolder);
  if (!store.OpenForChanges(environment.messages)) return ExitRefused;
  ProfileData profile(environment.regional);
  if (!store.Load(profile, environment.messages)) return ExitRefused;
  const clsKillAWatt* meter = profile.Meters().FindName(name);
  const bool removed =
      meter != nullptr ? profile.Meters().Remove(*meter) : profile.RemoveSkipped(name);
  if (!removed) {
    TellUser(environment.messages, "There is no meter with the name \"" + name + "\".");
    return ExitRefused;
  }
  return SaveMeters(store, profile, environment.messages);
}

int ListMeters(const std::string& profileFolder, bool asJson, CommandEnvironment& environment) {
  ProfileStore store(profileFolder);
  if (!store.OpenCopy(environment.messages)) return ExitRefused;
  ProfileData profile(environment.regional);
  if (!store.Load(profile, environment.messages)) return ExitRefused;
  for (const std::string& name : profile.SkippedMeters()) {
    TellUser(environment.messages,
             "The meter \"" + name + "\" is left out: another one has its XBee address.");
  }
  if (!asJson) {
    environment.output << MetersText(profile, environment.regional);
    return ExitOK;
  }
  const DateTime now = SystemClock().Now();
  nlohmann::ordered_json json = nlohmann::ordered_json::array();
  for (const auto& meter : profile.Meters()) {
    nlohmann::ordered_json entry = MeterToJson(*meter, now);
    AppendMeterSettings(*meter, entry);
    json.push_back(std::move(entry));
  }
  environment.output << JsonText(json);
  return ExitOK;
}

}  // namespace wattlark
