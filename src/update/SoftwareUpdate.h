#pragma once

#include <functional>
#include <optional>
#include <string>

#include "config/AppSettings.h"
#include "platform/Desktop.h"
#include "platform/Prompts.h"
#include "publish/WebRequestRunner.h"
#include "update/VersionFile.h"

namespace wattlark {

class modRegistry;

/// Compares the running version with the one in the maker's version file and offers a newer one.
///
/// A check has two halves: finding out waits for the server and asks nothing; telling asks the
/// user. Whoever checks within a tick can so end the tick before the user is asked, and readings go
/// on while nobody answers. A check that fails is silent, but for a server that does not answer in
/// time.
class SoftwareUpdate {
 public:
  /// All must outlive this object. `showText` puts the progress of a check that the user asked for
  /// on the status bar, and takes it away again with an empty text.
  struct Context {
    HttpClient& versionAlert;
    EventPump& pump;
    modRegistry& store;
    AppSettings& settings;
    Prompts& prompts;
    Desktop& desktop;
    std::function<void(const std::string&)> showText;
  };

  /// `runningVersion` as "2.0".
  SoftwareUpdate(const Context& context, std::string runningVersion);

  /// Sets the time of the first check in the background: an hour from `now`.
  void StartSchedule(DateTime now) { nextCheck_ = now.PlusHours(1); }
  /// When `AutoUpdate` is on and it is later than the time of the next check: sets that an hour
  /// ahead and finds out.
  void FindWhenDue(DateTime now, const std::string& address);
  /// Finds out now. `address` is the version file's; empty for none, which only `showUpToDate` is
  /// told of. With `strictReleases` no pre-release is offered. While a check is under way it is not
  /// begun again, but counts as asked for with `showUpToDate`.
  void Find(const std::string& address, bool strictReleases, bool showUpToDate);
  /// Something was found that the user is to be told or asked. News that nobody asked for are none
  /// once `AutoUpdate` was switched off.
  bool HasNews() const { return news_ && (news_->isAskedFor || context_.settings.AutoUpdate); }
  /// Tells it and does what the user answers. True when a newer version is being downloaded: the
  /// program is to end, so that it can be replaced.
  bool Tell();

 private:
  struct News {
    enum class Kind { NoAddress, UpToDate, NewVersion, TimedOut };
    Kind kind;
    ReleaseInfo release = {};
    std::string notes = {};
    bool isAskedFor = false;

    /// Otherwise it is told only to a user who asked for the check.
    bool IsForEveryCheck() const { return kind == Kind::NewVersion || kind == Kind::TimedOut; }
  };

  std::optional<News> Check(const std::string& address, bool strictReleases);
  std::string Baseline();
  std::string FetchNotes(const std::string& address);
  WebRequestState Fetch(const std::string& address);
  std::string Filled(std::string text, const ReleaseInfo& release) const;
  bool Offer(const News& news);
  void AskWhetherToStop();

  Context context_;
  const std::string runningVersion_;
  WebRequestRunner web_;
  DateTime nextCheck_;
  std::optional<News> news_;
  bool isFinding_ = false;
  bool isTelling_ = false;
  bool showUpToDate_ = false;
};

}  // namespace wattlark
