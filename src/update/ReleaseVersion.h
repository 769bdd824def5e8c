#pragma once

#include <cstdint>
#include <string_view>

namespace wattlark {

/// What a release is: a pre-release under development, alpha, beta or final, or the release itself.
/// The number is its rank.
enum class ReleaseStage : std::uint8_t {
  Development = 17,
  Alpha = 18,
  Beta = 20,
  Final = 24,
  Release = 128
};

/// A version in the parts that are compared.
struct ReleaseVersion {
  int major = 0;  ///< 0..9
  int minor = 0;  ///< 0..9
  int build = 0;  ///< 0..999999999
  ReleaseStage stage = ReleaseStage::Release;

  bool IsPreRelease() const;
};

/// Whether the text is a version: a digit, a point and a digit, and behind them letters, digits and
/// points alone, up to 32 characters in all ("2.1", "2.1b3", "2.0.4").
bool IsVersionText(std::string_view text);

/// Reads a version by its positions: the first is the major version, the third the minor one, and
/// from the fifth on stands the build number. The stage is a "d", "a", "b" or "f" at the fourth
/// position, or else as the last character. Any text has a version: what is not there counts as 0,
/// and as no stage.
ReleaseVersion ReadVersion(std::string_view text);

/// Whether version `a` is newer than `b`; with `strictReleases` no pre-release ever is. Major and
/// minor version count first. A release is newer than every pre-release of it, whatever their build
/// numbers; otherwise the higher build number is, and at equal ones the higher stage.
bool IsNewerVersion(std::string_view a, std::string_view b, bool strictReleases);

}  // namespace wattlark
