#pragma once

#include "acquisition/clsKillAWatt.h"
#include "acquisition/clsXBee.h"
#include "twins/HandClock.h"

namespace wattlark {

/// What the program makes of a frame that a simulated meter sends.
struct DecodedFrame {
  explicit DecodedFrame(const std::vector<std::uint8_t>& bytes, double nominalVoltage = 120) {
    const HandClock clock;
    clsXBee decoder(clock);
    decoder.ParseBytes(bytes);
    isWellFormed = bytes.size() == 88 && decoder.SampleDecoded() && decoder.SampleCount() == 19;
    if (!isWellFormed) return;
    address = decoder.SourceAddress();
    clsKillAWatt meter;
    meter.ChangeNominalVoltage(nominalVoltage);
    meter.ProcessPacket(decoder);
    volts = meter.Volts();
    watts = meter.Watts();
  }

  bool isWellFormed;
  int address = -1;
  double volts = 0;
  double watts = 0;
};

}  // namespace wattlark
