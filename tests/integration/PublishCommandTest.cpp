#include <QDateTime>
#include <chrono>

#include "integration/HeadlessRun.h"
#include "platform/ZoneScope.h"
#include "services/Services.h"
#include "twins/Matchers.h"

namespace wattlark {
namespace {

/// A program over a profile that publishes to the test's own services.
struct PublishCommand : HeadlessRun {
  // The offset of this zone is not that of the machine that tests, and always the same.
  ZoneScope zone{"Asia/Kolkata"};

  void Set(const std::string& name, const std::string& value) const {
    Run({"setting", "set", name, value});
  }
  void PointTo(const Services& services) const {
    Set("ServiceEndpoints/ClientLoginURL", services.URL(Services::SignInPath));
    Set("ServiceEndpoints/SpreadsheetsFeedURL", services.URL(Services::SpreadsheetsPath));
    Set("ServiceEndpoints/TwitterUpdateURL", services.URL(Services::UpdatePath));
    Set("ServiceEndpoints/PowerMeterFeedsURL", services.URL(Services::MeasurementsPath));
    Set("PachubeFeedURL", services.URL(Services::FeedPath));
    Set("PachubeAPIKey", Services::FeedKey);
    Set("PowerMeterAuthInfo",
        std::string("token=") + Services::DeviceToken + "&path=" + Services::DevicePath);
    for (const std::string service : {"Google", "Twitter"}) {
      Set(service + "Username", Services::UserName);
      Set(service + "Password", Services::Password);
    }
    Set("LogToCSV", "False");
    Set("CSVFilename", folder.File("log.csv"));
  }
  /// Readings of the last quarter of an hour, as if the program had run.
  void HaveHistory() const {
    const std::string history = folder.File("history");
    std::string lines;
    QDateTime time = QDateTime::currentDateTime().addSecs(-900);
    for (int second = 0; second < 900; second += 5, time = time.addSecs(5)) {
      const std::string start =
          time.toString("yyyy-MM-ddTHH:mm:ss ").toStdString() + std::to_string(second * 1000);
      lines += start + " rx " + BurstText(5) + "\n" + start + " tick\n";
    }
    WriteFile(history, lines);
    Run({"replay", "--save", history});
  }
  void WaitForReading(RunningProgram& program) {
    SendBurst();
    ASSERT_TRUE(WaitUntil([&] { return !program.Output().empty(); })) << program.Messages();
  }
  Result Publish(const std::string& destination) const { return Try({"publish", destination}); }
};

struct PublishingProgram : PublishCommand, testing::WithParamInterface<const char*> {};

TEST_P(PublishingProgram, PublishesToEachDestination) {
  const Services services;
  AddKitchen();
  PointTo(services);
  HaveHistory();
  RunningProgram program(RunCommand(GetParam()));
  ASSERT_TRUE(WaitUntil([&] { return FileBytes(capture).find(" tick") != std::string::npos; }))
      << program.Messages();
  SendBurst();
  using Row = std::pair<const char*, const char*>;
  for (const auto& [destination, output] :
       {Row{"csv", "CSV file: Updated "}, Row{"pachube", "Pachube: Updated "},
        Row{"google", "Google Docs: Updated "}, Row{"powermeter", "Google PowerMeter: Updated "},
        Row{"twitter", "Twitter: Status updated "}}) {
    EXPECT_THAT(Publish(destination), FieldsAre(0, StartsWith(output), ""))
        << destination << ": " << program.Messages();
  }
  EXPECT_THAT(FileBytes(folder.File("log.csv")), StartsWith("Timestamp, Kitchen\r\n"));
  std::string body;
  for (const ServiceRequest& request : services.Requests()) {
    EXPECT_EQ(request.problem, "") << request.target;
    if (request.target.find("durMeasurement") != std::string::npos) body = request.body;
  }
  // The time sent is UTC, whatever the zone.
  const std::size_t end = body.find("</meter:endTime>");
  ASSERT_NE(end, std::string::npos) << body;
  const auto sent =
      QDateTime::fromString(QString::fromStdString(body.substr(end - 24, 24)), Qt::ISODateWithMs);
  EXPECT_EQ(sent.timeSpec(), Qt::UTC);
  EXPECT_LT(std::abs(sent.secsTo(QDateTime::currentDateTimeUtc())), 60) << body;
  EXPECT_EQ(program.End(SIGTERM), 0) << program.Messages();
}

TEST_P(PublishingProgram, EndsAtOnceWhenItIsToldToWhileAServerStalls) {
  Services services;
  services.Behave(Behaviour::Stalled);
  AddKitchen();
  PointTo(services);
  RunningProgram program(RunCommand(GetParam()));
  ASSERT_TRUE(WaitUntil([&] { return Publish("csv").status == 0; }));
  RunningProgram command(Command({"publish", "pachube"}));
  ASSERT_TRUE(WaitUntil([&] { return !services.Requests().empty(); }));
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(program.End(SIGTERM), 0);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
  EXPECT_EQ(command.Wait(), 1);
  EXPECT_THAT(command.Messages(), testing::Not(IsEmpty()));
}

INSTANTIATE_TEST_SUITE_P(Both, PublishingProgram,
                         testing::Values(WATTLARK_HEADLESS_PROGRAM, WATTLARK_PROGRAM),
                         [](const auto& test) { return test.index == 0 ? "Headless" : "Window"; });

TEST_F(PublishCommand, SaysWhyNothingWasPublished) {
  EXPECT_THAT(Publish("pachube"), FieldsAre(1, "",
                                            "No program that runs with the profile \"" + profile +
                                                "\" answers. Start one first.\n"));
  AddKitchen();
  RunningProgram program(RunCommand());
  WaitForReading(program);
  EXPECT_THAT(Publish("twitter"), FieldsAre(1, "", HasSubstr("user name or password is missing")));
  EXPECT_EQ(Publish("powermeter").messages,
            "Wattlark: Invalid Google PowerMeter authentication info\n");
  EXPECT_EQ(Publish("fax").status, 2);
  Unplug();
  ASSERT_TRUE(WaitUntil([&] { return !program.Messages().empty(); }));
  EXPECT_EQ(Publish("csv").messages, "Unable to communicate on COM3\n");
  EXPECT_EQ(program.End(SIGTERM), 0);
}

TEST_F(PublishCommand, KeepsSecretsToItself) {
  Services services;
  services.Behave(Behaviour::Echo);
  AddKitchen();
  PointTo(services);
  HaveHistory();
  RunningProgram program(RunCommand());
  WaitForReading(program);
  std::string shown;
  for (const char* destination : {"pachube", "google", "powermeter", "twitter"}) {
    const Result result = Publish(destination);
    EXPECT_EQ(result.status, 1) << destination;
    shown += result.messages;
  }
  // The sign-in succeeds, and then the row is refused in words that hold its token.
  services.Behave(Behaviour::Echo, Services::RowsPath);
  shown += Publish("google").messages;
  EXPECT_THAT(shown, HasSubstr("<gsx:timestamp"));
  EXPECT_EQ(Publish("csv").status, 0);
  shown += program.Messages() + program.Output();
  for (const char* file : {"/cmdline", "/environ", "/comm", "/status"}) {
    shown += FileBytes("/proc/" + std::to_string(program.Process()) + file);
  }
  std::string store;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.Path())) {
    if (entry.is_symlink() || !entry.is_regular_file()) continue;
    const bool isStore = entry.path().filename().string().starts_with("wattlark.db");
    (isStore ? store : shown) += FileBytes(entry.path());
  }
  for (const std::string& file : {profile + "/wattlark.db", capture}) {
    EXPECT_EQ(ModeOf(file), 0600);
  }
  EXPECT_EQ(ModeOf(profile), 0700);
  // It is found where it belongs.
  EXPECT_THAT(store, HasSubstr(Services::Password));
  const QByteArray credentials = QByteArray(Services::UserName) + ":" + Services::Password;
  for (const std::string& secret :
       {std::string(Services::Password), std::string(Services::FeedKey),
        std::string(Services::DeviceToken), std::string(Services::SessionToken),
        credentials.toBase64().toStdString()}) {
    EXPECT_THAT(shown, testing::Not(HasSubstr(secret)));
  }
  EXPECT_EQ(program.End(SIGTERM), 0) << program.Messages();
}

}  // namespace
}  // namespace wattlark
