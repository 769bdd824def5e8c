#include "app/Monitor.h"
#include "app/WebPublishers.h"
#include "publish/CSVLogger.h"

namespace wattlark {

void Monitor::AddDestinations() {
  using S = AppSettings;
  const auto add = [this](bool S::*enabled, std::int32_t S::*interval, DueUnit unit,
                          PublishTarget target) {
    schedule_.Add({enabled, interval, unit,
                   [this, target](DateTime timestamp, bool useAverage, bool quiet) {
                     return PublishTo(target, timestamp, useAverage, quiet).success;
                   },
                   DateTime()});
  };
  add(&S::LogToCSV, &S::CSVInterval, DueUnit::Seconds, PublishTarget::CSV);
  if (!web_) return;
  add(&S::LogToPachube, &S::PachubeInterval, DueUnit::Seconds, PublishTarget::Pachube);
  add(&S::LogToGoogle, &S::GoogleInterval, DueUnit::Seconds, PublishTarget::GoogleDocs);
  add(&S::LogToPowerMeter, &S::PowerMeterInterval, DueUnit::Seconds, PublishTarget::PowerMeter);
  add(&S::LogToTwitter, &S::TwitterInterval, DueUnit::Hours, PublishTarget::Twitter);
}

bool Monitor::WriteCSVLog(DateTime timestamp, bool useAverage, bool quiet) {
  return PublishTo(PublishTarget::CSV, timestamp, useAverage, quiet).success;
}

PublishResult Monitor::PublishNow(PublishTarget target, bool quiet) {
  return PublishTo(target, Now(), false, quiet);
}

PublishResult Monitor::PublishTo(PublishTarget target, DateTime timestamp, bool useAverage,
                                 bool quiet) {
  return Publish(
      [&]() -> PublishResult {
        if (target == PublishTarget::CSV) {
          return LogToCSVFile(profile_.Settings(), profile_.Meters(), regional_, timestamp,
                              useAverage);
        }
        if (!web_) return {false, "This run of the program does not use the web"};
        return web_->Run(target, timestamp, useAverage, quiet);
      },
      quiet);
}

void Monitor::PostAlarm(const clsKillAWatt& meter, DateTime now) {
  if (!web_ || !profile_.Settings().AlarmsToTwitter) return;
  Publish([&] { return web_->PostAlarm(meter, now); }, true);
}

PublishResult Monitor::Publish(const std::function<PublishResult()>& run, bool quiet) {
  const bool timerWasEnabled = timerEnabled_;
  SetUpdateTimer(false);
  PublishResult result;
  try {
    result = run();
  } catch (const std::exception& error) {
    result = {false, error.what()};
  }
  // Readings go on while a message box waits for the user.
  SetUpdateTimer(timerWasEnabled);
  if (result.success) {
    SetInfoText(result.text);
  } else if (!result.text.empty()) {
    // A message box on top of another wait would hold that one up, and with it all readings.
    ReportError(result.text, DateTime(), quiet || !timerWasEnabled);
  }
  if (!result.warning.empty()) ReportError(result.warning);
  return result;
}

}  // namespace wattlark
