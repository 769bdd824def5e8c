#include "config/RegistryConformance.h"
#include "platform/FileSizeLimit.h"
#include "platform/TemporaryFolder.h"
#include "platform/sqlite/OpenStore.h"
#include "platform/sqlite/SqliteRegistry.h"

namespace wattlark {

namespace {

class SqliteUnderTest : public RegistryUnderTest {
 public:
  SqliteUnderTest() { Reopen(); }
  Registry& Get() override { return *registry_; }
  void Reopen() override {
    registry_.reset();
    StoreOpening opening = OpenStore(folder_.Path());
    EXPECT_EQ(opening.message, "");
    registry_ = std::move(opening.registry);
  }
  void WhileWritesFail(const std::function<void()>& work) override {
    const FileSizeLimit limit;
    work();
  }

 private:
  TemporaryFolder folder_;
  std::unique_ptr<Registry> registry_;
};

INSTANTIATE_TEST_SUITE_P(Sqlite, RegistryConformance, testing::Values(RegistryFactory([] {
                           return std::make_unique<SqliteUnderTest>();
                         })));

constexpr Hive kUser = Hive::CurrentUser;
const RegistryValue kText{RegistryType::String, {'t'}};

class TwoProcesses : public testing::Test {
 protected:
  TemporaryFolder folder_;
  std::unique_ptr<Registry> first_ = OpenStore(folder_.Path(), 0).registry;
  std::unique_ptr<Registry> second_ = OpenStore(folder_.Path(), 0).registry;
};

TEST_F(TwoProcesses, SeeEachOthersChanges) {
  ASSERT_TRUE(first_->Write(kUser, "A", "v", kText));
  ASSERT_EQ(second_->Read(kUser, "A", "v"), kText);
  ASSERT_TRUE(first_->DeleteKey(kUser, "A"));
  ASSERT_TRUE(second_->Write(kUser, "A", "w", kText));
  EXPECT_EQ(first_->Read(kUser, "A", "w"), kText);
  EXPECT_EQ(first_->Read(kUser, "A", "v"), std::nullopt);
}

TEST_F(TwoProcesses, AValueThatIsReadAgainIsTheOneStoredNow) {
  const RegistryValue changed{RegistryType::String, {'c'}};
  ASSERT_TRUE(first_->Write(kUser, "A", "v", kText));
  ASSERT_TRUE(first_->Write(kUser, "A", "w", kText));
  for (const RegistryValue& value : {kText, changed, kText}) {
    ASSERT_TRUE(first_->Write(kUser, "A", "v", value));
    EXPECT_EQ(second_->Read(kUser, "A", "v"), value);
    EXPECT_EQ(second_->Read(kUser, "a", "W"), kText);
  }
}

TEST_F(TwoProcesses, AWriteAgainstAnOpenTransactionFailsWithText) {
  ASSERT_TRUE(first_->Begin());
  ASSERT_TRUE(first_->Write(kUser, "A", "v", kText));
  EXPECT_FALSE(second_->Write(kUser, "A", "w", kText));
  EXPECT_NE(second_->ErrorText().find("another program is using it"), std::string::npos)
      << second_->ErrorText();
  EXPECT_FALSE(second_->Begin());
  EXPECT_TRUE(first_->Commit());
  EXPECT_TRUE(second_->Write(kUser, "A", "w", kText));
}

}  // namespace

}  // namespace wattlark
