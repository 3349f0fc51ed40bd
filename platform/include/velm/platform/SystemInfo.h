#pragma once

#include <string>
#include <vector>

namespace velm::platform {

/// Returns name and version of the operating system.
std::string SystemName();

/// Returns the processor's brand name; empty when it is unknown.
std::string ProcessorName();

/// Returns the size of the physical memory in bytes; 0 when it is unknown.
unsigned long long PhysicalMemory();

/// Returns the name of the clock behind the performance counter.
std::string ClockSource();

/// A display that is part of the desktop.
struct Display {
    std::string name;
    std::string description;
    unsigned int width = 0;  ///< in pixels, like the height
    unsigned int height = 0;
    unsigned int refresh = 0;  ///< in hertz; 0 or 1 for the hardware's default
    bool primary = false;
};

/// Returns the displays; none when the system cannot tell.
std::vector<Display> Displays();

/// The current user's names and home folders, in every form that occurs in paths and settings.
struct UserIdentity {
    std::vector<std::string> names;
    std::vector<std::string> homes;  ///< folders
};

UserIdentity CurrentUser();

/// The file of a loaded library; a member is empty when it is unknown or the library is not loaded.
struct LibraryFile {
    std::string path;  ///< UTF-8
    std::string version;
};

/// Finds a loaded library by its target name, such as "VelmUtil".
LibraryFile FindLibrary(const std::string& name);

/// Returns why this thread's last attempt to load a library failed, without a final full stop.
/// @param code  what GetLastError returned after it
/// @return the system's text for the code on Windows, the dynamic loader's message on Linux; UTF-8; may be
/// empty
std::string LoadErrorText(unsigned long code);

}  // namespace velm::platform
