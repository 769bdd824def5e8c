#include "sim/Simulation.h"

#include <algorithm>

namespace wattlark {
namespace {

// Long enough for a reader to see two deliveries as two reads.
constexpr std::int64_t kPieceGapMilliseconds = 2;

MeterSettings MakeStranger(const std::vector<MeterSettings>& meters) {
  MeterSettings stranger = meters.front();
  stranger.name = "unknown";
  stranger.watts = 60.0;
  stranger.address = 0x7FFF;
  const auto isTaken = [&](const MeterSettings& meter) {
    return meter.address == stranger.address;
  };
  while (stranger.address > 0 && std::any_of(meters.begin(), meters.end(), isTaken))
    --stranger.address;
  return stranger;
}

}  // namespace

Simulation::Simulation(const std::vector<MeterSettings>& meters, const LineSettings& line,
                       double periodSeconds, std::uint64_t seed)
    : line_(line),
      schedule_(meters.size(), periodSeconds),
      random_(seed),
      stranger_(MakeStranger(meters), seed) {
  meters_.reserve(meters.size());
  for (const MeterSettings& meter : meters) meters_.emplace_back(meter, seed + 1 + meters_.size());
}

const Delivery& Simulation::Next() {
  while (waiting_.empty()) TakeTurn();
  return waiting_.front();
}

void Simulation::Advance() {
  Next();
  waiting_.pop_front();
}

void Simulation::Restart(std::int64_t milliseconds) {
  waiting_.clear();
  lineFreeAt_ = milliseconds;
  schedule_.Restart(milliseconds);
}

void Simulation::TakeTurn() {
  const Schedule::Turn turn = schedule_.Next();
  schedule_.Advance();
  const double seconds = static_cast<double>(turn.milliseconds) / 1000.0;

  if (random_.Chance(line_.unknownRate))
    Deliver(turn.milliseconds, EncodeFrame(stranger_.TakeBurst(seconds)));

  Bytes bytes;
  if (random_.Chance(line_.garbageRate)) bytes = MakeGarbage(random_);
  Bytes frame = EncodeFrame(meters_[turn.meter].TakeBurst(seconds));
  if (random_.Chance(line_.badChecksumRate)) SpoilChecksum(frame, random_);
  bytes.insert(bytes.end(), frame.begin(), frame.end());
  Deliver(turn.milliseconds, bytes);
}

void Simulation::Deliver(std::int64_t milliseconds, const Bytes& bytes) {
  std::int64_t at = std::max(milliseconds, lineFreeAt_);
  for (Bytes& piece : Split(bytes, line_.splitMaximum, random_)) {
    waiting_.push_back({at, std::move(piece)});
    at += kPieceGapMilliseconds;
  }
  lineFreeAt_ = at;
}

}  // namespace wattlark
