#include "cli/CommandLine.h"

int main(int argc, char** argv) {
  return wattlark::RunCommandLine(argc, argv, nullptr);
}
