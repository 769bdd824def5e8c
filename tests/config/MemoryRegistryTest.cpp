#include "config/RegistryConformance.h"
#include "twins/MemoryRegistry.h"

namespace wattlark {

namespace {

class MemoryUnderTest : public RegistryUnderTest {
 public:
  Registry& Get() override { return registry_; }
  void Reopen() override {}
  void WhileWritesFail(const std::function<void()>& work) override {
    registry_.failsWrites = true;
    work();
    registry_.failsWrites = false;
  }

 private:
  MemoryRegistry registry_;
};

INSTANTIATE_TEST_SUITE_P(Memory, RegistryConformance, testing::Values(RegistryFactory([] {
                           return std::make_unique<MemoryUnderTest>();
                         })));

TEST(MemoryRegistry, FailsACommitOnRequest) {
  MemoryRegistry registry;
  ASSERT_TRUE(registry.Begin());
  ASSERT_TRUE(registry.CreateKey(Hive::CurrentUser, "A"));
  registry.failsCommit = true;
  EXPECT_FALSE(registry.Commit());
  EXPECT_FALSE(registry.KeyExists(Hive::CurrentUser, "A"));
}

}  // namespace

}  // namespace wattlark
