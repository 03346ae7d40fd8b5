// SPDX-License-Identifier: Apache-2.0
#include "options/options.h"

#include "options/command_options.h"

#include <trellant/base/nearest_word.h>
#include <trellant/base/printable_text.h>
#include <trellant/version.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace trellant::cli {

namespace {

/// Examples first: most readers look for the line that does what they need.
class HelpPage final : public CLI::Formatter {
  public:
    std::string make_help(const CLI::App* app, std::string name,
                          CLI::AppFormatMode mode) const override {
        if (mode == CLI::AppFormatMode::Sub) {
            return CLI::Formatter::make_help(app, name, mode);
        }
        std::string page = app->get_description() + "\n\n";
        if (!app->get_footer().empty()) {
            page += "Examples:\n" + app->get_footer() + "\n\n";
        }
        const CLI::App* const parent = app->get_parent();
        page += make_usage(app, parent == nullptr ? name : parent->get_name() + " " + name);
        page += make_positionals(app);
        page += make_groups(app, mode);
        page += make_subcommands(app, mode);
        return page;
    }
};

class Parser {
  public:
    Parser() {
        app_.formatter(std::make_shared<HelpPage>());
        app_.set_help_flag("-h,--help", "Show this page");
        app_.set_version_flag("--version", "trellant " + std::string(versionText))
            ->description("Show the version");
        app_.require_subcommand(1);
        app_.fallthrough();
        app_.add_flag("-q,--quiet", quiet_, "Say nothing but errors");
        app_.add_flag("-v,--verbose", verbose_, "Say more, for finding a fault");
        app_.footer(
            "  trellant info mix.omf                          what is in it, on one screen\n"
            "  trellant list clips mix.omf --csv > mix.csv    every clip, for a sheet\n"
            "  trellant list losses mix.omf                   what could not be carried over\n"
            "  trellant extract mix.omf --to mix-audio        take the audio out\n"
            "  trellant export mix.omf --to mix --format aaf  a session for today's tools\n"
            "  trellant check mix.omf                         is it what a post house wants?");
        commands_ = {addInfo(app_),   addList(app_),      addExtract(app_), addExport(app_),
                     addRender(app_), addCheck(app_),     addPage(app_),    addPeaks(app_),
                     addScan(app_),   addCatalogue(app_), addDump(app_),    addValidate(app_)};
    }

    CommandLine read(int argc, const char* const* argv) {
        CommandLine line;
        if (argc < 2 || argv[1] == std::string_view("help")) {
            return helpFor(argc > 2 ? argv[2] : "");
        }
        try {
            app_.parse(argc, argv);
        } catch (const CLI::CallForVersion& call) {
            line.text = std::string(call.what()) + "\n";
            return line;
        } catch (const CLI::CallForHelp&) {
            line.text = asked().help();
            return line;
        } catch (const CLI::ParseError& error) {
            const std::string word = firstWord(argc, argv);
            if (word == "help") {
                return helpFor("");
            }
            if (app_.get_subcommands().empty() && !word.empty()) {
                return unknownCommand(word);
            }
            return wrongUse(error.what());
        }
        if (quiet_ && verbose_) {
            return wrongUse("--quiet and --verbose exclude each other");
        }
        line.verbosity = quiet_     ? Verbosity::quiet
                         : verbose_ ? Verbosity::verbose
                                    : Verbosity::normal;
        line.call = chosen();
        return line;
    }

  private:
    [[nodiscard]] static CommandLine page(const CLI::App& command) {
        CommandLine line;
        line.text = command.help();
        return line;
    }

    /// `trellant help` and `trellant help list`.
    [[nodiscard]] CommandLine helpFor(const std::string& name) const {
        if (name.empty() || name == "help" || name == "-h" || name == "--help") {
            return page(app_);
        }
        for (const CLI::App* const command : app_.get_subcommands({})) {
            if (command->get_name() == name) {
                return page(*command);
            }
        }
        return unknownCommand(name);
    }

    [[nodiscard]] CommandLine unknownCommand(const std::string& word) const {
        std::vector<std::string> names{"help"};
        for (const CLI::App* const command : app_.get_subcommands({})) {
            names.push_back(command->get_name());
        }
        const auto meant = nearestWord(word, names);
        return wrongUse("there is no command \"" + printableText(word) + "\"" +
                        (meant ? ". Did you mean \"" + *meant + "\"?" : ""));
    }

    /// The first argument that is no option.
    [[nodiscard]] static std::string firstWord(int argc, const char* const* argv) {
        for (int i = 1; i < argc; ++i) {
            if (argv[i][0] != '-') {
                return argv[i];
            }
        }
        return {};
    }

    [[nodiscard]] const CLI::App& asked() const {
        const auto chosen = app_.get_subcommands();
        return chosen.empty() ? app_ : *chosen.front();
    }

    [[nodiscard]] std::optional<Call> chosen() const {
        for (const CommandOptions& command : commands_) {
            if (command.app->parsed()) {
                return command.call();
            }
        }
        return std::nullopt;
    }

    [[nodiscard]] CommandLine wrongUse(const std::string& message) const {
        CommandLine line;
        const std::string name = asked().get_name();
        line.text = message + "\nTry: trellant " +
                    (&asked() == &app_ || name.empty() ? "" : name + " ") + "-h";
        line.status = ExitStatus::wrongUse;
        return line;
    }

    CLI::App app_{
        "Looks into OMF files, takes their audio out, writes sessions, and tells what could not be "
        "carried over.",
        "trellant"};
    std::vector<CommandOptions> commands_;
    bool quiet_ = false;
    bool verbose_ = false;
};

}  // namespace

CommandLine readCommandLine(int argc, const char* const* argv) {
    return Parser().read(argc, argv);
}

}  // namespace trellant::cli
