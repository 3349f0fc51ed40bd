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
    Explain(
        command,
        "Opens a window with a Direct3D 9 device, a render target and a depth-stencil surface. In "
        "each round the device must refuse a reset while the surfaces exist and accept it after their "
        "loss, and a picture drawn into the rebuilt surfaces must read back exactly. A surface bound before "
        "the resource manager exists must block the reset until it is bound again.\nThe exit status is 0 "
        "if every round succeeds, 1 if one fails, 2 if there is no device.",
        "velmdiag device --rounds 20");
    command->add_option("--rounds", options->rounds, "number of losses and recoveries")
        ->check(CLI::Range(1U, 100000U))
        ->capture_default_str();
    command->add_flag("--json", options->json, "print one JSON object");
    command->callback([options, &exitStatus] { exitStatus = RunDevice(*options); });
}

}  // namespace velmdiag
