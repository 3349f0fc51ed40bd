#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "Command.h"
#include "Help.h"
#include "Output.h"
#include "Suggestion.h"
#include "Text.h"
#include "velm/platform/CommandLine.h"

namespace velmdiag {

namespace {

constexpr int kFailed = 1;

void PrintFailure(const std::string& message) {
    std::cerr << "velmdiag: " << Printable(message) << '\n';
}

/// The suggestion that follows an unknown word in a message; empty if no known word is close.
std::string SuggestionFor(const std::string& word, const CLI::App& app) {
    std::vector<std::string> known;
    if (word.starts_with("--")) {
        for (const CLI::Option* const option : app.get_options()) {
            for (const std::string& name : option->get_lnames()) {
                known.push_back("--" + name);
            }
        }
    } else {
        for (const CLI::App* const command : app.get_subcommands({})) {
            known.push_back(command->get_name());
        }
    }
    const std::string meant = Suggest(word, known);
    return meant.empty() ? "" : "; did you mean " + meant + "?";
}

/// Throws Failure if the word in the place of a command or subcommand is not one.
void RefuseUnknownCommand(const CLI::App& app, const std::vector<std::string>& arguments,
                          std::size_t at = 1) {
    const bool takesCommands = !app.get_subcommands({}).empty();
    if (!takesCommands || at >= arguments.size() || arguments[at].starts_with('-')) {
        return;
    }
    for (const CLI::App* const command : app.get_subcommands({})) {
        if (command->get_name() == arguments[at]) {
            return RefuseUnknownCommand(*command, arguments, at + 1);
        }
    }
    throw Failure{arguments[at] + ": no such command" + SuggestionFor(arguments[at], app), kWrongUsage};
}

/// The message for an invalid command line.
std::string MessageOf(const CLI::ParseError& error, const CLI::App& app) {
    std::string message = error.what();
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
        const CLI::App* command = &app;
        while (!command->get_subcommands().empty()) {
            command = command->get_subcommands().front();
        }
        for (const std::string& word : app.remaining(true)) {
            message += SuggestionFor(word, *command);
        }
    }
    return message;
}

int Run(std::vector<std::string> arguments) {
    CLI::App app("Runs the velm libraries on real input.", "velmdiag");
    app.require_subcommand(1);
    app.allow_windows_style_options(false);  // "/" starts a path, even on Windows
    int exitStatus = 0;
    AddAdapterCommand(app, exitStatus);
    AddAudioCommand(app, exitStatus);
    AddConfigCommand(app, exitStatus);
    AddDeviceCommand(app, exitStatus);
    AddErrorCommand(app, exitStatus);
    AddKeyCommand(app, exitStatus);
    AddLinkCommand(app, exitStatus);
    AddPictureCommand(app, exitStatus);
    AddPluginCommand(app, exitStatus);
    AddReportCommand(app, exitStatus);
    AddSystemCommand(app, exitStatus);
    AddUrlCommand(app, exitStatus);
    AddWatchCommand(app, exitStatus);
    AddHelp(app);
    RefuseUnknownCommand(app, arguments);
    try {
        // The parser expects the arguments in reverse order, without the program's name.
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend() - 1));
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            return app.exit(error);  // --help, --version and the like
        }
        PrintFailure(MessageOf(error, app));
        std::cerr << "Run with --help for more information.\n";
        return kWrongUsage;
    }
    return exitStatus;
}

}  // namespace
}  // namespace velmdiag

int main(int argc, char** argv) {
    using namespace velmdiag;
    int exitStatus = kFailed;
    std::string failed;
    try {
        exitStatus = Run(velm::platform::Utf8CommandLine(argc, argv));
    } catch (const Failure& failure) {
        failed = failure.message;
        exitStatus = failure.exitStatus;
    } catch (const std::exception& exception) {
        failed = exception.what();
    }
    // Before any message: printing one flushes standard output, too.
    const std::string problem = FinishOutput();
    if (!failed.empty()) {
        PrintFailure(failed);
    }
    if (!problem.empty()) {
        PrintFailure("cannot write to standard output: " + problem);
        return exitStatus != 0 ? exitStatus : kOutputLost;
    }
    return exitStatus;
}
