#include <exception>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "Command.h"
#include "Help.h"
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
        return app.exit(error) == 0 ? 0 : kWrongUsage;
    } catch (const Failure& failure) {
        std::cout.flush();
        std::cerr << "velmdiag: " << failure.message << '\n';
        return failure.exitStatus;
    }
    return exitStatus;
}

}  // namespace
}  // namespace velmdiag

int main(int argc, char** argv) {
    try {
        return velmdiag::Run(velm::platform::Utf8CommandLine(argc, argv));
    } catch (const std::exception& exception) {
        std::cerr << "velmdiag: " << exception.what() << '\n';
        return velmdiag::kFailed;
    }
}
