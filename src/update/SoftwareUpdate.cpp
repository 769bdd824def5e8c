#include "update/SoftwareUpdate.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "app/HelpActions.h"
#include "config/modRegistry.h"
#include "publish/PublishResult.h"
#include "support/FlagScope.h"
#include "update/ReleaseVersion.h"

namespace wattlark {

namespace {

constexpr const char* kSection = "Settings";
constexpr const char* kSkipVersion = "SkipVersion";

constexpr const char* kTitle = "A new version of App.ProductName is available!";
constexpr const char* kMessage =
    "App.ProductName App.ReleaseVersion is now available - you have App.CurrentVersion. Would you "
    "like to download the new version now?";

void ReplaceAll(std::string& text, const std::string& placeholder, const std::string& value) {
  for (std::size_t at = text.find(placeholder); at != std::string::npos;
       at = text.find(placeholder, at + value.size())) {
    text.replace(at, placeholder.size(), value);
  }
}

}  // namespace

SoftwareUpdate::SoftwareUpdate(const Context& context, std::string runningVersion)
    : context_(context),
      runningVersion_(std::move(runningVersion)),
      web_(context.versionAlert, context.pump,
           "Software Update: ", [this](const std::string& text) {
             if (showUpToDate_) context_.showText(text);
           }) {}

void SoftwareUpdate::FindWhenDue(DateTime now, const std::string& address) {
  // A clock that was set back must not put the next check off for as long.
  nextCheck_ = std::min(nextCheck_, now.PlusHours(1));
  if (!context_.settings.AutoUpdate || now <= nextCheck_) return;
  nextCheck_ = now.PlusHours(1);
  Find(address, false, false);
}

void SoftwareUpdate::Find(const std::string& address, bool strictReleases, bool showUpToDate) {
  if (isTelling_) return;
  if (showUpToDate) showUpToDate_ = true;
  if (isFinding_) return;
  {
    const FlagScope finding(isFinding_);
    try {
      news_ = Check(address, strictReleases);
    } catch (const std::exception&) {
      news_.reset();
    }
  }
  const bool isAskedFor = std::exchange(showUpToDate_, false);
  if (news_) news_->isAskedFor = isAskedFor;
  if (isAskedFor) {
    context_.showText("");
  } else if (news_ && !news_->IsForEveryCheck()) {
    news_.reset();
  }
}

std::optional<SoftwareUpdate::News> SoftwareUpdate::Check(const std::string& address,
                                                          bool strictReleases) {
  if (address.empty()) return News{News::Kind::NoAddress};
  const WebRequestState file = Fetch(address);
  if (file.ResponseCode == HttpTimedOut) return News{News::Kind::TimedOut};
  if (file.ResponseCode != 0) return std::nullopt;
  const std::optional<ReleaseInfo> release = ReadVersionFile(file.Response);
  if (!release) return std::nullopt;
  if (!IsNewerVersion(release->version, Baseline(), strictReleases)) {
    return News{News::Kind::UpToDate};
  }
  return News{News::Kind::NewVersion, *release, FetchNotes(release->notesAddress)};
}

// What a release has to be newer than: a version that the user skipped counts as had, until the
// running one has overtaken it.
std::string SoftwareUpdate::Baseline() {
  const std::string skipped =
      context_.store.GetAppSetting("", kSection, kSkipVersion, runningVersion_);
  if (!IsNewerVersion(runningVersion_, skipped, false)) return skipped;
  context_.store.DeleteAppSetting("", kSection, kSkipVersion);
  return runningVersion_;
}

// A release is offered without its notes rather than not at all.
std::string SoftwareUpdate::FetchNotes(const std::string& address) {
  if (address.empty()) return {};
  try {
    const WebRequestState notes = Fetch(address);
    return notes.ResponseCode != 0 || SaysNotFound(notes.Response) ? "" : notes.Response;
  } catch (const PublishStopped&) {
    throw;
  } catch (const std::exception&) {
    return {};
  }
}

WebRequestState SoftwareUpdate::Fetch(const std::string& address) {
  return web_.ExecuteAndWait({address, "GET"});
}

bool SoftwareUpdate::Tell() {
  if (!HasNews() || isFinding_ || isTelling_) return false;
  const News news = *std::exchange(news_, std::nullopt);
  const FlagScope telling(isTelling_);
  switch (news.kind) {
    case News::Kind::NoAddress:
      return OpenURL("", context_.desktop, context_.prompts);
    case News::Kind::UpToDate:
      context_.prompts.Ask({std::string(ApplicationTitle) + " " + runningVersion_ +
                                " is currently the newest version available",
                            "You're up to date!", PromptIcon::Information, PromptButtons::OK,
                            PromptAnswer::OK});
      return false;
    case News::Kind::NewVersion:
      return Offer(news);
    case News::Kind::TimedOut:
      AskWhetherToStop();
      return false;
  }
  return false;
}

bool SoftwareUpdate::Offer(const News& news) {
  const ReleaseInfo& release = news.release;
  switch (context_.prompts.OfferUpdate({Filled(kTitle, release), Filled(kMessage, release),
                                        news.notes, release.version, release.downloadAddress})) {
    case UpdateAnswer::Download:
      // Ending the program for a download that did not start would help nobody.
      return OpenURL(release.downloadAddress, context_.desktop, context_.prompts);
    case UpdateAnswer::SkipThisVersion:
      if (!context_.store.SaveAppSetting("", kSection, kSkipVersion, release.version)) {
        context_.prompts.Ask({"The version to skip could not be saved.", ApplicationTitle,
                              PromptIcon::Exclamation, PromptButtons::OK, PromptAnswer::OK});
      }
      break;
    case UpdateAnswer::RemindLater:
      break;
  }
  return false;
}

std::string SoftwareUpdate::Filled(std::string text, const ReleaseInfo& release) const {
  ReplaceAll(text, "App.ProductName", ApplicationTitle);
  ReplaceAll(text, "App.CompanyName", CompanyName);
  ReplaceAll(text, "App.CurrentVersion", runningVersion_);
  ReplaceAll(text, "App.ReleaseVersion", release.version);
  return text;
}

void SoftwareUpdate::AskWhetherToStop() {
  const PromptAnswer answer = context_.prompts.Ask(
      {"Unable to contact version control server. Would you like to stop checking for updates?",
       ApplicationTitle, PromptIcon::Exclamation, PromptButtons::YesNo, PromptAnswer::No});
  context_.settings.AutoUpdate = answer != PromptAnswer::Yes;
}

}  // namespace wattlark
