#include "cli/StoreCommands.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <sstream>
#include <system_error>
#include <vector>

#include "app/ProfileData.h"
#include "cli/CommandText.h"
#include "cli/DefaultFiles.h"
#include "cli/ProfileStore.h"
#include "cli/RunOptions.h"
#include "config/StoreTransfer.h"
#include "platform/linux/PrivateFile.h"
#include "platform/sqlite/StoreFile.h"
#include "platform/sqlite/StoreSnapshot.h"

namespace wattlark {

namespace {

namespace fs = std::filesystem;

constexpr const char* kStandardStream = "-";

int Refuse(const std::string& reason, CommandEnvironment& environment,
           ExitStatus status = ExitRefused) {
  TellUser(environment.messages, reason);
  return status;
}

std::string Counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

/// Why the file must not or cannot be written, as a sentence; empty when nothing is known against
/// it.
std::string TargetProblem(const std::string& file, const std::string& profileFolder,
                          bool replaces) {
  std::error_code ignored;
  const fs::path target = fs::weakly_canonical(fs::absolute(file, ignored), ignored);
  const fs::path store = fs::weakly_canonical(StoreFile(profileFolder), ignored);
  const std::string name = target.filename();
  if (target.parent_path() == store.parent_path() &&
      (name.starts_with(store.filename().string()) || name == "lock")) {
    return "\"" + file + "\" is a name that the profile itself uses.";
  }
  const PrivateFile written(file);
  if (const std::string problem = written.Problem(true); !problem.empty()) return problem + ".";
  const std::string problem = written.Problem(replaces);
  return problem.empty() ? problem : problem + ": --force replaces it.";
}

std::string WriteWhole(const std::string& file, bool replaces, std::string_view bytes) {
  PrivateFile target(file);
  std::string problem = target.Create();
  if (problem.empty()) problem = target.Write(bytes);
  if (problem.empty()) problem = target.Keep(replaces);
  return problem.empty() ? problem : problem + ".";
}

std::string ReadImport(const std::string& file, std::istream& standardInput, StoreImport& import) {
  if (file == kStandardStream) return import.Read(standardInput, "standard input");
  errno = 0;
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return file + ": " + std::generic_category().message(errno != 0 ? errno : EIO);
  return import.Read(stream, file);
}

std::vector<std::string> MeterNames(ProfileStore& store) {
  return store.Port().SubKeys(Hive::CurrentUser, modRegistry::AppKeyPath("", "KillAWatts"));
}

/// Within a transaction: changes the store and gathers what the user is to know. Answers why it
/// cannot be done, or an empty text.
std::string Apply(const StoreImport& import, bool replaces, ProfileStore& store,
                  const RegionalSettings& regional, std::vector<std::string>& remarks) {
  const std::vector<std::string> metersBefore = MeterNames(store);
  if (std::string problem = import.Apply(store.Port(), regional, replaces); !problem.empty()) {
    return problem;
  }
  // The columns of a log that has been written are those of its meters.
  if (!metersBefore.empty() && MeterNames(store) != metersBefore) {
    ProfileData::RequestCSVHeader(store.Values());
  }
  ProfileData profile(regional);
  profile.Load(store.Values(), DefaultCSVFilename(store.Folder()), DateTime());
  remarks = profile.Problems();
  for (const std::string& name : profile.SkippedMeters()) {
    remarks.push_back("The meter \"" + name + "\" is left out: another one has its XBee address.");
  }
  const std::string& log = profile.Settings().CSVFilename;
  if (!fs::path(log).is_absolute()) {
    remarks.push_back("The CSV log \"" + log + "\" is no file of this computer: choose one with " +
                      ProfileCommand("setting set CSVFilename PATH", store.Folder()));
  }
  return {};
}

/// The whole of it or nothing.
std::string Change(const StoreImport& import, bool replaces, ProfileStore& store,
                   const RegionalSettings& regional, std::vector<std::string>& remarks) {
  Registry& registry = store.Port();
  if (!registry.Begin()) return registry.ErrorText() + ".";
  std::string problem = Apply(import, replaces, store, regional, remarks);
  if (problem.empty() && !registry.ErrorText().empty()) problem = registry.ErrorText() + ".";
  if (!problem.empty()) {
    registry.Rollback();
    return problem;
  }
  return registry.Commit() ? std::string() : registry.ErrorText() + ".";
}

}  // namespace

int ExportStore(const std::string& profileFolder, const std::string& file, bool replaces,
                CommandEnvironment& environment) {
  const bool toOutput = file == kStandardStream;
  std::string problem = toOutput ? std::string() : TargetProblem(file, profileFolder, replaces);
  if (!problem.empty()) return Refuse(problem, environment);
  ProfileStore store(profileFolder);
  if (!store.OpenCopy(environment.messages)) return ExitRefused;
  std::ostringstream text;
  if (!WriteStoreText(store.Port(), environment.regional, text)) {
    return Refuse("The profile \"" + profileFolder + "\" has nothing to export.", environment);
  }
  if (toOutput) {
    environment.output << text.view();
    return ExitOK;
  }
  problem = WriteWhole(file, replaces, text.view());
  return problem.empty() ? ExitOK : Refuse(problem, environment);
}

int ImportStore(const std::string& profileFolder, const std::string& file, bool replaces,
                CommandEnvironment& environment) {
  StoreImport import;
  std::string problem = ReadImport(file, environment.input, import);
  if (!problem.empty()) return Refuse(problem, environment, ExitBadInput);
  if (import.IsEmpty()) {
    return Refuse("Nothing was changed: the file holds no settings of Wattlark, only " +
                      Counted(import.OtherKeys(), "key") + " of other programs.",
                  environment);
  }
  std::vector<std::string> remarks;
  ProfileStore store(profileFolder);
  std::error_code ignored;
  if (!fs::exists(StoreFile(profileFolder), ignored)) {
    // A profile is not made for what is refused.
    if (!store.OpenCopy(environment.messages)) return ExitRefused;
    problem = Change(import, replaces, store, environment.regional, remarks);
  }
  if (problem.empty()) {
    if (!store.OpenForChanges(environment.messages)) return ExitRefused;
    problem = Change(import, replaces, store, environment.regional, remarks);
  }
  if (!problem.empty()) return Refuse("Nothing was changed. " + problem, environment);
  for (const std::string& remark : remarks) TellUser(environment.messages, remark);
  if (import.OtherKeys() != 0) {
    TellUser(environment.messages,
             Counted(import.OtherKeys(), "key") + " of other programs left out.");
  }
  environment.output << Counted(import.Values(), "value") << " imported"
                     << (import.IsFromOlderLocation() ? " from an older release" : "") << "\n";
  return ExitOK;
}

int BackUpStore(const std::string& profileFolder, const std::string& file, bool replaces,
                CommandEnvironment& environment) {
  std::string problem = TargetProblem(file, profileFolder, replaces);
  StoreSnapshot snapshot;
  if (problem.empty()) problem = snapshot.Take(StoreFile(profileFolder));
  if (problem.empty()) problem = snapshot.Write(file, replaces);
  return problem.empty() ? ExitOK : Refuse(problem, environment);
}

int RestoreStore(const std::string& profileFolder, const std::string& file,
                 CommandEnvironment& environment) {
  std::error_code ignored;
  const std::string store = StoreFile(profileFolder);
  StoreSnapshot snapshot;
  std::string problem = fs::equivalent(file, store, ignored)
                            ? "\"" + file + "\" is the store of the profile itself."
                            : snapshot.Take(file);
  if (!problem.empty()) return Refuse("Nothing was changed. " + problem, environment);
  ProfileLock lock(profileFolder);
  if (!LockForChanges(lock, profileFolder, environment.messages)) return ExitRefused;
  std::string aside;
  problem = snapshot.Restore(profileFolder, aside);
  if (!problem.empty()) return Refuse("Nothing was changed. " + problem, environment);
  if (!aside.empty())
    TellUser(environment.messages, "The store before is kept as \"" + aside + "\".");
  return ExitOK;
}

}  // namespace wattlark
