// Reads the input as an INI file: an ordinary key, and keys and sections taken from the input itself.
#include "Fuzz.h"
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
    VELM_FUZZ_DEMAND(velm::WindowsUtil::GetWstringFromUtf8String(value, wide) == 0U && wide.size() <= 1023);
    VELM_FUZZ_DEMAND(velm::WindowsUtil::GetUtf8StringFromWstring(wide, back) == 0U && back == value);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = TextOf(data, size);
    const velm::test::TemporaryFile file = FileOf(text);
    Read(file.Name(), "s", "k");
    Read(file.Name(), "", text.substr(0, text.find('=')));
    Read(file.Name(), text.substr(0, 8), text.substr(size / 2));
    return 0;
}
