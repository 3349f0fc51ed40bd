#include <memory>

#include "Command.h"
#include "DeviceRounds.h"
#include "Help.h"

namespace velmdiag {
namespace {

struct DeviceOptions {
    unsigned int rounds = 100;
    bool json = false;
};

int RunDevice(const DeviceOptions& options) {
    const DeviceOutcome outcome = RunDeviceRounds(options.rounds, true);
    Report report;
    AddDeviceOutcome(report, options.rounds, outcome);
    report.Print(options.json);
    CheckDeviceReferences(outcome);
    return 0;
}

}  // namespace

void AddDeviceCommand(CLI::App& app, int& exitStatus) {
    const auto options = std::make_shared<DeviceOptions>();
    CLI::App* const command =
        app.add_subcommand("device", "Loses and recovers a Direct3D 9 device on screen");
    Explain(command,
            "Opens a window with a Direct3D 9 device, a render target and a depth-stencil surface. In "
            "each round the device must refuse a reset while the surfaces live, accept it after their "
            "loss, and draw a picture into the rebuilt ones that reads back pixel by pixel. A surface bound "
            "before the resource manager exists must keep the device from being reset until it is bound "
            "again.\nEnds with "
            "0 when every round did, 1 when one did not, 2 when there is no device.",
            "velmdiag device --rounds 20");
    command->add_option("--rounds", options->rounds, "losses and recoveries")
        ->check(CLI::Range(1U, 100000U))
        ->capture_default_str();
    command->add_flag("--json", options->json, "print one JSON object");
    command->callback([options, &exitStatus] { exitStatus = RunDevice(*options); });
}

}  // namespace velmdiag
