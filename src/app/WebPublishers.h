#pragma once

#include <functional>
#include <span>
#include <string>

#include "platform/HttpClient.h"
#include "platform/Prompts.h"
#include "publish/GoogleDocLogger.h"
#include "publish/PublishResult.h"
#include "publish/TwitterLogger.h"
#include "publish/WebRequestRunner.h"

namespace wattlark {

class ProfileData;

/// Where readings are published to, in the order of the schedule.
enum class PublishTarget { CSV, Pachube, GoogleDocs, PowerMeter, Twitter };

/// A target as commands name it: "csv", "pachube", "google", "powermeter", "twitter".
struct PublishTargetName {
  const char* name;
  PublishTarget target;
};
std::span<const PublishTargetName> PublishTargetNames();

/// What the program needs of the outside to use the web. The Google client serves the spreadsheets
/// and PowerMeter; `versionAlert` the update check.
struct WebPorts {
  HttpClient& pachube;
  HttpClient& google;
  HttpClient& twitter;
  HttpClient& versionAlert;
  EventPump& pump;
  std::function<DateTime(DateTime)> localToUTC;
};

/// The four destinations on the web, over one profile.
class WebPublishers {
 public:
  /// All must outlive this object. `showText` puts the state of a request on the status bar.
  WebPublishers(const WebPorts& ports, ProfileData& profile, const RegionalSettings& regional,
                Prompts& prompts, const std::function<void(const std::string&)>& showText);

  /// Publishes once to a target other than CSV. Twitter tells of the Total, or of the one meter
  /// there is.
  PublishResult Run(PublishTarget target, DateTime timestamp, bool useAverage, bool quiet);
  /// Posts the alarm message of a meter or of the Total to Twitter, quietly. `meter` may be removed
  /// meanwhile.
  PublishResult PostAlarm(const clsKillAWatt& meter, DateTime timestamp);

 private:
  const clsKillAWatt* TwitterSubject() const;

  ProfileData& profile_;
  const RegionalSettings& regional_;
  std::function<DateTime(DateTime)> localToUTC_;
  WebRequestRunner pachube_;
  WebRequestRunner google_;
  WebRequestRunner twitter_;
  GoogleDocLogger googleDocs_;
  TwitterLogger twitterLogger_;
};

}  // namespace wattlark
