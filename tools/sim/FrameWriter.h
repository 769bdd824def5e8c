#pragma once

#include <cstdint>
#include <vector>

#include "sim/MeterModel.h"
#include "sim/Random.h"

namespace wattlark {

using Bytes = std::vector<std::uint8_t>;

/// The XBee API frame, without escaping, in which a receiver hands on this burst: I/O samples from
/// a 16-bit address (identifier 0x83) with the lines A0 and A4 enabled (mask 0x2200). 88 bytes from
/// the start delimiter through the checksum.
Bytes EncodeFrame(const Burst& burst);

/// Changes the last byte of a frame to a checksum that is wrong. `frame` must not be empty.
void SpoilChecksum(Bytes& frame, Random& random);

/// 1 to 32 bytes as a disturbed line delivers them. None of them is a start delimiter, so that the
/// frame behind them is the next thing that a receiver finds.
Bytes MakeGarbage(Random& random);

/// `bytes` cut in order into pieces of 1 to `maximum` bytes; one piece when `maximum` is 0.
std::vector<Bytes> Split(const Bytes& bytes, std::size_t maximum, Random& random);

}  // namespace wattlark
