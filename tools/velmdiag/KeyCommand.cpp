#include <iomanip>
#include <memory>
#include <sstream>

#include "Command.h"
#include "Help.h"
#include "Report.h"
#include "velm/KeyStringToByteData.h"

namespace velmdiag {
namespace {

constexpr int kKeySize = 32;

int RunKey(const std::string& text, bool json) {
    unsigned char key[kKeySize] = {};
    const velm::ErrorCode result =
        velm::KeyStringToByteData::Translate(static_cast<int>(text.size()), text.c_str(), kKeySize, key);
    if (result.IsFailed()) {
        throw Failure{"the key has " + std::to_string(text.size()) +
                      " characters and needs 64: " + NameOf(result)};
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
    report.Add("hexadecimal", text.find_first_not_of("0123456789abcdefABCDEF") >= 2 * kKeySize);
    report.Add("ignored_characters", static_cast<long long>(text.size() - 2 * kKeySize));
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
    CLI::App* const command = app.add_subcommand("key", "Translates a key of 64 hexadecimal digits");
    Explain(command,
            "Prints the 32 bytes that the first 64 characters of HEX stand for. Characters that are no "
            "hexadecimal digits count as the low four bits of their codes.",
            "velmdiag key 0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef");
    command->add_option("HEX", options->text, "the key")->required();
    command->add_flag("--json", options->json, "print one JSON object");
    command->callback([options, &exitStatus] { exitStatus = RunKey(options->text, options->json); });
}

}  // namespace velmdiag
