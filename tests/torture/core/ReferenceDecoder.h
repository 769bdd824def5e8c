#pragma once

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>
#include <vector>

#include "twins/Frames.h"

namespace wattlark {

/// The rules of the stream in their plainest form: everything is kept, every sum is taken anew.
struct ReferenceDecoder {
  Bytes bytes;
  std::size_t position = 0, failedEnd = 0, claimedEnd = 0;
  /// End and start, found in damaged bytes.
  std::vector<std::pair<std::size_t, std::size_t>> waiting;
  std::vector<Bytes> frames;
  std::vector<std::size_t> starts;  ///< of the frames, in the stream

  void Take(std::size_t start, std::size_t end) {
    const Bytes frame = Slice(bytes, start + 3, end);
    if (std::accumulate(frame.begin(), frame.end(), 0U) % 256 != 255) {
      failedEnd = std::max(failedEnd, end);
      position = std::max(position, start + 1);
      return;
    }
    frames.push_back(frame);
    starts.push_back(start);
    std::erase_if(waiting, [end](const auto& other) { return other.second < end; });
    position = std::max(position, end);
  }

  bool TakeFirstWaiting(std::size_t limit) {
    const auto first = std::min_element(waiting.begin(), waiting.end());
    if (first == waiting.end() || first->first > limit) return false;
    const auto [end, start] = *first;
    waiting.erase(first);
    Take(start, end);
    return true;
  }

  bool Read(const Bytes& read) {
    bytes.insert(bytes.end(), read.begin(), read.end());
    const std::size_t framesBefore = frames.size();
    while (true) {
      while (position < bytes.size() && bytes[position] != 0x7E) ++position;
      const std::size_t left = bytes.size() - position;
      const bool lengthKnown = left >= 3;
      const bool searched = position < failedEnd || (!waiting.empty() && position < claimedEnd);
      const std::size_t length =
          lengthKnown ? bytes[position + 1] * 256U + bytes[position + 2] : 0U;
      const std::size_t end = position + length + 4;
      if ((left >= 2 && bytes[position + 1] >= 0x80) || length > 0x7FFB) {
        if (searched) {
          ++position;
        } else if (!TakeFirstWaiting(position + 1)) {
          waiting.clear();
          position = bytes.size();
          return frames.size() > framesBefore;
        }
      } else if (lengthKnown && end <= bytes.size()) {
        if (!TakeFirstWaiting(end)) Take(position, end);
      } else if (lengthKnown && (searched || length > 3578)) {
        if (waiting.empty()) claimedEnd = 0;
        if (!searched) claimedEnd = end;
        waiting.emplace_back(end, position);
        ++position;
      } else if (!TakeFirstWaiting(bytes.size())) {
        return true;
      }
    }
  }
};

}  // namespace wattlark
