#pragma once

#include <utility>

#include "platform/Desktop.h"
#include "platform/Prompts.h"
#include "platform/RandomSource.h"
#include "platform/SerialPort.h"

namespace wattlark::bench {

/// A port that is open and delivers only what it is given.
class SilentSerialPort : public SerialPort {
 public:
  bool Open(int, const std::string&) override { return true; }
  void Close() override {}
  bool IsOpen() const override { return true; }
  std::vector<std::uint8_t> ReadAll() override { return std::exchange(waiting, {}); }
  std::string ErrorText() const override { return ""; }
  std::vector<std::uint8_t> waiting;
};

class SilentDesktop : public Desktop {
 public:
  void PlayWave(const std::string&) override {}
  bool OpenURL(const std::string&) override { return false; }
};

class SilentPrompts : public Prompts {
 public:
  PromptAnswer Ask(const PromptMessage& message) override { return message.defaultAnswer; }
};

class FixedRandom : public RandomSource {
 public:
  void Reseed(std::uint32_t) override {}
  double Next() override { return 0.5; }
};

}  // namespace wattlark::bench
