#include "cli/CommandTest.h"
#include "config/modRegistry.h"
#include "platform/sqlite/OpenStore.h"
#include "platform/sqlite/SqliteDatabase.h"

namespace wattlark {
namespace {

using namespace std::string_literals;

constexpr Hive kUser = Hive::CurrentUser;
const std::string kStart =
    "Windows Registry Editor Version 5.00\n[HKEY_CURRENT_USER\\Software\\Fennick Labs\\Wattlark\\"
    "Settings]\n";

struct StoreCommands : CommandTest {
  /// Nothing of the profile, or of the file named, is other than before.
  void Refuse(const std::vector<std::string>& arguments, const std::string& message,
              int status = ExitRefused, const std::string& input = "") const {
    const auto before = ProfileFiles();
    const std::string bytes = FileBytes(file_);
    ExpectRefused(RunHere(arguments, input), message, status);
    EXPECT_EQ(ProfileFiles(), before);
    EXPECT_EQ(FileBytes(file_), bytes);
  }

  std::string file_ = folder_.File("moved");
};

TEST_F(StoreCommands, ExportImportExportGivesTheSameFile) {
  AddKitchen();
  const std::string path = modRegistry::AppKeyPath("", "Hostile") + "\\[-x]\\\n\\\xF0\x9F";
  const RegistryValue value{RegistryType::String, std::vector<std::uint8_t>(100'000, 'x')};
  ASSERT_TRUE(OpenStore(profile_).registry->Write(kUser, path, "nul\0\r\n\"\\ ]"s, value));
  ExpectDone({"store", "export", file_});
  const std::string exported = FileBytes(file_);
  EXPECT_EQ(RunHere({"store", "export", "-"}).output, exported);

  profile_ = folder_.File("other");
  regional_.shortDate = "dd.MM.yyyy";
  EXPECT_EQ(RunHere({"store", "import", "-"}, exported).status, ExitOK);
  EXPECT_EQ(RunHere({"store", "export", "-"}).output, exported);
  EXPECT_EQ(OpenStore(profile_).registry->Read(kUser, path, "nul\0\r\n\"\\ ]"s), value);
}

TEST_F(StoreCommands, FilesAreReplacedOnlyWithForce) {
  AddKitchen();
  for (const char* command : {"export", "backup"}) {
    WriteFile(file_, "mine");
    std::filesystem::permissions(file_, std::filesystem::perms(0644));
    Refuse({"store", command, file_}, "is there already: --force replaces it.");
    ExpectDone({"store", command, "--force", file_});
    EXPECT_NE(FileBytes(file_), "mine");
    EXPECT_EQ(ModeOf(file_), 0600);
    for (const char* own : {"/wattlark.db", "/wattlark.db-journal", "/../profile/lock"}) {
      Refuse({"store", command, "--force", profile_ + own}, "the profile itself uses");
    }
    Refuse({"store", command, "--force", folder_.Path()}, "is not a file");
    Refuse({"store", command, folder_.File("missing/x")}, "No such file or directory");
  }
}

TEST_F(StoreCommands, FullDiskLeavesNoHalfFile) {
  AddKitchen();
  for (const char* command : {"export", "backup"}) {
    const FileSizeLimit full;
    ExpectRefused(RunHere({"store", command, file_}), file_);
  }
  EXPECT_EQ(FilesIn(folder_.Path()).size(), 1u);
}

TEST_F(StoreCommands, NothingIsWrittenOfNothing) {
  Refuse({"store", "export", file_}, "has nothing to export");
  Refuse({"store", "backup", file_}, "There is no settings store");
  EXPECT_FALSE(ProfileExists());
  EXPECT_FALSE(std::filesystem::exists(file_));
}

TEST_F(StoreCommands, BadTextsChangeNothing) {
  const std::string unreadable =
      "Windows Registry Editor Version 5.00\n[HKEY_CURRENT_USER\\Software\\Fennick Labs\\Wattlark"
      "\\TotalKillAWatt]\n\"Timestamp\"=\"23.11.2026 1:00:00\"\n";
  Refuse({"store", "import", "-"}, "cannot be read", ExitRefused, unreadable);
  EXPECT_FALSE(ProfileExists());
  AddKitchen();
  Refuse({"store", "import", file_}, file_ + ": No such file", ExitBadInput);
  WriteFile(file_, kStart + "\"PortNum\"=\"5\"\n\"Mils\"=\n");
  Refuse({"store", "import", file_}, file_ + ":4: \"\" is no value", ExitBadInput);
  Refuse({"store", "import", "-"}, "cannot be read", ExitRefused, unreadable);
  Refuse({"store", "import", "-"}, "only 1 key of other programs", ExitRefused,
         "Windows Registry Editor Version 5.00\n[HKEY_CURRENT_USER\\K]\n@=\"x\"\n");
}

TEST_F(StoreCommands, ImportTellsWhatNeedsTheUser) {
  AddKitchen();
  const CommandResult result =
      RunHere({"store", "import", "-"},
              kStart +
                  "\"CSVFilename\"=\"C:\\\\log.csv\"\n[HKEY_CURRENT_USER\\Software\\Fennick "
                  "Labs\\Wattlark\\KillAWatts\\Fridge]\n\"XBeeAddress\"=\"5\"\n"
                  "[HKEY_CURRENT_USER\\K]\n");
  EXPECT_EQ(result.status, ExitOK);
  EXPECT_EQ(result.output, "2 values imported\n");
  EXPECT_EQ(result.messages,
            "The meter \"Fridge\" is left out: another one has its XBee address.\n"
            "The CSV log \"C:\\log.csv\" is no file of this computer: choose one with wattlark "
            "setting set CSVFilename PATH --profile " +
                profile_ +
                "\n"
                "1 key of other programs left out.\n");
}

TEST_F(StoreCommands, RestoreBringsBackTheBackupAndKeepsTheStore) {
  ExpectDone({"setting", "set", "PortNum", "4"});
  ExpectDone({"store", "backup", file_});
  ExpectDone({"setting", "set", "PortNum", "5"});
  const std::string before = FileBytes(profile_ + "/wattlark.db");
  for (const char* aside : {"/wattlark.db.replaced-1", "/wattlark.db.replaced-2"}) {
    const CommandResult result = RunHere({"store", "restore", file_});
    EXPECT_EQ(result.status, ExitOK);
    EXPECT_EQ(result.messages, "The store before is kept as \"" + profile_ + aside + "\".\n");
    EXPECT_EQ(ModeOf(profile_ + aside), 0600);
    EXPECT_EQ(Setting("PortNum"), "4\n");
  }
  EXPECT_EQ(FileBytes(profile_ + "/wattlark.db.replaced-1"), before);
  profile_ = folder_.File("new");
  ExpectDone({"store", "restore", file_});
  EXPECT_EQ(Setting("PortNum"), "4\n");
}

TEST_F(StoreCommands, RestoreTakesNoOtherFile) {
  ExpectDone({"setting", "set", "PortNum", "4"});
  ExpectDone({"store", "backup", file_});
  const std::string sound = FileBytes(file_);
  Refuse({"store", "restore", folder_.File("missing")}, "There is no settings store");
  Refuse({"store", "restore", profile_ + "/wattlark.db"}, "the profile itself");
  WriteFile(file_, "");
  Refuse({"store", "restore", file_}, "is empty");
  WriteFile(file_, sound.substr(0, sound.size() - 4096));
  Refuse({"store", "restore", file_}, "is damaged, or is no settings store");
  std::filesystem::remove(file_);
  {
    SqliteDatabase database;
    ASSERT_EQ(database.Open(file_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, 0), SQLITE_OK);
    ASSERT_EQ(database.Execute("CREATE TABLE stamps(album)"), SQLITE_OK);
  }
  Refuse({"store", "restore", file_}, "is a database of another program");
}

}  // namespace
}  // namespace wattlark
