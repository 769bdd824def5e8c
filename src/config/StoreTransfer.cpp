#include "config/StoreTransfer.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "config/RegistryTextWriter.h"
#include "config/StoreText.h"
#include "config/modRegistry.h"
#include "support/modText.h"

namespace wattlark {

namespace {

constexpr Hive kUser = Hive::CurrentUser;
using Kind = RegistryTextEntry::Kind;

std::string OlderKeyPath() {
  return std::string(OlderSettingsKey) + ApplicationTitle;
}

/// The part of `path` below `key`, with its "\"; nothing when it lies elsewhere.
std::optional<std::string> Below(const std::string& path, const std::string& key) {
  if (path.size() < key.size() || FoldCase(path.substr(0, key.size())) != FoldCase(key)) {
    return std::nullopt;
  }
  std::string rest = path.substr(key.size());
  if (!rest.empty() && rest.front() != '\\') return std::nullopt;
  return rest;
}

/// The key and all below it, each before its subkeys.
std::vector<std::string> Tree(Registry& store, const std::string& path) {
  std::vector<std::string> tree;
  std::vector<std::string> open = {path};
  while (!open.empty()) {
    tree.push_back(std::move(open.back()));
    open.pop_back();
    const std::vector<std::string> names = store.SubKeys(kUser, tree.back());
    std::for_each(names.rbegin(), names.rend(),
                  [&](const std::string& name) { open.push_back(tree.back() + "\\" + name); });
  }
  return tree;
}

void DeleteTree(Registry& store, const std::string& path) {
  const std::vector<std::string> tree = Tree(store, path);
  std::for_each(tree.rbegin(), tree.rend(),
                [&](const std::string& key) { store.DeleteKey(kUser, key); });
}

bool Carry(const RegistryTextEntry& entry, Registry& store) {
  switch (entry.kind) {
    case Kind::Key:
      return store.CreateKey(kUser, entry.path);
    case Kind::KeyDeletion:
      DeleteTree(store, entry.path);
      return true;
    case Kind::Value:
      return store.Write(kUser, entry.path, entry.name, entry.value);
    case Kind::ValueDeletion:
      store.DeleteValue(kUser, entry.path, entry.name);
      return true;
  }
  return false;
}

using ValuePlace = std::pair<std::string, std::string>;  ///< folded path and name

ValuePlace PlaceOf(const std::string& path, const std::string& name) {
  return {FoldCase(path), FoldCase(name)};
}

struct StoredMoment {
  std::string section;
  std::string text;
};

/// The date-times of all meters and the Total.
std::map<ValuePlace, StoredMoment> Moments(Registry& store) {
  const modRegistry values(store);
  std::vector<std::string> sections = {"TotalKillAWatt"};
  for (const std::string& meter : store.SubKeys(kUser, modRegistry::AppKeyPath("", "KillAWatts"))) {
    sections.push_back("KillAWatts\\" + meter);
  }
  std::map<ValuePlace, StoredMoment> moments;
  for (const std::string& section : sections) {
    const std::string path = modRegistry::AppKeyPath("", section);
    std::vector<std::string> names;
    std::vector<std::string> texts;
    values.EnumStringValues(kUser, path, names, texts);
    for (std::size_t i = 0; i < names.size(); ++i) {
      const std::string name = FoldCase(names[i]);
      if (name != "timestamp" && !name.starts_with("peaktime")) continue;
      moments.emplace(PlaceOf(path, name), StoredMoment{section, texts[i]});
    }
  }
  return moments;
}

}  // namespace

bool WriteStoreText(Registry& copy, const RegionalSettings& regional, std::ostream& output) {
  modRegistry values(copy);
  values.MigrateLegacySettings(ApplicationTitle, false);
  if (!values.AppSectionExists("", "")) return false;
  StoreText::Load(values, regional).Save(values);
  RegistryTextWriter writer(
      output, {"Settings and statistics of Wattlark, with its passwords as they are stored.",
               "An import writes these values over those of the same name and leaves all others."});
  for (const std::string& path : Tree(copy, modRegistry::AppKeyPath("", ""))) {
    writer.WriteKey(kUser, path, copy.Values(kUser, path));
  }
  return true;
}

std::string StoreImport::Read(std::istream& input, const std::string& name) {
  std::vector<RegistryTextEntry> older;
  bool hasKey = false;
  const std::string key = modRegistry::AppKeyPath("", "");
  const std::string problem = ReadRegistryText(input, name, [&](RegistryTextEntry entry) {
    const bool isKey = entry.kind == Kind::Key || entry.kind == Kind::KeyDeletion;
    if (entry.hive == kUser && Below(entry.path, key)) {
      hasKey = hasKey || entry.kind == Kind::Key;
      entries_.push_back(std::move(entry));
    } else if (const auto section = Below(entry.path, OlderKeyPath());
               entry.hive == kUser && section) {
      if (entry.kind == Kind::KeyDeletion || entry.kind == Kind::ValueDeletion) return;
      entry.path = key + *section;
      older.push_back(std::move(entry));
    } else if (isKey) {
      ++otherKeys_;
    }
  });
  isOlder_ = !hasKey && !older.empty();
  if (isOlder_) entries_ = std::move(older);
  for (const RegistryTextEntry& entry : entries_) {
    if (entry.problem.empty()) continue;
    return name + ":" + std::to_string(entry.line) + ": " + entry.problem;
  }
  return problem;
}

std::size_t StoreImport::Values() const {
  return static_cast<std::size_t>(
      std::ranges::count(entries_, Kind::Value, &RegistryTextEntry::kind));
}

std::string StoreImport::Apply(Registry& store, const RegionalSettings& regional,
                               bool replaces) const {
  modRegistry values(store);
  const std::string key = modRegistry::AppKeyPath("", "");
  if (replaces) DeleteTree(store, key);
  const StoreText formBefore = StoreText::Load(values, regional);
  const auto before = Moments(store);
  std::set<ValuePlace> brought;
  bool bringsForm = false;
  for (const RegistryTextEntry& entry : entries_) {
    if (!Carry(entry, store)) return "The store could not be changed: " + store.ErrorText() + ".";
    if (entry.kind == Kind::Value) brought.insert(PlaceOf(entry.path, entry.name));
    bringsForm = bringsForm || Below(entry.path, key + "\\StoreFormat");
  }
  const StoreText form = StoreText::Load(values, regional);
  form.Save(values);
  for (const auto& [place, moment] : Moments(store)) {
    const auto named = [&moment = moment] {
      return "the date-time \"" + moment.text + "\" of " + moment.section;
    };
    if (!brought.contains(place)) {
      const auto old = before.find(place);
      if (old == before.end() ||
          formBefore.ToDateTime(moment.text) == form.ToDateTime(moment.text)) {
        continue;
      }
      return "It writes dates otherwise than the store, where " + named() +
             " would then be misread. Import it with --replace, or into a new profile.";
    }
    if (!bringsForm && !form.ToDateTime(moment.text)) {
      return "It does not say in which form it writes dates, and " + named() +
             " cannot be read. Give the language of the computer that it comes from (LC_ALL="
             "de_DE.UTF-8, say) and import it with --replace, or into a new profile.";
    }
  }
  return {};
}

}  // namespace wattlark
