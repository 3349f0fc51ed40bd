#include <algorithm>
#include <iomanip>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>

#include "Command.h"
#include "Help.h"
#include "Report.h"
#include "velm/KeyStringToByteData.h"

namespace velmdiag {
namespace {

constexpr int kKeySize = 32;  // in bytes

std::size_t CountCharacters(std::string_view utf8) {
    return static_cast<std::size_t>(std::ranges::count_if(
        utf8, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

/// Throws Failure unless the text is a key. The library would accept any 64 characters. The message does not
/// show the key, which may be a secret.
void CheckKey(std::string_view text) {
    const std::size_t size = CountCharacters(text);
    const std::size_t wrong = text.find_first_not_of("0123456789abcdefABCDEF");
    if (wrong != std::string_view::npos) {
        const std::string place = std::to_string(CountCharacters(text.substr(0, wrong)) + 1);
        throw Failure{"not a key: character " + place + " of " + std::to_string(size) +
                      " is not a hexadecimal digit"};
    }
    if (size != 2 * kKeySize) {
        throw Failure{"not a key: " + std::to_string(size) + " hexadecimal digits instead of " +
                      std::to_string(2 * kKeySize)};
    }
}

int RunKey(const std::string& text, bool json) {
    CheckKey(text);
    unsigned char key[kKeySize] = {};
    const velm::ErrorCode result =
        velm::KeyStringToByteData::Translate(static_cast<int>(text.size()), text.c_str(), kKeySize, key);
    if (result.IsFailed()) {
        throw Failure{"the key cannot be decoded: " + Describe(result)};
    }
    picojson::array bytes;
    std::ostringstream hex;
    for (const unsigned char byte : key) {
        bytes.emplace_back(static_cast<double>(byte));
        hex << (bytes.size() > 1 ? " " : "") << std::hex << std::setw(2) << std::setfill('0')
            << static_cast<unsigned int>(byte);
    }
    Report report;
    report.Add("bytes", picojson::value(bytes), hex.str());
    report.Print(json);
    return 0;
}

}  // namespace

void AddKeyCommand(CLI::App& app, int& exitStatus) {
    struct KeyOptions {
        std::string text;
        bool json = false;
    };
    const auto options = std::make_shared<KeyOptions>();
    CLI::App* const command = app.add_subcommand("key", "Decodes a key of 64 hexadecimal digits");
    Explain(
        command,
        "Prints the 32 bytes of a key of 64 hexadecimal digits. Anything else is refused with exit status 1, "
        "even if the library would decode it. Error messages never show the key.",
        "velmdiag key 0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef");
    command->add_option("HEX", options->text, "the key")->required();
    command->add_flag("--json", options->json, "print one JSON object");
    command->callback([options, &exitStatus] { exitStatus = RunKey(options->text, options->json); });
}

}  // namespace velmdiag
