#pragma once

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <functional>
#include <iostream>
#include <string>

namespace wattlark {

/// One torture as the command line wants it, and what it has found.
class Torture {
 public:
  bool isLong = false;
  bool isBroken = false;   ///< over the broken variant: finding nothing is the failure
  std::uint64_t seed = 1;  ///< of every random choice

  /// Counts a fault; the first ones are printed.
  void Find(const std::string& fault) {
    constexpr int kPrinted = 20;
    if (++faults_ <= kPrinted) std::cout << "FAULT: " << fault << std::endl;
  }
  /// Counts a fault unless `holds`.
  void Expect(bool holds, const std::string& fault) {
    if (!holds) Find(fault);
  }
  int Faults() const { return faults_; }

  /// A figure for the report.
  template <typename Value>
  static void Tell(const std::string& what, const Value& value) {
    std::cout << what << ": " << value << std::endl;
  }

 private:
  int faults_ = 0;
};

/// The main of a torture: "[--long] [--broken] [--seed N]". 0 when nothing was found, or when the
/// broken variant was found out; 1 otherwise; 2 when the torture itself could not be carried out.
inline int RunTorture(int argc, char** argv, const std::function<void(Torture&)>& run) {
  Torture torture;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == "--long") {
      torture.isLong = true;
    } else if (argument == "--broken") {
      torture.isBroken = true;
    } else if (argument == "--seed" && i + 1 < argc) {
      torture.seed = std::strtoull(argv[++i], nullptr, 10);
    } else {
      std::cerr << "Usage: " << argv[0] << " [--long] [--broken] [--seed N]\n";
      return 2;
    }
  }
  const auto start = std::chrono::steady_clock::now();
  try {
    run(torture);
  } catch (const std::exception& error) {
    std::cerr << argv[0] << ": " << error.what() << '\n';
    return 2;
  }
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  Torture::Tell("faults", torture.Faults());
  Torture::Tell("seconds", took.count());
  if (torture.isBroken) {
    std::cout << (torture.Faults() > 0 ? "The broken variant was found out.\n"
                                       : "The broken variant was NOT found out.\n");
  }
  return (torture.Faults() > 0) == torture.isBroken ? 0 : 1;
}

}  // namespace wattlark
