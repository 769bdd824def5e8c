#include "app/WebPublishers.h"

#include "app/ProfileData.h"
#include "publish/PachubeLogger.h"
#include "publish/PowerMeterLogger.h"

namespace wattlark {

namespace {

constexpr PublishTargetName kTargetNames[] = {
    {"csv", PublishTarget::CSV},           {"pachube", PublishTarget::Pachube},
    {"google", PublishTarget::GoogleDocs}, {"powermeter", PublishTarget::PowerMeter},
    {"twitter", PublishTarget::Twitter},
};

}  // namespace

std::span<const PublishTargetName> PublishTargetNames() {
  return kTargetNames;
}

WebPublishers::WebPublishers(const WebPorts& ports, ProfileData& profile,
                             const RegionalSettings& regional, Prompts& prompts,
                             const std::function<void(const std::string&)>& showText)
    : profile_(profile),
      regional_(regional),
      localToUTC_(ports.localToUTC),
      pachube_(ports.pachube, ports.pump, "Pachube: ", showText),
      google_(ports.google, ports.pump, "Google: ", showText),
      twitter_(ports.twitter, ports.pump, "Twitter: ", showText),
      googleDocs_(
          {profile.Settings(), profile.Endpoints(), profile.Meters(), regional, google_, prompts}),
      twitterLogger_({profile.Settings(), profile.Endpoints(), regional, twitter_, prompts}) {}

PublishResult WebPublishers::Run(PublishTarget target, DateTime timestamp, bool useAverage,
                                 bool quiet) {
  const AppSettings& settings = profile_.Settings();
  switch (target) {
    case PublishTarget::CSV:
      break;
    case PublishTarget::Pachube:
      return LogToPachubeFeed(settings, profile_.Meters(), regional_, pachube_, timestamp,
                              useAverage);
    case PublishTarget::GoogleDocs:
      return googleDocs_.LogToGoogleDoc(timestamp, useAverage, quiet);
    case PublishTarget::PowerMeter:
      return LogToGooglePowerMeter(settings, profile_.Endpoints(), profile_.Total(), regional_,
                                   localToUTC_, google_, timestamp);
    case PublishTarget::Twitter:
      return twitterLogger_.PostTwitterStatus(
          timestamp, [this] { return TwitterSubject(); }, settings.TwitterMessage, quiet);
  }
  return {};
}

PublishResult WebPublishers::PostAlarm(const clsKillAWatt& meter, DateTime timestamp) {
  const bool isTotal = &meter == &profile_.Total();
  const std::int16_t address = meter.XBeeAddress();
  const auto subject = [this, isTotal, address]() -> const clsKillAWatt* {
    return isTotal ? &profile_.Total() : profile_.Meters().FindAddress(address);
  };
  return twitterLogger_.PostTwitterStatus(timestamp, subject,
                                          profile_.Settings().TwitterAlarmMessage, true);
}

const clsKillAWatt* WebPublishers::TwitterSubject() const {
  const MeterCollection& meters = profile_.Meters();
  if (meters.IsEmpty()) return nullptr;
  return meters.Count() == 1 ? &meters[0] : &profile_.Total();
}

}  // namespace wattlark
