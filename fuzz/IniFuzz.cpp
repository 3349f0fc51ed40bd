// Reads the input as an INI file: an ordinary key, and keys and sections taken from the input itself.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "ScratchFile.h"
#include "velm/IniConfigReader.h"
#include "velm/WindowsUtil.h"

namespace {

void Read(const std::string& path, const std::string& section, const std::string& key) {
    velm::IniConfigReader reader;
    std::string value = "old";
    reader.GetIfOk(path, section, key, "default", value);
    int number = 0;
    reader.GetIfOk(path, section, key, 7, number);
    // The value is valid UTF-8 of at most 1023 UTF-16 units.
    std::wstring wide;
    std::string back;
    if (velm::WindowsUtil::GetWstringFromUtf8String(value, wide).IsFailed() || wide.size() > 1023 ||
        velm::WindowsUtil::GetUtf8StringFromWstring(wide, back).IsFailed() || back != value) {
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    static ScratchFile file;
    const std::string& path = file.Write(text);
    Read(path, "s", "k");
    Read(path, "", text.substr(0, text.find('=')));
    Read(path, text.substr(0, 8), text.substr(size / 2));
    return 0;
}
