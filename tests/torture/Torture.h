#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <concepts>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iomanip>
#include <iostream>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace wattlark {

/// One torture as the command line wants it, and what it has found; threads may share it.
class Torture {
 public:
  bool isLong = false;
  bool isBroken = false;   ///< over the broken variant: finding nothing is the failure
  std::uint64_t seed = 1;  ///< of every random choice

  /// Counts a fault; the first ones are printed.
  void Find(const std::string& fault) {
    constexpr int kPrinted = 20;
    const std::lock_guard lock(mutex_);
    if (++faults_ <= kPrinted) std::cout << "FAULT: " << fault << std::endl;
  }
  /// Counts a fault unless `holds`; `fault` is its text, or makes it.
  template <typename Fault>
  void Expect(bool holds, const Fault& fault) {
    ++checks_;
    if (holds) return;
    if constexpr (std::invocable<Fault>) {
      Find(fault());
    } else {
      Find(fault);
    }
  }
  int Faults() const { return faults_; }

  /// Runs `work(number)` in `count` threads at once. What one of them throws is a fault.
  template <typename Work>
  void InThreads(int count, Work work) {
    std::vector<std::thread> threads;
    for (int number = 0; number < count; ++number) {
      threads.emplace_back([this, work, number] {
        try {
          work(number);
        } catch (const std::exception& error) {
          Find(error.what());
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
  }

  /// Figures for the report: a sum, or the largest of all.
  template <typename Number = int>
  void Count(const std::string& what, Number amount = 1) {
    const std::lock_guard lock(mutex_);
    figures_[what] += static_cast<double>(amount);
  }
  void Largest(const std::string& what, double value) {
    const std::lock_guard lock(mutex_);
    figures_[what] = std::max(figures_[what], value);
  }
  void Report(double seconds) const {
    std::cout << std::setprecision(12);
    for (const auto& [what, figure] : figures_) std::cout << what << ": " << figure << '\n';
    std::cout << "checks: " << checks_ << "\nfaults: " << faults_ << "\nseconds: " << seconds
              << std::endl;
  }

 private:
  std::mutex mutex_;
  std::map<std::string, double> figures_;
  std::atomic<std::uint64_t> checks_ = 0;
  int faults_ = 0;
};

/// What a program of this kind does; the rest is shared.
void Run(Torture& torture);

}  // namespace wattlark
