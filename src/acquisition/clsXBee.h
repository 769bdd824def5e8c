#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <utility>
#include <vector>

#include "platform/Clock.h"
#include "support/DateTime.h"

namespace wattlark {

/// Cuts the byte stream of an XBee in API mode (without escaping) into frames and decodes I/O
/// sample frames (identifier 0x83: 16-bit source address and I/O data).
///
/// On the wire: 0x7E, two bytes length N, N bytes of frame data, one checksum byte; every two-byte
/// field is big-endian and held in a signed 16-bit number, so a field with a high byte from 0x80 on
/// cannot be represented and fails the decoding.
///
/// A frame may be split over any number of reads. Bytes whose checksum is wrong were no frame: they
/// complete nothing, and the bytes behind their delimiter are searched again, so that an intact
/// frame behind a damaged one, or inside a length that lied, is not lost. A delimiter found by that
/// second search whose frame is not all there yet keeps nothing waiting: the frames behind it are
/// taken as they come, and the first intact one ends its claim.
/// Neither does one whose length is above that of every I/O sample frame: a stray delimiter would
/// silence a single meter for minutes. No input makes a byte cost more than a few steps; intact
/// frames are looked at once.
///
/// A length field of which the count would overflow (above 0x7FFB) ends the read: the rest of its
/// bytes is dropped. When the delimiter before it was found in the second search, it is no
/// delimiter and the search goes on behind it.
class clsXBee {
 public:
  static constexpr std::uint8_t IOSampleIdentifier = 0x83;
  static constexpr int AnalogChannels = 6;
  static constexpr int DigitalLines = 9;
  static constexpr std::int16_t NotSampled = -1;  ///< an analog sample that is not enabled
  static constexpr int LargestFrame = 0x7FFB;     ///< bytes of frame data
  /// Bytes of frame data with 255 samples of all lines.
  static constexpr int LargestSampleFrame = 8 + 255 * (2 + 2 * AnalogChannels);

  /// `clock` stamps the frames and must outlive the decoder.
  explicit clsXBee(const Clock& clock) : clock_(clock) {}

  /// Feeds received bytes. False when a length field ended the read before any frame was completed
  /// in it.
  bool ParseBytes(std::span<const std::uint8_t> bytes);

  /// At least one frame was completed in the last `ParseBytes`.
  bool FrameReceived() const { return frameReceived_; }
  /// The last completed frame was an I/O sample frame and decoded cleanly.
  bool SampleDecoded() const { return sampleDecoded_; }

  std::int32_t ApiIdentifier() const { return apiIdentifier_; }
  DateTime FrameTime() const { return frameTime_; }
  std::uint32_t FrameTicks() const { return frameTicks_; }
  std::int16_t SourceAddress() const { return sourceAddress_; }
  std::int16_t RSSI() const { return rssi_; }  ///< received signal strength, -dBm
  bool OptionBit0() const { return optionBit0_; }
  bool OptionBit1() const { return optionBit1_; }
  std::int16_t SampleCount() const { return sampleCount_; }

  /// One ADC reading: `sample` 1..SampleCount, `channel` 1..6 for A0..A5; `NotSampled` where the
  /// channel is not enabled or its reading did not decode. Throws std::out_of_range.
  std::int16_t AnalogSample(int sample, int channel) const;
  /// Whether `line` (1..9 for D0..D8) is high; a line that is not enabled holds a value other than
  /// 0 and reads true. Throws std::out_of_range.
  bool DigitalSample(int sample, int line) const;
  /// Copies the first readings of one channel, at most `SampleCount`, to `readings`. Throws
  /// std::out_of_range for another channel.
  void CopyChannel(int channel, std::span<std::int16_t> readings) const;

  std::uint64_t CompletedFrames() const { return completedFrames_; }
  std::uint64_t DecodedFrames() const { return decodedFrames_; }  ///< I/O sample frames

 private:
  static constexpr int MaximumSamples = 255;

  enum class Candidate { Waiting, False, Overflow, Complete };

  /// Judges the bytes from a delimiter on by their length field. `searched`: the delimiter was
  /// covered by a candidate that failed before.
  static Candidate Judge(std::span<const std::uint8_t> bytes, bool searched);
  bool ParsePending();
  /// Judges the waiting candidate that completes first, when it does by `end` at the latest.
  bool JudgeParked(std::size_t end);
  /// Takes the bytes from `start` to `end` as a frame, or notes that they were none.
  void TakeFrame(std::size_t start, std::size_t end, bool searched);
  std::uint8_t PendingSum(std::size_t from, std::size_t to);
  void DropParsedBytes();
  void ProcessFrame(std::span<const std::uint8_t> frame);
  bool DecodeIOSample(std::span<const std::uint8_t> frame);
  /// Where the word of a mask bit stands in the sample table, 0 its first sample; nothing when its
  /// line is not enabled.
  std::optional<int> Column(int maskBit) const;
  /// The word of a column in a sample (from 1), or `missing` when it did not decode.
  std::int16_t TableWord(int sample, std::optional<int> column, std::int16_t missing) const;

  const Clock& clock_;

  // Bytes that do not make a frame yet. Delimiters before `scan_` have been judged. Those before
  // `searchedEnd_` were covered by a candidate that failed, those before `claimedEnd_`, as long as
  // any is parked, by one that is too long to be waited for; of these the ones whose frame is not
  // all there yet are parked, by end and start. `pendingSums_[k]` is the 8-bit sum of the first k
  // bytes, computed only as far as second searches need it.
  std::vector<std::uint8_t> pending_;
  std::vector<std::uint8_t> pendingSums_;
  std::set<std::pair<std::size_t, std::size_t>> parked_;
  std::size_t scan_ = 0;
  std::size_t searchedEnd_ = 0;
  std::size_t claimedEnd_ = 0;
  std::size_t dropAt_ = 0;  ///< size of `pending_` at which its judged bytes are dropped

  bool frameReceived_ = false;
  bool sampleDecoded_ = false;
  bool optionBit0_ = false;
  bool optionBit1_ = false;
  std::int32_t apiIdentifier_ = 0;
  DateTime frameTime_;
  std::uint32_t frameTicks_ = 0;
  std::int16_t sourceAddress_ = 0;
  std::int16_t rssi_ = 0;
  std::int16_t sampleCount_ = 0;
  std::int16_t mask_ = 0;
  // The sample table as sent: for each sample the digital word, if any, and the enabled channels.
  std::array<std::int16_t, std::size_t{MaximumSamples} * (AnalogChannels + 1)> table_{};
  int wordsPerSample_ = 0;
  int wordsDecoded_ = 0;

  std::uint64_t completedFrames_ = 0;
  std::uint64_t decodedFrames_ = 0;
};

}  // namespace wattlark
