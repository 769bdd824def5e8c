#include "sim/Options.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <string_view>

namespace wattlark {
namespace {

constexpr int kBadArguments = 2;
constexpr int kMaximumAddress = 0x7FFF;
constexpr std::size_t kMaximumSplit = 65535;
constexpr std::int64_t kMaximumDuration = 100LL * 366 * 86400;
constexpr std::int64_t kDefaultCaptureDuration = 60;
constexpr std::string_view kDefaultStart = "2026-01-01T00:00:00";

struct BadArgument : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The options as they were typed.
struct Typed {
  std::string link;
  std::string capture;
  std::string duration;
  std::string start;
  std::vector<std::string> meters = {"Kitchen:5:612", "Office:6:84", "Solar:7:350:generator"};
  std::string frequency = "60";
  std::string period = "2";
  std::string noise = "0.005";
  std::string powerFactor = "0.95";
  std::string garbage = "0";
  std::string badChecksum = "0";
  std::string unknown = "0";
  std::string split = "0";
  std::string seed = "1";
  bool vary = false;
  bool noVary = false;
};

template <typename Number>
Number ReadNumber(std::string_view option, std::string_view text, Number lowest, Number highest) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool isRead = error == std::errc() && end == text.data() + text.size();
  // Written so that "nan", which is neither below nor above anything, is refused.
  if (isRead && number >= lowest && number <= highest) return number;
  std::ostringstream message;
  message << option << ": \"" << text << "\" is not a number from " << lowest << " to " << highest;
  throw BadArgument(message.str());
}

std::vector<std::string> SplitAtColons(const std::string& text) {
  std::vector<std::string> parts(1);
  for (const char c : text) {
    if (c == ':')
      parts.emplace_back();
    else
      parts.back() += c;
  }
  return parts;
}

MeterSettings ReadMeter(const std::string& text, const MeterSettings& common) {
  const std::string where = "--meter " + text;
  const std::vector<std::string> parts = SplitAtColons(text);
  if (parts.size() < 3 || parts[0].empty())
    throw BadArgument(where + ": expected NAME:ADDRESS:WATTS[:generator][:240]");
  MeterSettings meter = common;
  meter.name = parts[0];
  meter.address = static_cast<std::uint16_t>(
      ReadNumber<int>(where + ": address", parts[1], 0, kMaximumAddress));
  for (std::size_t i = 3; i < parts.size(); ++i) {
    if (parts[i] == "generator")
      meter.isGenerator = true;
    else if (parts[i] == "240")
      meter.nominalVoltage = 240.0;
    else
      throw BadArgument(where + ": \"" + parts[i] + "\" is neither \"generator\" nor \"240\"");
  }
  meter.watts = ReadNumber<double>(where + ": watts", parts[2], 0.0, meter.MaximumWatts());
  return meter;
}

std::vector<MeterSettings> ReadMeters(const Typed& typed) {
  MeterSettings common;
  if (typed.frequency != "50" && typed.frequency != "60")
    throw BadArgument("--frequency: \"" + typed.frequency + "\" is neither 50 nor 60");
  common.frequency = typed.frequency == "50" ? 50.0 : 60.0;
  common.powerFactor = ReadNumber<double>("--power-factor", typed.powerFactor, 0.5, 1.0);
  common.noise = ReadNumber<double>("--noise", typed.noise, 0.0, 0.2);
  common.varies = typed.capture.empty() ? !typed.noVary : typed.vary;

  std::vector<MeterSettings> meters;
  for (const std::string& text : typed.meters) {
    meters.push_back(ReadMeter(text, common));
    for (std::size_t i = 0; i + 1 < meters.size(); ++i) {
      if (meters[i].address == meters.back().address)
        throw BadArgument("--meter " + text + ": " + meters[i].name + " has that address already");
    }
  }
  return meters;
}

DateTime LastMoment() {
  return DateTime::FromCivil({9999, 12, 31, 23, 59, 59, 999}).value_or(DateTime());
}

Options Check(const Typed& typed) {
  Options options;
  options.link = typed.link;
  options.capture = typed.capture;
  if (!typed.duration.empty())
    options.durationSeconds =
        ReadNumber<std::int64_t>("--duration", typed.duration, 1, kMaximumDuration);
  else if (!typed.capture.empty())
    options.durationSeconds = kDefaultCaptureDuration;
  const std::string start(typed.start.empty() ? kDefaultStart : typed.start);
  const std::optional<DateTime> startTime = DateTime::FromIso(start);
  if (!startTime)
    throw BadArgument("--start: \"" + start + "\" is not a time as YYYY-MM-DDTHH:MM:SS");
  options.start = *startTime;
  if (startTime->PlusSeconds(options.durationSeconds.value_or(0)) > LastMoment())
    throw BadArgument("--start: the capture would end after the year 9999");
  options.meters = ReadMeters(typed);
  options.line.garbageRate = ReadNumber<double>("--garbage", typed.garbage, 0.0, 1.0);
  options.line.badChecksumRate = ReadNumber<double>("--bad-checksum", typed.badChecksum, 0.0, 1.0);
  options.line.unknownRate = ReadNumber<double>("--unknown", typed.unknown, 0.0, 1.0);
  options.line.splitMaximum = ReadNumber<std::size_t>("--split", typed.split, 0, kMaximumSplit);
  options.periodSeconds = ReadNumber<double>("--period", typed.period, 0.05, 86400.0);
  options.seed = ReadNumber<std::uint64_t>("--seed", typed.seed, 0, UINT64_MAX);
  return options;
}

std::string RefuseEmpty(const std::string& text) {
  return text.empty() ? "a name is missing" : "";
}

void Declare(CLI::App& app, Typed& typed) {
  auto* link = app.add_option("--link", typed.link, "Create PATH as a link to the pseudo-terminal")
                   ->type_name("PATH")
                   ->check(RefuseEmpty);
  auto* capture = app.add_option("--capture", typed.capture,
                                 "Write a capture to FILE (- = standard output) and end")
                      ->type_name("FILE")
                      ->check(RefuseEmpty)
                      ->excludes(link);
  app.add_option("--duration", typed.duration,
                 "End after so many seconds (default: 60 with --capture, else never)")
      ->type_name("SECONDS");
  app.add_option("--start", typed.start,
                 "Local time at which the capture starts (default: 2026-01-01T00:00:00)")
      ->type_name("LOCALTIME")
      ->needs(capture);
  app.add_option("--meter", typed.meters,
                 "A meter, NAME:ADDRESS:WATTS[:generator][:240]; may be repeated (default: "
                 "Kitchen:5:612, Office:6:84, Solar:7:350:generator)")
      ->type_name("METER")
      ->allow_extra_args(false);
  app.add_option("--frequency", typed.frequency, "Mains frequency, 50 or 60 (default: 60)")
      ->type_name("HERTZ");
  app.add_option("--period", typed.period, "Time between a meter's bursts (default: 2)")
      ->type_name("SECONDS");
  app.add_option("--noise", typed.noise,
                 "Noise as a share of the waves' amplitude, 0 to 0.2 (default: 0.005)")
      ->type_name("FRACTION");
  app.add_option("--power-factor", typed.powerFactor, "0.5 to 1 (default: 0.95)")
      ->type_name("FACTOR");
  app.add_option("--seed", typed.seed, "Seed of everything random (default: 1)")
      ->type_name("NUMBER");
  auto* vary = app.add_flag("--vary", typed.vary,
                            "Let loads drift slowly (the default except with --capture)");
  app.add_flag("--no-vary", typed.noVary, "Keep loads constant")->excludes(vary);
  app.add_option("--garbage", typed.garbage, "Share of frames with garbage before them, 0 to 1")
      ->type_name("RATE");
  app.add_option("--bad-checksum", typed.badChecksum,
                 "Share of frames with a wrong checksum, 0 to 1")
      ->type_name("RATE");
  app.add_option("--unknown", typed.unknown,
                 "Share of frames after one from an unknown address, 0 to 1")
      ->type_name("RATE");
  app.add_option("--split", typed.split, "Cut frames into pieces of at most so many bytes")
      ->type_name("MAXBYTES");
}

}  // namespace

ParsedOptions ParseOptions(const std::vector<std::string>& arguments) {
  CLI::App app(
      "Simulates meters on a serial port: writes their radio's frames to a pseudo-terminal, or to "
      "a file as a capture.\nExit status: 0 stopped or done, 1 a device or file failed, 2 bad "
      "arguments.",
      "wattlark-sim");
  Typed typed;
  Declare(app, typed);
  try {
    // The parser takes its arguments from the back.
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    return {Check(typed), 0, ""};
  } catch (const CLI::CallForHelp&) {
    return {std::nullopt, 0, app.help()};
  } catch (const CLI::ParseError& error) {
    return {std::nullopt, kBadArguments, error.what()};
  } catch (const BadArgument& error) {
    return {std::nullopt, kBadArguments, error.what()};
  }
}

}  // namespace wattlark
