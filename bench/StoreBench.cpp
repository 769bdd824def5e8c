#include <benchmark/benchmark.h>

#include <filesystem>

#include "BenchClock.h"
#include "app/ProfileData.h"
#include "config/modRegistry.h"
#include "platform/sqlite/OpenStore.h"

namespace wattlark::bench {
namespace {

constexpr int kMeters = 1000;

class ProfileFolder {
 public:
  ProfileFolder() : path_(std::filesystem::temp_directory_path() / "wattlark-store-bench") {
    std::filesystem::remove_all(path_);
  }
  ~ProfileFolder() { std::filesystem::remove_all(path_); }
  std::string Path() const { return path_.string(); }

 private:
  std::filesystem::path path_;
};

void AddMeters(ProfileData& profile) {
  BenchClock clock;
  for (int address = 1; address <= kMeters; ++address) {
    auto meter = std::make_unique<clsKillAWatt>();
    meter->SetName("Meter " + std::to_string(address));
    meter->SetXBeeAddress(static_cast<std::int16_t>(address));
    double watts = address;
    for (int minute = 0; minute < 100; ++minute) {
      clock.Advance(61000);
      watts = watts * 1.01 + 0.123456789;
      meter->AddReading(120.123456789, 4.1, watts, clock.now, clock.ticks);
    }
    for (int second = 0; second < 60; ++second) {
      clock.Advance(1000);
      watts = watts * 1.001;
      meter->AddReading(120.123456789, 4.1, watts, clock.now, clock.ticks);
    }
    profile.Meters().Add(std::move(meter));
  }
}

void Save(Registry& registry, ProfileData& profile) {
  modRegistry store(registry);
  registry.Begin();
  profile.SaveAll(store);
  registry.Commit();
}

void SaveAll(benchmark::State& state) {
  const ProfileFolder folder;
  const auto opening = OpenStore(folder.Path());
  const RegionalSettings regional = RegionalSettings::UnitedStates();
  ProfileData profile(regional);
  AddMeters(profile);
  for (auto _ : state) Save(*opening.registry, profile);
}
BENCHMARK(SaveAll)->Unit(benchmark::kMillisecond);

void LoadAll(benchmark::State& state) {
  const ProfileFolder folder;
  const RegionalSettings regional = RegionalSettings::UnitedStates();
  {
    const auto opening = OpenStore(folder.Path());
    ProfileData profile(regional);
    AddMeters(profile);
    Save(*opening.registry, profile);
  }
  for (auto _ : state) {
    const auto opening = OpenStore(folder.Path());
    modRegistry store(*opening.registry);
    ProfileData profile(regional);
    profile.Load(store, "wattlark.csv", BenchClock().now);
    if (profile.Meters().Count() != kMeters) state.SkipWithError("meters are missing");
  }
}
BENCHMARK(LoadAll)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace wattlark::bench
