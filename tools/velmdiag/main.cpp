#include <exception>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "Command.h"
#include "Help.h"
#include "Output.h"
#include "Text.h"
#include "velm/core/ErrorRegistry.h"
#include "velm/platform/CommandLine.h"

namespace velmdiag {

std::string NameOf(velm::ErrorCode code) {
    if (const velm::ErrorCodeInfo* const info = velm::FindErrorCode(code.GetCode())) {
        return info->name;
    }
    std::ostringstream number;
    number << "0x" << std::hex << std::uppercase << code.GetCode();
    return number.str();
}

namespace {

constexpr int kFailed = 1;

void PrintFailure(const std::string& message) {
    std::cerr << "velmdiag: " << Printable(message) << '\n';
}

int Run(std::vector<std::string> arguments) {
    CLI::App app("Puts the velm libraries to work on real input.", "velmdiag");
    app.require_subcommand(1);
    app.allow_windows_style_options(false);  // "/" begins a path, also on Windows
    int exitStatus = 0;
    AddAdapterCommand(app, exitStatus);
    AddAudioCommand(app, exitStatus);
    AddConfigCommand(app, exitStatus);
    AddDeviceCommand(app, exitStatus);
    AddKeyCommand(app, exitStatus);
    AddLinkCommand(app, exitStatus);
    AddPictureCommand(app, exitStatus);
    AddPluginCommand(app, exitStatus);
    AddSystemCommand(app, exitStatus);
    AddUrlCommand(app, exitStatus);
    AddWatchCommand(app, exitStatus);
    AddHelp(app);
    try {
        // The parser takes the arguments from the back.
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend() - 1));
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            return app.exit(error);  // help or the like
        }
        PrintFailure(error.what());
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
    const std::string problem = FinishOutput();  // before the first message, which would flush, too
    if (!failed.empty()) {
        PrintFailure(failed);
    }
    if (!problem.empty()) {
        PrintFailure("standard output cannot be written: " + problem);
        return exitStatus != 0 ? exitStatus : kOutputLost;
    }
    return exitStatus;
}
