#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/TemporaryFolder.h"
#include "sim/PseudoTerminal.h"

namespace wattlark {
namespace {

namespace fs = std::filesystem;

TEST(PseudoTerminalTest, RemovesItsLinkButNothingElse) {
  const TemporaryFolder folder;
  const fs::path link = folder.File("meters");
  fs::create_symlink("/dev/pts/4095", link);  // of a killed run
  {
    const PseudoTerminal terminal(link);
    EXPECT_EQ(fs::read_symlink(link), terminal.DevicePath());
  }
  EXPECT_EQ(fs::symlink_status(link).type(), fs::file_type::not_found);
  {
    const PseudoTerminal terminal(link);
    fs::remove(link);
    WriteFile(link, "kept");
  }
  for (const fs::path& taken : {link, fs::path(folder.File("none/meters"))}) {
    EXPECT_THROW(PseudoTerminal{taken}, std::runtime_error) << taken;
  }
  EXPECT_EQ(FileBytes(link), "kept");
}

}  // namespace
}  // namespace wattlark
