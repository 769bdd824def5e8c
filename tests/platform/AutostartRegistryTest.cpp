#include <gmock/gmock.h>

#include "TemporaryFolder.h"
#include "config/modRegistry.h"
#include "platform/xdg/AutostartRegistry.h"
#include "twins/MemoryRegistry.h"

namespace wattlark {
namespace {

struct AutostartRegistryTest : testing::Test {
  TemporaryFolder folder;
  std::string entry = folder.File("new/autostart/wattlark.desktop");
  MemoryRegistry inner;
  AutostartRegistry registry{inner, folder.File("new/autostart")};
  modRegistry store{registry};

  bool Set(const std::string& command) {
    return store.SetStringValue(Hive::LocalMachine, RunAtLogOnKey, "Wattlark", command);
  }
  bool Delete() { return store.DeleteValue(Hive::LocalMachine, RunAtLogOnKey, "Wattlark"); }
  bool IsThere() const { return std::filesystem::exists(entry); }
};

TEST_F(AutostartRegistryTest, TheRunValueIsAnAutostartEntry) {
  ASSERT_TRUE(Set("\"/opt/Watt lark/wattlark\""));
  EXPECT_EQ(FileBytes(entry),
            "[Desktop Entry]\nType=Application\nName=Wattlark\n"
            "Exec=\"/opt/Watt lark/wattlark\"\nIcon=org.wattlark.Wattlark\nTerminal=false\n");
  ASSERT_TRUE(inner.Read(Hive::LocalMachine, RunAtLogOnKey, "Wattlark"));
  EXPECT_TRUE(Delete());
  EXPECT_FALSE(IsThere());
  EXPECT_FALSE(Delete());
  // An entry that another profile made goes too.
  WriteFile(entry, "");
  EXPECT_TRUE(Delete());
  EXPECT_FALSE(IsThere());
}

TEST_F(AutostartRegistryTest, OtherValuesAreOnlyStored) {
  store.SetStringValue(Hive::CurrentUser, RunAtLogOnKey, "Wattlark", "x");
  EXPECT_TRUE(inner.KeyExists(Hive::CurrentUser, RunAtLogOnKey));
  EXPECT_FALSE(store.SetStringValue(Hive::LocalMachine, RunAtLogOnKey, "../x", "x"));
  EXPECT_FALSE(std::filesystem::exists(folder.File("new")));
}

TEST_F(AutostartRegistryTest, FollowsTheTransaction) {
  ASSERT_TRUE(registry.Begin());
  Set("\"/a\"");
  registry.Rollback();
  EXPECT_FALSE(IsThere());
  registry.Begin();
  Set("\"/a\"");
  EXPECT_TRUE(registry.Commit());
  EXPECT_TRUE(IsThere());
  registry.Begin();
  inner.failsCommit = true;
  Delete();
  EXPECT_FALSE(registry.Commit());
  EXPECT_TRUE(IsThere());
  // An entry that cannot be written fails no save.
  inner.failsCommit = false;
  AutostartRegistry blocked{inner, entry};
  blocked.Begin();
  modRegistry(blocked).SetStringValue(Hive::LocalMachine, RunAtLogOnKey, "Wattlark", "x");
  EXPECT_TRUE(blocked.Commit());
}

TEST(AutostartEntry, QuotesTheProgram) {
  using Row = std::pair<const char*, std::string>;
  for (const auto& [command, exec] :
       {Row{R"("/50%/a")", R"("/50%%/a")"}, Row{R"("/$a/`b`/"c")", R"("/\\$a/\\`b\\`/\\"c")"},
        Row{"\"/a\nExec=evil\"", R"("/a\nExec=evil")"}}) {
    EXPECT_THAT(AutostartEntry("Wattlark", command), testing::HasSubstr("\nExec=" + exec + "\n"));
  }
}

}  // namespace
}  // namespace wattlark
