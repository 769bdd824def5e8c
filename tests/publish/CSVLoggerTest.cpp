#include "WebLoggerTest.h"
#include "platform/TemporaryFolder.h"
#include "publish/CSVLogger.h"
#include "support/RegionalForms.h"

namespace wattlark {
namespace {

struct CSVLogger : WebLoggerTest {
  CSVLogger() {
    settings.CSVFilename = folder.File("wattlark.csv");
    settings.CSVInterval = 60;
  }

  PublishResult Log(const char* time = "2026-11-16T20:10:00", bool useAverage = false) {
    return LogToCSVFile(settings, meters, region, At(time), useAverage);
  }
  std::string File() const { return FileBytes(settings.CSVFilename); }

  TemporaryFolder folder;
};

TEST_F(CSVLogger, WritesAHeaderAndOneLineARun) {
  EXPECT_TRUE(Log().success) << "without meters";
  EXPECT_EQ(File(), "Timestamp\r\n11/16/2026 8:10:00 PM\r\n");
  WriteFile(settings.CSVFilename, "");  // emptied, it gets a header again
  AddWithReading("A", 5, 123.456);
  AddWithReading("B", 6, 12345);
  Add("silent", 7);
  const PublishResult result = Log();
  EXPECT_TRUE(result.success);
  EXPECT_EQ(result.text, "CSV file: Updated 11/16/2026 8:10:00 PM");
  EXPECT_EQ(File(), "Timestamp, A, B, silent\r\n11/16/2026 8:10:00 PM, 123.46, 12345, \r\n");
  Log("2026-11-17T00:05:00");
  EXPECT_EQ(File(),
            "Timestamp, A, B, silent\r\n11/16/2026 8:10:00 PM, 123.46, 12345, \r\n"
            "11/17/2026 12:05:00 AM, 123.46, 12345, \r\n");
}

TEST_F(CSVLogger, WritesAveragesOverItsInterval) {
  clsKillAWatt& meter = Add("A", 5);
  meter.Statistics().SetDemandRecent(Minute, Entries(60, 10));
  meter.Statistics().SetDemandRecent(Hour, Entries(60, 200));
  Add("no history", 6);
  Log("2026-11-16T20:10:00", true);
  settings.CSVInterval = 300;
  Log("2026-11-16T20:15:00", true);
  EXPECT_EQ(File(),
            "Timestamp, A, no history\r\n11/16/2026 8:10:00 PM, 10.000, \r\n"
            "11/16/2026 8:15:00 PM, 200.00, \r\n");
}

TEST_F(CSVLogger, WritesTheFormsOfTheRegion) {
  region = Germany();
  AddWithReading("Küche", 5, 1234.5);
  EXPECT_EQ(Log().text, "CSV file: Updated 16.11.2026 20:10:00");
  EXPECT_EQ(File(), "Timestamp, Küche\r\n16.11.2026 20:10:00, 1234,5\r\n");
}

TEST_F(CSVLogger, WritesANewHeaderWhenTheMetersChanged) {
  WriteFile(settings.CSVFilename, "earlier\r\n");
  AddWithReading("A, \"x\"", 5, 100);
  Log();
  EXPECT_EQ(File(), "earlier\r\n11/16/2026 8:10:00 PM, 100.00\r\n") << "a restart goes on";
  settings.CSVFileChanged = true;
  Log();
  EXPECT_FALSE(settings.CSVFileChanged);
  Log();
  EXPECT_EQ(File(),
            "earlier\r\n11/16/2026 8:10:00 PM, 100.00\r\n"
            "Timestamp, A, \"x\"\r\n11/16/2026 8:10:00 PM, 100.00\r\n"
            "11/16/2026 8:10:00 PM, 100.00\r\n");
}

TEST_F(CSVLogger, TellsWhyItCannotOpenTheFile) {
  for (const std::string& file : {folder.File("none/x.csv"), folder.Path(), std::string()}) {
    settings.CSVFilename = file;
    settings.CSVFileChanged = true;
    const PublishResult result = Log();
    EXPECT_FALSE(result.success) << file;
    EXPECT_THAT(result.text, testing::StartsWith("Error Writing Log File - "));
    EXPECT_GT(result.text.size(), 30U) << "and the reason: " << result.text;
    EXPECT_TRUE(settings.CSVFileChanged) << "the header is still to be written";
  }
}

}  // namespace
}  // namespace wattlark
