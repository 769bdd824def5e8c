// "[--long] [--broken] [--seed N]". 0 when nothing was found, or when the broken variant was found
// out; 1 otherwise; 2 when the torture itself could not be carried out.
#include "torture/Torture.h"

int main(int argc, char** argv) {
  wattlark::Torture torture;
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
    wattlark::Run(torture);
  } catch (const std::exception& error) {
    std::cerr << argv[0] << ": " << error.what() << '\n';
    return 2;
  }
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  torture.Report(took.count());
  return (torture.Faults() > 0) == torture.isBroken ? 0 : 1;
}
