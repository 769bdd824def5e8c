#include "app/StatusViews.h"

#include <algorithm>

#include "config/modRegistry.h"
#include "support/modFormat.h"

namespace wattlark {

namespace {

constexpr std::size_t kTooltipCharacters = 63;
constexpr const char* kIdleImage = "KILLAWATT";

std::string PortMessage(const ProfileData& profile) {
  return "Unable to communicate on COM" + std::to_string(profile.Settings().PortNum) + ":";
}

// Cuts at characters, not bytes, so that no half of one is left.
std::string CutTooltip(const std::string& utf8) {
  std::size_t characters = 0;
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const bool continues = (static_cast<unsigned char>(utf8[i]) & 0xC0) == 0x80;
    if (!continues && ++characters > kTooltipCharacters) return utf8.substr(0, i);
  }
  return utf8;
}

std::string LoadImage(const clsKillAWatt& meter) {
  const double load = meter.PeakFraction(60);
  if (!HasValue(load)) return kIdleImage;
  return kIdleImage + std::to_string(static_cast<int>(std::clamp(load / 0.2, 0.0, 4.0)));
}

}  // namespace

std::string MainAreaMessage(const ProfileData& profile, bool isFlowing) {
  if (!isFlowing) return PortMessage(profile) + "\r\nDouble click to modify settings...";
  if (profile.Meters().IsEmpty()) {
    return "No Kill-A-Watts have been added\r\nDouble click to add...";
  }
  return "";
}

TrayView TrayIconView(const ProfileData& profile, const RegionalSettings& regional, bool isFlowing,
                      DateTime now) {
  const std::string title = std::string(ApplicationTitle) + ": ";
  const MeterCollection& meters = profile.Meters();
  if (!isFlowing) return {CutTooltip(title + PortMessage(profile)), kIdleImage};
  if (meters.IsEmpty()) return {title + "No Kill-A-Watts have been added", kIdleImage};
  if (std::ranges::none_of(meters, [now](const auto& meter) { return meter->IsReceiving(now); })) {
    return {title + "No data is being received", kIdleImage};
  }
  const clsKillAWatt& meter = meters.Count() > 1 ? profile.Total() : meters[0];
  const double usage = meter.Statistics().Usage(Today);
  const double cost = HasValue(usage) ? usage * profile.Settings().Mils / 1000 : NoValue;
  return {CutTooltip("Current Power: " + FormatPower(regional, meter.ShownWatts()) +
                     "\r\nToday: " + FormatEnergy(regional, usage) + " (" +
                     FormatCurrencyAuto(regional, cost) + ")"),
          LoadImage(meter)};
}

std::string AlarmNoticeLine(const clsKillAWatt& meter, const RegionalSettings& regional) {
  return meter.Name() + ": Using " + FormatPower(regional, meter.ShownWatts(), 1, UnitForm::Long);
}

}  // namespace wattlark
