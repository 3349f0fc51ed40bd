#include "ConfigCommand.h"

#include <memory>

#include "Command.h"
#include "Help.h"
#include "Report.h"
#include "velm/EnvConfigReader.h"
#include "velm/WindowsUtil.h"

namespace velmdiag {
namespace {

struct EnvOptions {
    std::string variable;
    bool json = false;
};

int RunEnv(const EnvOptions& options) {
    velm::EnvConfigReader reader;
    const std::string name = ToOem(options.variable);
    // The reader leaves the string as it is when the variable is not set: then the two differ.
    std::string value = "1";
    std::string other = "2";
    reader.GetIfOk(name, value);
    reader.GetIfOk(name, other);
    if (value != other) {
        throw Failure{options.variable + ": not set"};
    }
    Report report;
    report.Add("name", options.variable);
    report.Add("value", value);
    report.Print(options.json);
    return 0;
}

void AddConfigEnv(CLI::App& config, int& exitStatus) {
    const auto options = std::make_shared<EnvOptions>();
    CLI::App* const env = config.add_subcommand("env", "Reads an environment variable");
    Explain(env,
            "Prints an environment variable. The exit status is 0 when it is set, even to nothing, and 1 "
            "when it is not.",
            "velmdiag config env PATH");
    env->add_option("NAME", options->variable, "the variable")->required();
    env->add_flag("--json", options->json, "print one JSON object");
    env->callback([options, &exitStatus] { exitStatus = RunEnv(*options); });
}

}  // namespace

std::string ToOem(const std::string& utf8) {
    std::string oem;
    std::string back;
    if (velm::WindowsUtil::GetOemcpStringFromUtf8String(utf8, oem).IsFailed() ||
        velm::WindowsUtil::GetUtf8StringFromOemcpString(oem, back).IsFailed() || back != utf8) {
        throw Failure{utf8 + ": cannot be represented in the OEM code page of this system"};
    }
    return oem;
}

void AddConfigCommand(CLI::App& app, int& exitStatus) {
    CLI::App* const config =
        app.add_subcommand("config", "Reads settings from INI files, the environment and JSON");
    config->require_subcommand(1);
    AddConfigIni(*config, exitStatus);
    AddConfigEnv(*config, exitStatus);
    AddConfigJson(*config, exitStatus);
}

}  // namespace velmdiag
