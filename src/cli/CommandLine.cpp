#include "cli/CommandLine.h"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <new>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "app/WebPublishers.h"
#include "cli/Completion.h"
#include "cli/CompletionValues.h"
#include "cli/DefaultFiles.h"
#include "cli/DiscoverCommand.h"
#include "cli/MeterCommands.h"
#include "cli/PublishCommand.h"
#include "cli/ReplayCommand.h"
#include "cli/SettingCommands.h"
#include "cli/StoreCommands.h"
#include "platform/qt/SystemRegional.h"
#include "support/DisplayText.h"

namespace wattlark {

namespace {

constexpr const char* kVersionText = "wattlark " WATTLARK_VERSION;

/// The definition of the command line, and what one parse of it has found.
class CommandLine {
 public:
  CommandLine() {
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

  int Execute(int& argc, char** argv, const WindowRunner& runWindow,
              CommandEnvironment& environment) {
    if (argc > 1 && argv[1] == std::string_view(CompleteArgument)) {
      Complete({argv + 2, argv + argc}, environment);
      return ExitOK;
    }
    try {
      app_.parse(argc, argv);
      CheckRunOptions();
    } catch (const CLI::ParseError& error) {
      const bool failed = app_.exit(error, environment.output, environment.messages) != 0;
      return failed ? ExitBadInput : ExitOK;
    }
    if (profile_.empty()) profile_ = DefaultProfileFolder();
    if (profile_.empty()) {
      TellUser(environment.messages,
               "There is no home folder for the profile: choose one with --profile.");
      return ExitRefused;
    }
    // The profile's paths are stored: they must mean the same from every folder.
    std::error_code ignored;
    const auto absolute = std::filesystem::absolute(profile_, ignored);
    if (!ignored) profile_ = absolute.lexically_normal().string();
    return Dispatch(argc, argv, runWindow, environment);
  }

 private:
  // What the completion scripts of the shells ask for; no command for people.
  void Complete(const std::vector<std::string>& words, CommandEnvironment& environment) const {
    const auto values = [&](const CompletionQuestion& question) {
      return CompletionValues(question, environment.regional);
    };
    for (const std::string& word : CompletionsOf(app_, words, values)) {
      environment.output << PrintableText(word) << "\n";
    }
  }

  static CLI::Validator NotEmpty() {
    return {[](std::string& text) { return text.empty() ? "must not be empty" : std::string(); },
            ""};
  }

  void AddProfileOption(CLI::App& app) {
    app.add_option("--profile", profile_, "Folder of the profile (default: the user's own)")
        ->option_text("DIR")
        ->check(NotEmpty());
  }

  CLI::App* AddCommand(CLI::App& parent, const std::string& name, const std::string& description) {
    CLI::App* command = parent.add_subcommand(name, description);
    AddProfileOption(*command);
    return command;
  }

  void DefineRun() {
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

  void DefineReplay() {
    replayCommand_ = AddCommand(app_, "replay", "Replay a capture file and print the result");
    replayCommand_->add_flag("--json", json_, "Print one JSON document");
    replayCommand_->add_option("--csv", replay_.csvFile, "Append the rows of the CSV log to a file")
        ->option_text("FILE")
        ->check(NotEmpty());
    replayCommand_->add_flag("--save", replay_.save, "Save everything as a clean exit would");
    replayCommand_
        ->add_option("CAPTURE", replay_.captureFile, "The capture file; - is standard input")
        ->required()
        ->check(NotEmpty())
        ->option_text(" ");
  }

  void DefineMeter() {
    CLI::App* meter =
        AddCommand(app_, "meter", "Find, add, list or remove the meters of a profile");
    meter->require_subcommand(1);
    meterAdd_ = AddCommand(*meter, "add", "Add a meter");
    meterAdd_->add_option("--name", meter_.name, "Its name")->option_text("NAME")->required();
    meterAdd_->add_option("--address", meter_.address, "Address of its XBee, 0 to 32767")
        ->option_text("N")
        ->required();
    const auto add = [this](const char* option, std::optional<std::string>& value, const char* text,
                            const char* description) {
      meterAdd_->add_option(option, value, description)->option_text(text);
    };
    add("--type", meter_.type, "load|generator", "What it measures (default: load)");
    add("--voltage", meter_.voltage, "120|240", "Nominal voltage (default: 120)");
    add("--frequency", meter_.frequency, "50|60", "Nominal frequency (default: 60)");
    add("--alarm", meter_.alarm, "on|off", "Watch its power (default: off)");
    add("--alarm-upper", meter_.alarmUpper, "W", "Power above this raises an alarm");
    add("--alarm-lower", meter_.alarmLower, "W", "Power below this raises an alarm");
    add("--alarm-duration", meter_.alarmDuration, "S", "... when it lasts longer than this");
    add("--alarm-interval", meter_.alarmInterval, "S", "Time between two notices");
    meterDiscover_ =
        AddCommand(*meter, "discover", "Listen for meters and print the addresses that send");
    meterDiscover_
        ->add_option("--device", discover_.device,
                     "Serial device to listen on (default: the profile's)")
        ->option_text("PATH")
        ->check(NotEmpty());
    meterDiscover_->add_option("--seconds", discover_.seconds, "How long, 1 to 3600 (default: 10)")
        ->option_text("N")
        ->check(CLI::Range(1, 3600).description(""));
    meterDiscover_->add_flag("--json", discover_.json, "Print one JSON document");
    meterList_ = AddCommand(*meter, "list", "List the meters");
    meterList_->add_flag("--json", json_, "Print a JSON array");
    meterRemove_ = AddCommand(*meter, "remove", "Remove a meter and its statistics");
    meterRemove_->add_option("NAME", name_, "Its name")->required()->option_text(" ");
  }

  void DefineSetting() {
    CLI::App* setting = AddCommand(app_, "setting", "Show or change the settings of a profile");
    setting->require_subcommand(1);
    const char* naming =
        "NAME, or SECTION/NAME for PortDevices, ServiceEndpoints and WindowSettings";
    settingGet_ = AddCommand(*setting, "get", "Print a setting");
    settingGet_->add_option("NAME", name_, naming)->required()->option_text(" ");
    settingSet_ = AddCommand(*setting, "set", "Change a setting");
    // A value that begins with -h is a mistake to be told, not a call for help.
    settingSet_->set_help_flag("--help", "Print this help message and exit");
    settingSet_->add_option("NAME", name_, naming)->required()->option_text(" ");
    settingSet_
        ->add_option("VALUE", value_,
                     "Its value; write -- before one that begins with -. A single - reads it from "
                     "standard input, where no list of processes shows passwords and keys")
        ->required()
        ->option_text(" ");
    settingList_ = AddCommand(*setting, "list", "List all settings");
    settingList_->add_flag("--json", json_, "Print a JSON object, passwords included");
  }

  void DefinePublish() {
    std::vector<std::string> names;
    for (const PublishTargetName& known : PublishTargetNames()) names.emplace_back(known.name);
    publish_ = AddCommand(
        app_, "publish", "Have the running program publish the current loads now, and wait for it");
    publish_->add_option("DESTINATION", name_, "csv, pachube, google, powermeter or twitter")
        ->required()
        ->check(CLI::IsMember(names).description(""))
        ->option_text(" ");
  }

  void DefineStore() {
    CLI::App* store = AddCommand(app_, "store", "Move or keep settings and statistics");
    store->require_subcommand(1);
    const auto add = [this, store](const char* name, const char* description, const char* file,
                                   const std::string& details) {
      CLI::App* command = AddCommand(*store, name, description);
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
    storeExport_ = add("export", "Write settings and statistics as text, to move or read them",
                       "The file to write; - is standard output",
                       "The text has the format of the registry editor, version 5.00.\n" + written);
    addForce(storeExport_);
    storeImport_ = add(
        "import", "Take over settings and statistics from such a text",
        "The file, UTF-16 or UTF-8; - is standard input",
        "An export of a Windows registry will do as well, of an older release too.\n"
        "As with the registry editor, values replace those of the same name and all others stay.\n"
        "Either all of it is taken over or nothing; what belongs to other programs is left out.");
    storeImport_->add_flag("--replace", replaces_, "Remove first what the profile has stored");
    storeBackup_ =
        add("backup", "Copy the store, to keep it", "The file to write; restore reads it", written);
    addForce(storeBackup_);
    storeRestore_ = add("restore", "Put such a copy in the place of the store", "The copy",
                        "The store that is there now is kept under another name.");
  }

  /// A command is no run: it has no use for the options of one.
  void CheckRunOptions() const {
    const auto commands = app_.get_subcommands();
    if (commands.empty()) return;
    for (const char* option : {"--demo", "--device", "--record", "--headless", "--checkpoint"}) {
      if (app_.count(option) == 0) continue;
      throw CLI::ExcludesError(option, commands.front()->get_name());
    }
  }

  int Dispatch(int& argc, char** argv, const WindowRunner& runWindow,
               CommandEnvironment& environment) {
    if (*replayCommand_) {
      replay_.profileFolder = profile_;
      replay_.asJson = json_;
      return RunReplay(replay_, environment);
    }
    if (*meterAdd_) return AddMeter(profile_, meter_, environment);
    if (*meterDiscover_) return DiscoverMeters(profile_, discover_, environment);
    if (*meterList_) return ListMeters(profile_, json_, environment);
    if (*meterRemove_) return RemoveMeter(profile_, name_, environment);
    if (*settingGet_) return GetSetting(profile_, name_, environment);
    if (*settingSet_) return SetSetting(profile_, name_, value_, environment);
    if (*settingList_) return ListSettings(profile_, json_, environment);
    if (*publish_) return RunPublish(profile_, name_, environment);
    if (*storeExport_) return ExportStore(profile_, file_, replaces_, environment);
    if (*storeImport_) return ImportStore(profile_, file_, replaces_, environment);
    if (*storeBackup_) return BackUpStore(profile_, file_, replaces_, environment);
    if (*storeRestore_) return RestoreStore(profile_, file_, environment);
    run_.profileFolder = profile_;
    const bool showsWindow = runWindow && !run_.headless && HasDisplay();
    return showsWindow ? runWindow(argc, argv, run_) : RunHeadless(argc, argv, run_);
  }

  static bool HasDisplay() {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
      const char* value = std::getenv(name);
      if (value != nullptr && *value != '\0') return true;
    }
    return false;
  }

  static constexpr const char* kRunGroup = "Options of a run";

  CLI::App app_{
      "Electricity monitor for wireless plug-in meters. Runs it when no command is given.",
      "wattlark"};
  CLI::App* replayCommand_ = nullptr;
  CLI::App* meterAdd_ = nullptr;
  CLI::App* meterDiscover_ = nullptr;
  CLI::App* meterList_ = nullptr;
  CLI::App* meterRemove_ = nullptr;
  CLI::App* settingGet_ = nullptr;
  CLI::App* settingSet_ = nullptr;
  CLI::App* settingList_ = nullptr;
  CLI::App* publish_ = nullptr;
  CLI::App* storeExport_ = nullptr;
  CLI::App* storeImport_ = nullptr;
  CLI::App* storeBackup_ = nullptr;
  CLI::App* storeRestore_ = nullptr;

  std::string profile_;
  RunOptions run_;
  ReplayOptions replay_;
  NewMeter meter_;
  DiscoverOptions discover_;
  std::string name_;
  std::string value_;
  std::string file_;
  bool json_ = false;
  bool replaces_ = false;
};

}  // namespace

int RunCommandLine(int& argc, char** argv, const WindowRunner& runWindow) {
  CommandEnvironment environment{std::cin, std::cout, std::cerr, SystemRegionalSettings()};
  return RunCommandLine(argc, argv, runWindow, environment);
}

int RunCommandLine(int& argc, char** argv, const WindowRunner& runWindow,
                   CommandEnvironment& environment) {
  try {
    const int status = CommandLine().Execute(argc, argv, runWindow, environment);
    if (environment.output.flush()) return status;
    TellUser(environment.messages, "The output could not be written.");
  } catch (const std::bad_alloc&) {
    TellUser(environment.messages, "There is not enough memory.");
  } catch (const std::exception& error) {
    TellUser(environment.messages, error.what());
  }
  return ExitRefused;
}

}  // namespace wattlark
