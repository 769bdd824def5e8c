#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace wattlark::torture {

/// What the arguments of every torture ask for.
struct Arguments {
  bool isLong = false;    ///< `--long`: the form whose figures are recorded
  bool isBroken = false;  ///< `--broken`: with a fault built in, that has to be found
  bool areUsable = true;

  Arguments(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
      const std::string_view argument = argv[i];
      if (argument == "--long") {
        isLong = true;
      } else if (argument == "--broken") {
        isBroken = true;
      } else {
        std::fprintf(stderr, "usage: %s [--long] [--broken]\n", argv[0]);
        areUsable = false;
      }
    }
  }
};

/// Counts what does not hold, tells the first cases of it, and makes the exit status of it all.
class Verdict {
 public:
  /// `describe` gives the words, and is called only when the condition does not hold.
  template <typename Describe>
  void Require(bool condition, Describe describe) {
    ++checks_;
    if (condition) return;
    constexpr std::uint64_t kTold = 10;
    if (++failures_ <= kTold) std::printf("FAILED: %s\n", std::string(describe()).c_str());
  }

  /// 0 when nothing failed, or, of a broken variant, when something did.
  int ExitStatus(const Arguments& arguments) const {
    std::printf("%llu checks, %llu failed\n", static_cast<unsigned long long>(checks_),
                static_cast<unsigned long long>(failures_));
    return (failures_ > 0) == arguments.isBroken && checks_ > 0 ? 0 : 1;
  }

 private:
  std::uint64_t checks_ = 0;
  std::uint64_t failures_ = 0;
};

}  // namespace wattlark::torture
