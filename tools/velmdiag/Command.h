/// @file
/// The commands of velmdiag. Each has its own file, adds itself to the program and runs from its callback.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "ErrorTexts.h"

namespace velmdiag {

/// The exit status of a command that checks something, if the check was not possible.
constexpr int kNotDone = 2;

/// The exit status for an invalid command line.
constexpr int kWrongUsage = 2;

/// Thrown to end a command early: one line for standard error, and the exit status.
struct Failure {
    std::string message;
    int exitStatus = 1;
};

// Each adds its command. `exitStatus` receives the program's exit status when the command has run.
void AddAdapterCommand(CLI::App& app, int& exitStatus);
void AddAudioCommand(CLI::App& app, int& exitStatus);
void AddConfigCommand(CLI::App& app, int& exitStatus);
void AddDeviceCommand(CLI::App& app, int& exitStatus);
void AddErrorCommand(CLI::App& app, int& exitStatus);
void AddKeyCommand(CLI::App& app, int& exitStatus);
void AddLinkCommand(CLI::App& app, int& exitStatus);
void AddPictureCommand(CLI::App& app, int& exitStatus);
void AddPluginCommand(CLI::App& app, int& exitStatus);
void AddReportCommand(CLI::App& app, int& exitStatus);
void AddSystemCommand(CLI::App& app, int& exitStatus);
void AddUrlCommand(CLI::App& app, int& exitStatus);
void AddWatchCommand(CLI::App& app, int& exitStatus);

}  // namespace velmdiag
