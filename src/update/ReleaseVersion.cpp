#include "update/ReleaseVersion.h"

#include <algorithm>
#include <optional>
#include <tuple>

namespace wattlark {

namespace {

constexpr std::size_t kLongestVersion = 32;
constexpr std::size_t kStagePosition = 3;
constexpr std::size_t kBuildPosition = 4;
constexpr int kLargestBuild = 999999999;
constexpr unsigned kPreReleaseBit = 16;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool IsVersionCharacter(char c) {
  return IsDigit(c) || c == '.' || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

int DigitAt(std::string_view text, std::size_t position) {
  return position < text.size() && IsDigit(text[position]) ? text[position] - '0' : 0;
}

std::optional<ReleaseStage> StageOf(char letter) {
  switch (letter) {
    case 'd':
      return ReleaseStage::Development;
    case 'a':
      return ReleaseStage::Alpha;
    case 'b':
      return ReleaseStage::Beta;
    case 'f':
      return ReleaseStage::Final;
    default:
      return std::nullopt;
  }
}

ReleaseStage ReadStage(std::string_view text) {
  std::optional<ReleaseStage> stage;
  if (text.size() > kStagePosition) stage = StageOf(text[kStagePosition]);
  if (!stage && !text.empty()) stage = StageOf(text.back());
  return stage.value_or(ReleaseStage::Release);
}

int ReadBuild(std::string_view text) {
  int build = 0;
  for (std::size_t at = kBuildPosition; at < text.size() && IsDigit(text[at]); ++at) {
    if (build > kLargestBuild / 10) return kLargestBuild;
    build = build * 10 + DigitAt(text, at);
  }
  return build;
}

}  // namespace

bool ReleaseVersion::IsPreRelease() const {
  return (static_cast<unsigned>(stage) & kPreReleaseBit) != 0;
}

bool IsVersionText(std::string_view text) {
  return text.size() >= kStagePosition && text.size() <= kLongestVersion && IsDigit(text[0]) &&
         text[1] == '.' && IsDigit(text[2]) && std::ranges::all_of(text, IsVersionCharacter);
}

ReleaseVersion ReadVersion(std::string_view text) {
  return {DigitAt(text, 0), DigitAt(text, 2), ReadBuild(text), ReadStage(text)};
}

bool IsNewerVersion(std::string_view a, std::string_view b, bool strictReleases) {
  const ReleaseVersion one = ReadVersion(a);
  if (strictReleases && one.IsPreRelease()) return false;
  const auto order = [](const ReleaseVersion& version) {
    return std::tuple(version.major, version.minor, !version.IsPreRelease(), version.build,
                      version.stage);
  };
  return order(one) > order(ReadVersion(b));
}

}  // namespace wattlark
