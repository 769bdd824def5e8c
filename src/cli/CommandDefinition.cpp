#include "cli/CommandDefinition.h"

#include <algorithm>
#include <optional>

#include "app/WebPublishers.h"
#include "cli/PublishCommand.h"
#include "cli/SettingCommands.h"
#include "cli/StoreCommands.h"

namespace wattlark {

namespace {

constexpr const char* kVersionText = "wattlark " WATTLARK_VERSION;
constexpr const char* kRunGroup = "Options of a run";

CLI::Validator NotEmpty() {
  return {[](std::string& text) { return text.empty() ? "must not be empty" : std::string(); }, ""};
}

}  // namespace

CommandDefinition::CommandDefinition() {
  app_.set_version_flag("--version", kVersionText);
  app_.footer(
      "Data goes to standard output, messages to standard error.\n"
      "Exit status: 0 done, 1 refused or failed, 2 bad arguments or a bad file of input.");
  app_.require_subcommand(0, 1);
  AddProfileOption(app_);
  DefineRun();
  DefineReplay();
  DefineMeter();
  DefineSetting();
  DefinePublish();
  DefineStore();
}

const CommandDefinition::Action* CommandDefinition::Command() const {
  const auto given =
      std::ranges::find_if(commands_, [](const auto& command) { return command.first->parsed(); });
  return given == commands_.end() ? nullptr : &given->second;
}

void CommandDefinition::CheckRunOptions() const {
  const auto commands = app_.get_subcommands();
  if (commands.empty()) return;
  for (const char* option : {"--demo", "--device", "--record", "--headless", "--checkpoint"}) {
    if (app_.count(option) == 0) continue;
    throw CLI::ExcludesError(option, commands.front()->get_name());
  }
}

void CommandDefinition::AddProfileOption(CLI::App& app) {
  app.add_option("--profile", profile_, "Folder of the profile (default: the user's own)")
      ->option_text("DIR")
      ->check(NotEmpty());
}

CLI::App* CommandDefinition::AddCommand(CLI::App& parent, const std::string& name,
                                        const std::string& description, Action action) {
  CLI::App* command = parent.add_subcommand(name, description);
  AddProfileOption(*command);
  if (action) commands_.emplace_back(command, std::move(action));
  return command;
}

void CommandDefinition::DefineRun() {
  app_.add_flag("--demo", run_.demo, "Fabricate readings in this run instead of receiving any")
      ->group(kRunGroup);
  app_.add_option("--device", run_.device, "Serial device to receive from in this run")
      ->option_text("PATH")
      ->check(NotEmpty())
      ->group(kRunGroup);
  app_.add_option("--record", run_.recordFile, "Append all that is received to a capture file")
      ->option_text("FILE")
      ->check(NotEmpty())
      ->group(kRunGroup);
  app_.add_flag("--headless", run_.headless, "Show no window")->group(kRunGroup);
  // For tests that cannot wait five minutes: without a group, help does not show it.
  app_.add_option("--checkpoint", run_.checkpointSeconds, "Seconds between two saves in this run")
      ->check(CLI::Range(1, 300))
      ->group("");
}

void CommandDefinition::DefineReplay() {
  CLI::App* replay = AddCommand(app_, "replay", "Replay a capture file and print the result",
                                [this](CommandEnvironment& environment) {
                                  replay_.profileFolder = profile_;
                                  replay_.asJson = json_;
                                  return RunReplay(replay_, environment);
                                });
  replay->add_flag("--json", json_, "Print one JSON document");
  replay->add_option("--csv", replay_.csvFile, "Append the rows of the CSV log to a file")
      ->option_text("FILE")
      ->check(NotEmpty());
  replay->add_flag("--save", replay_.save, "Save everything as a clean exit would");
  replay->add_option("CAPTURE", replay_.captureFile, "The capture file; - is standard input")
      ->required()
      ->check(NotEmpty())
      ->option_text(" ");
}

void CommandDefinition::DefineMeter() {
  CLI::App* meter = AddCommand(app_, "meter", "Find, add, list or remove the meters of a profile");
  meter->require_subcommand(1);
  DefineMeterAdd(*meter);
  DefineMeterDiscover(*meter);
  CLI::App* list = AddCommand(*meter, "list", "List the meters", [this](auto& environment) {
    return ListMeters(profile_, json_, environment);
  });
  list->add_flag("--json", json_, "Print a JSON array");
  CLI::App* remove =
      AddCommand(*meter, "remove", "Remove a meter and its statistics",
                 [this](auto& environment) { return RemoveMeter(profile_, name_, environment); });
  remove->add_option("NAME", name_, "Its name")->required()->option_text(" ");
}

void CommandDefinition::DefineMeterAdd(CLI::App& meter) {
  CLI::App* command = AddCommand(meter, "add", "Add a meter", [this](auto& environment) {
    return AddMeter(profile_, meter_, environment);
  });
  command->add_option("--name", meter_.name, "Its name")->option_text("NAME")->required();
  command->add_option("--address", meter_.address, "Address of its XBee, 0 to 32767")
      ->option_text("N")
      ->required();
  const auto add = [command](const char* option, std::optional<std::string>& value,
                             const char* text, const char* description) {
    command->add_option(option, value, description)->option_text(text);
  };
  add("--type", meter_.type, "load|generator", "What it measures (default: load)");
  add("--voltage", meter_.voltage, "120|240", "Nominal voltage (default: 120)");
  add("--frequency", meter_.frequency, "50|60", "Nominal frequency (default: 60)");
  add("--alarm", meter_.alarm, "on|off", "Watch its power (default: off)");
  add("--alarm-upper", meter_.alarmUpper, "W", "Power above this raises an alarm");
  add("--alarm-lower", meter_.alarmLower, "W", "Power below this raises an alarm");
  add("--alarm-duration", meter_.alarmDuration, "S", "... when it lasts longer than this");
  add("--alarm-interval", meter_.alarmInterval, "S", "Time between two notices");
}

void CommandDefinition::DefineMeterDiscover(CLI::App& meter) {
  CLI::App* command = AddCommand(
      meter, "discover", "Listen for meters and print the addresses that send",
      [this](auto& environment) { return DiscoverMeters(profile_, discover_, environment); });
  command
      ->add_option("--device", discover_.device,
                   "Serial device to listen on (default: the profile's)")
      ->option_text("PATH")
      ->check(NotEmpty());
  command->add_option("--seconds", discover_.seconds, "How long, 1 to 3600 (default: 10)")
      ->option_text("N")
      ->check(CLI::Range(1, 3600).description(""));
  command->add_flag("--json", discover_.json, "Print one JSON document");
}

void CommandDefinition::DefineSetting() {
  CLI::App* setting = AddCommand(app_, "setting", "Show or change the settings of a profile");
  setting->require_subcommand(1);
  const char* naming = "NAME, or SECTION/NAME for PortDevices, ServiceEndpoints and WindowSettings";
  CLI::App* get = AddCommand(*setting, "get", "Print a setting", [this](auto& environment) {
    return GetSetting(profile_, name_, environment);
  });
  get->add_option("NAME", name_, naming)->required()->option_text(" ");
  CLI::App* set = AddCommand(*setting, "set", "Change a setting", [this](auto& environment) {
    return SetSetting(profile_, name_, value_, environment);
  });
  // A value that begins with -h is a mistake to be told, not a call for help.
  set->set_help_flag("--help", "Print this help message and exit");
  set->add_option("NAME", name_, naming)->required()->option_text(" ");
  set->add_option("VALUE", value_,
                  "Its value; write -- before one that begins with -. A single - reads it from "
                  "standard input, where no list of processes shows passwords and keys")
      ->required()
      ->option_text(" ");
  CLI::App* list = AddCommand(*setting, "list", "List all settings", [this](auto& environment) {
    return ListSettings(profile_, json_, environment);
  });
  list->add_flag("--json", json_, "Print a JSON object, passwords included");
}

void CommandDefinition::DefinePublish() {
  std::vector<std::string> names;
  for (const PublishTargetName& known : PublishTargetNames()) names.emplace_back(known.name);
  AddCommand(app_, "publish",
             "Have the running program publish the current loads now, and wait for it",
             [this](auto& environment) { return RunPublish(profile_, name_, environment); })
      ->add_option("DESTINATION", name_, "csv, pachube, google, powermeter or twitter")
      ->required()
      ->check(CLI::IsMember(names).description(""))
      ->option_text(" ");
}

void CommandDefinition::DefineStore() {
  CLI::App* store = AddCommand(app_, "store", "Move or keep settings and statistics");
  store->require_subcommand(1);
  const auto add = [this, store](const char* name, const char* description, const char* file,
                                 const std::string& details, Action action) {
    CLI::App* command = AddCommand(*store, name, description, std::move(action));
    command->add_option("FILE", file_, file)->required()->check(NotEmpty())->option_text(" ");
    command->footer(details + "\n\n" + command->get_footer());
    return command;
  };
  const auto addForce = [this](CLI::App* command) {
    command->add_flag("--force", replaces_, "Replace a file that is there already");
  };
  const std::string written =
      "The file holds passwords as the store has them; only you can read it (mode 0600).\n"
      "A program may be running: it saves every five minutes, and what it last saved counts.";
  addForce(add(
      "export", "Write settings and statistics as text, to move or read them",
      "The file to write; - is standard output",
      "The text has the format of the registry editor, version 5.00.\n" + written,
      [this](auto& environment) { return ExportStore(profile_, file_, replaces_, environment); }));
  CLI::App* import = add(
      "import", "Take over settings and statistics from such a text",
      "The file, UTF-16 or UTF-8; - is standard input",
      "An export of a Windows registry will do as well, of an older release too.\n"
      "As with the registry editor, values replace those of the same name and all others stay.\n"
      "Either all of it is taken over or nothing; what belongs to other programs is left out.",
      [this](auto& environment) { return ImportStore(profile_, file_, replaces_, environment); });
  import->add_flag("--replace", replaces_, "Remove first what the profile has stored");
  addForce(add(
      "backup", "Copy the store, to keep it", "The file to write; restore reads it", written,
      [this](auto& environment) { return BackUpStore(profile_, file_, replaces_, environment); }));
  add("restore", "Put such a copy in the place of the store", "The copy",
      "The store that is there now is kept under another name.",
      [this](auto& environment) { return RestoreStore(profile_, file_, environment); });
}

}  // namespace wattlark
