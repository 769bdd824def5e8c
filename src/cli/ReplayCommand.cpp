#include "cli/ReplayCommand.h"

#include <cerrno>
#include <fstream>
#include <ostream>
#include <system_error>

#include "cli/DefaultFiles.h"
#include "cli/MeterJson.h"
#include "cli/ProfileStore.h"
#include "cli/ReplaySession.h"
#include "cli/RunOptions.h"
#include "cli/TextTable.h"
#include "support/DisplayText.h"
#include "support/modFormat.h"

namespace wattlark {

namespace {

using Json = nlohmann::ordered_json;

/// Empty when every line is good, else what is wrong.
std::string ReadCaptureFile(const std::string& file, std::istream& standardInput,
                            Capture& capture) {
  if (file == "-") return ReadCapture(standardInput, "standard input", capture);
  errno = 0;
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return file + ": " + std::generic_category().message(errno != 0 ? errno : EIO);
  return ReadCapture(stream, file, capture);
}

Json ResultJson(const ReplaySession& session) {
  Json json;
  const FrameCounts frames = session.Frames();
  json["frames"] = {{"completed", frames.completed},
                    {"decoded", frames.decoded},
                    {"delivered", frames.delivered}};
  json["errors"] = session.Errors();
  json["notices"] = Json::array();
  for (const AlarmNotice& notice : session.Notices()) {
    json["notices"].push_back(
        {{"time", MomentToJson(notice.time)}, {"meter", notice.meter}, {"text", notice.line}});
  }
  json["meters"] = Json::array();
  for (const auto& meter : session.Profile().Meters()) {
    json["meters"].push_back(MeterToJson(*meter, session.Now()));
  }
  json["total"] = MeterToJson(session.Profile().Total(), session.Now());
  return json;
}

void AddMeterRow(TextTable& table, const clsKillAWatt& meter, bool isTotal,
                 const ReplaySession& session) {
  const RegionalSettings& regional = session.Regional();
  const MeterStatistics& statistics = meter.Statistics();
  const auto number = [&](double value, int decimals) {
    return FormatNumberAuto(regional, value, decimals, "---");
  };
  const bool isReceiving = !session.Now().IsNever() && meter.IsReceiving(session.Now());
  table.AddRow({meter.Name(), isTotal ? "" : std::to_string(meter.XBeeAddress()),
                number(meter.ShownVolts(), 1), number(meter.ShownAmps(), 2),
                FormatPower(regional, meter.ShownWatts()),
                FormatEnergy(regional, statistics.Usage(Today)),
                FormatEnergy(regional, statistics.Usage(ToDate)),
                FormatPower(regional, statistics.Peak(SinceReset)), meter.Timestamp().ToIso(),
                isReceiving ? "yes" : "no"});
}

std::string ResultText(const ReplaySession& session) {
  const FrameCounts frames = session.Frames();
  std::string text = "Frames: " + std::to_string(frames.completed) + " completed, " +
                     std::to_string(frames.decoded) + " decoded, " +
                     std::to_string(frames.delivered) + " delivered\n\n";
  constexpr auto kRight = TextTable::Align::Right;
  TextTable table({{"Meter"},
                   {"Address", kRight},
                   {"Volts", kRight},
                   {"Amps", kRight},
                   {"Power", kRight},
                   {"Today", kRight},
                   {"To date", kRight},
                   {"Peak", kRight},
                   {"Last reading"},
                   {"Receiving"}});
  for (const auto& meter : session.Profile().Meters()) AddMeterRow(table, *meter, false, session);
  AddMeterRow(table, session.Profile().Total(), true, session);
  text += table.Text();
  if (!session.Notices().empty()) text += "\nAlarm notices:\n";
  for (const AlarmNotice& notice : session.Notices()) {
    text += notice.time.ToIso() + "  " + PrintableText(notice.line) + "\n";
  }
  if (!session.Errors().empty()) text += "\nErrors:\n";
  for (const std::string& error : session.Errors()) text += PrintableText(error) + "\n";
  return text;
}

}  // namespace

int RunReplay(const ReplayOptions& options, CommandEnvironment& environment) {
  Capture capture;
  const std::string problem = ReadCaptureFile(options.captureFile, environment.input, capture);
  if (!problem.empty()) {
    TellUser(environment.messages, problem);
    return ExitBadInput;
  }
  ProfileStore store(options.profileFolder);
  const bool isOpen = options.save ? store.OpenForChanges(environment.messages)
                                   : store.OpenCopy(environment.messages);
  if (!isOpen) return ExitRefused;

  ReplaySession session(store.Port(), environment.regional, capture,
                        DefaultCSVFilename(options.profileFolder), environment.messages);
  if (!session.Load()) return ExitRefused;
  session.Run(capture, options.csvFile);
  const std::string result = options.asJson ? JsonText(ResultJson(session)) : ResultText(session);
  if (options.save && !session.Save()) {
    TellUser(environment.messages, session.Errors().back());
    return ExitRefused;
  }
  environment.output << result;
  return ExitOK;
}

}  // namespace wattlark
