#include "acquisition/clsXBee.h"

#include <algorithm>
#include <bit>
#include <stdexcept>
#include <utility>

namespace wattlark {

namespace {

constexpr std::uint8_t kDelimiter = 0x7E;
constexpr std::size_t kPrefix = 3;    // delimiter and length
constexpr std::size_t kOverhead = 4;  // prefix and checksum
constexpr std::size_t kSampleHeader = 8;
constexpr std::size_t kLeastDrop = 1024;  // bytes worth moving
constexpr std::uint16_t kDigitalBits = 0x01FF;
constexpr int kFirstAnalogBit = 9;

std::uint16_t Word(const std::uint8_t* bytes) {
  return static_cast<std::uint16_t>(bytes[0] << 8 | bytes[1]);
}

// The whole frame on the wire, delimiter to checksum, for a length field that is known to be there.
std::size_t WireSize(std::span<const std::uint8_t> bytes) {
  return Word(&bytes[1]) + kOverhead;
}

std::uint8_t Sum(std::span<const std::uint8_t> bytes) {
  std::uint8_t sum = 0;
  for (const std::uint8_t byte : bytes) sum = static_cast<std::uint8_t>(sum + byte);
  return sum;
}

// The 8-bit sum of frame data and checksum is 0xFF (XBee API frame structure).
constexpr std::uint8_t kIntactSum = 0xFF;

}  // namespace

clsXBee::Candidate clsXBee::Judge(std::span<const std::uint8_t> bytes, bool searched) {
  if (bytes.size() >= 2 && bytes[1] >= 0x80) {
    return searched ? Candidate::False : Candidate::Overflow;
  }
  if (bytes.size() < kPrefix) return Candidate::Waiting;
  if (Word(&bytes[1]) > LargestFrame) {
    return searched ? Candidate::False : Candidate::Overflow;
  }
  return bytes.size() < WireSize(bytes) ? Candidate::Waiting : Candidate::Complete;
}

bool clsXBee::ParseBytes(std::span<const std::uint8_t> bytes) {
  frameReceived_ = false;
  if (!pending_.empty()) {
    pending_.insert(pending_.end(), bytes.begin(), bytes.end());
    return ParsePending();
  }
  while (true) {
    bytes = bytes.subspan(
        static_cast<std::size_t>(std::ranges::find(bytes, kDelimiter) - bytes.begin()));
    if (bytes.empty()) return true;
    const Candidate candidate = Judge(bytes, false);
    if (candidate == Candidate::Overflow) return frameReceived_;
    if (candidate == Candidate::Complete) {
      const auto frame = bytes.subspan(kPrefix, WireSize(bytes) - kPrefix);
      if (Sum(frame) == kIntactSum) {
        ProcessFrame(frame);
        bytes = bytes.subspan(WireSize(bytes));
        continue;
      }
    }
    pending_.assign(bytes.begin(), bytes.end());
    return ParsePending();
  }
}

bool clsXBee::ParsePending() {
  bool complete = true;
  while (true) {
    scan_ =
        static_cast<std::size_t>(std::find(pending_.begin() + static_cast<std::ptrdiff_t>(scan_),
                                           pending_.end(), kDelimiter) -
                                 pending_.begin());
    const auto bytes = std::span<const std::uint8_t>(pending_).subspan(scan_);
    const bool searched = scan_ < searchedEnd_ || (!parked_.empty() && scan_ < claimedEnd_);
    const Candidate candidate = bytes.empty() ? Candidate::Waiting : Judge(bytes, searched);
    if (candidate == Candidate::False) {
      ++scan_;
    } else if (candidate == Candidate::Complete) {
      const std::size_t end = scan_ + WireSize(bytes);
      if (!JudgeParked(end)) TakeFrame(scan_, end, searched);
    } else if (candidate == Candidate::Overflow) {
      if (JudgeParked(scan_ + 1)) continue;
      parked_.clear();
      scan_ = pending_.size();
      complete = frameReceived_;
      break;
    } else if (bytes.size() >= kPrefix && (searched || Word(&bytes[1]) > LargestSampleFrame)) {
      const std::size_t end = scan_ + WireSize(bytes);
      if (parked_.empty()) claimedEnd_ = 0;
      if (!searched) claimedEnd_ = end;
      parked_.emplace(end, scan_);
      ++scan_;
    } else if (!JudgeParked(pending_.size())) {
      break;
    }
  }
  DropParsedBytes();
  return complete;
}

bool clsXBee::JudgeParked(std::size_t end) {
  if (parked_.empty() || parked_.begin()->first > end) return false;
  const auto [parkedEnd, start] = *parked_.begin();
  parked_.erase(parked_.begin());
  TakeFrame(start, parkedEnd, true);
  return true;
}

void clsXBee::TakeFrame(std::size_t start, std::size_t end, bool searched) {
  const auto frame =
      std::span<const std::uint8_t>(pending_).subspan(start + kPrefix, end - start - kPrefix);
  const std::uint8_t sum = searched ? PendingSum(start + kPrefix, end) : Sum(frame);
  if (sum != kIntactSum) {
    searchedEnd_ = std::max(searchedEnd_, end);
    scan_ = std::max(scan_, start + 1);
    return;
  }
  ProcessFrame(frame);
  std::erase_if(parked_, [end](const auto& parked) { return parked.second < end; });
  scan_ = std::max(scan_, end);
}

std::uint8_t clsXBee::PendingSum(std::size_t from, std::size_t to) {
  if (pendingSums_.empty()) pendingSums_.push_back(0);
  while (pendingSums_.size() <= to) {
    pendingSums_.push_back(
        static_cast<std::uint8_t>(pendingSums_.back() + pending_[pendingSums_.size() - 1]));
  }
  return static_cast<std::uint8_t>(pendingSums_[to] - pendingSums_[from]);
}

void clsXBee::DropParsedBytes() {
  if (scan_ == pending_.size() && parked_.empty()) {
    pending_.clear();
    pendingSums_.clear();
    scan_ = searchedEnd_ = claimedEnd_ = dropAt_ = 0;
    return;
  }
  // Dropping only when the bytes have doubled keeps the cost a byte constant.
  if (pending_.size() < dropAt_) return;
  std::size_t keep = scan_;
  for (const auto& parked : parked_) keep = std::min(keep, parked.second);
  const auto count = static_cast<std::ptrdiff_t>(keep);
  pending_.erase(pending_.begin(), pending_.begin() + count);
  pendingSums_.erase(
      pendingSums_.begin(),
      pendingSums_.begin() + std::min(count, static_cast<std::ptrdiff_t>(pendingSums_.size())));
  std::set<std::pair<std::size_t, std::size_t>> moved;
  for (const auto& [end, start] : parked_)
    moved.emplace_hint(moved.end(), end - keep, start - keep);
  parked_ = std::move(moved);
  scan_ -= keep;
  searchedEnd_ -= std::min(searchedEnd_, keep);
  claimedEnd_ -= std::min(claimedEnd_, keep);
  dropAt_ = std::max(kLeastDrop, 2 * pending_.size());
}

void clsXBee::ProcessFrame(std::span<const std::uint8_t> frame) {
  // All frames of one read arrived at the same moment.
  if (!frameReceived_) {
    frameTime_ = clock_.Now();
    frameTicks_ = clock_.Ticks();
  }
  apiIdentifier_ = frame[0];
  sampleDecoded_ = apiIdentifier_ == IOSampleIdentifier && DecodeIOSample(frame);
  frameReceived_ = true;
  ++completedFrames_;
  if (sampleDecoded_) ++decodedFrames_;
}

bool clsXBee::DecodeIOSample(std::span<const std::uint8_t> frame) {
  const auto data = frame.first(frame.size() - 1);
  if (data.size() < kSampleHeader || (data[1] & 0x80) != 0) return false;
  sourceAddress_ = static_cast<std::int16_t>(Word(&data[1]));
  rssi_ = data[3];
  optionBit0_ = (data[4] & 0x01) != 0;
  optionBit1_ = (data[4] & 0x02) != 0;
  if ((data[6] & 0x80) != 0) return false;
  sampleCount_ = data[5];
  mask_ = static_cast<std::int16_t>(Word(&data[6]));

  const auto mask = static_cast<std::uint16_t>(mask_);
  wordsPerSample_ = std::popcount(static_cast<std::uint16_t>(mask >> kFirstAnalogBit)) +
                    ((mask & kDigitalBits) != 0 ? 1 : 0);
  const std::uint8_t* words = data.data() + kSampleHeader;
  const int needed = sampleCount_ * wordsPerSample_;
  const int received = std::min(needed, static_cast<int>((data.size() - kSampleHeader) / 2));
  std::int16_t signs = 0;
  for (int i = 0; i < received; ++i) {
    const auto word = static_cast<std::int16_t>(Word(words + std::ptrdiff_t{2} * i));
    table_[static_cast<std::size_t>(i)] = word;
    signs = static_cast<std::int16_t>(signs | word);
  }
  const auto end = table_.begin() + received;
  wordsDecoded_ =
      signs >= 0
          ? received
          : static_cast<int>(std::find_if(table_.begin(), end, [](auto word) { return word < 0; }) -
                             table_.begin());
  return wordsDecoded_ == needed;
}

std::optional<int> clsXBee::Column(int maskBit) const {
  const auto mask = static_cast<std::uint16_t>(mask_);
  if ((mask >> maskBit & 1) == 0) return std::nullopt;
  if (maskBit < kFirstAnalogBit) return 0;  // all digital lines share one word
  const int below = mask & ((1 << maskBit) - 1);
  return ((below & kDigitalBits) != 0 ? 1 : 0) +
         std::popcount(static_cast<std::uint16_t>(below >> kFirstAnalogBit));
}

std::int16_t clsXBee::TableWord(int sample, std::optional<int> column, std::int16_t missing) const {
  if (sample < 1 || sample > sampleCount_) throw std::out_of_range("sample");
  const int at = column ? (sample - 1) * wordsPerSample_ + *column : wordsDecoded_;
  return at < wordsDecoded_ ? table_[static_cast<std::size_t>(at)] : missing;
}

std::int16_t clsXBee::AnalogSample(int sample, int channel) const {
  if (channel < 1 || channel > AnalogChannels) throw std::out_of_range("ADC channel");
  return TableWord(sample, Column(kFirstAnalogBit + channel - 1), NotSampled);
}

bool clsXBee::DigitalSample(int sample, int line) const {
  if (line < 1 || line > DigitalLines) throw std::out_of_range("DIO line");
  constexpr std::int16_t kEveryBit = -1;
  return (TableWord(sample, Column(line - 1), kEveryBit) & (1 << (line - 1))) != 0;
}

void clsXBee::CopyChannel(int channel, std::span<std::int16_t> readings) const {
  if (channel < 1 || channel > AnalogChannels) throw std::out_of_range("ADC channel");
  const auto wanted =
      readings.first(std::min(readings.size(), static_cast<std::size_t>(sampleCount_)));
  const auto column = Column(kFirstAnalogBit + channel - 1);
  auto at = static_cast<std::size_t>(column ? *column : wordsDecoded_);
  for (std::int16_t& reading : wanted) {
    reading = std::cmp_less(at, wordsDecoded_) ? table_[at] : NotSampled;
    at += static_cast<std::size_t>(wordsPerSample_);
  }
}

}  // namespace wattlark
