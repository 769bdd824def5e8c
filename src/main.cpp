#include "cli/CommandLine.h"

#ifdef WATTLARK_WITH_WINDOW
#include "cli/forms/WindowRun.h"
#endif

int main(int argc, char** argv) {
#ifdef WATTLARK_WITH_WINDOW
  return wattlark::RunCommandLine(argc, argv, &wattlark::RunWindow);
#else
  return wattlark::RunCommandLine(argc, argv, nullptr);
#endif
}
