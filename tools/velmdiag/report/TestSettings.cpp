#include <windows.h>
#include <corecrt_wstdlib.h>
#include <picojson.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <system_error>

#include "Command.h"
#include "Environment.h"
#include "Path.h"
#include "SelfTests.h"
#include "velm/IniConfigReader.h"
#include "velm/JsonConfigReader.h"
#include "velm/WindowsUtil.h"

namespace velmdiag::report {
namespace {

std::string TemporaryName() {
    std::error_code failed;
    std::filesystem::path path = std::filesystem::temp_directory_path(failed);
    if (failed) {
        throw Failure{"there is no folder for temporary files: " + failed.message(), kNotDone};
    }
    path /= "velmdiag-" + std::to_string(std::random_device()()) + ".ini";
    const std::u8string utf8 = path.make_preferred().u8string();
    return {utf8.begin(), utf8.end()};
}

/// A temporary file, deleted by the destructor.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& text) : m_path(TemporaryName()) {
        std::ofstream file(PathOf(m_path), std::ios::binary);
        file << text << std::flush;
        if (!file) {
            throw Failure{"the folder for temporary files cannot be written to", kNotDone};
        }
    }
    ~TemporaryFile() {
        std::error_code ignored;
        std::filesystem::remove(PathOf(m_path), ignored);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string& Path() const { return m_path; }

private:
    std::string m_path;
};

int CheckIni() {
    const TemporaryFile file("[network]\r\nport = 443\r\nhost = play.velm.example\r\noffset = -42\r\n");
    std::string path;
    std::string back;
    if (velm::WindowsUtil::GetOemcpStringFromUtf8String(file.Path(), path).IsFailed() ||
        velm::WindowsUtil::GetUtf8StringFromOemcpString(path, back).IsFailed() || back != file.Path()) {
        throw Failure{"the path of the folder for temporary files cannot be represented in the OEM code page",
                      kNotDone};
    }
    velm::IniConfigReader reader;
    int port = 0;
    int missing = 0;
    std::string host;
    reader.GetIfOk(path, "network", "port", 1, port);
    reader.GetIfOk(path, "network", "missing", 7, missing);
    reader.GetIfOk(path, "network", "host", std::string("none"), host);
    Require(port == 443 && missing == 7 && host == "play.velm.example",
            "an INI file was not read as written");
    return 3;
}

int CheckJson() {
    const std::string text = R"({"list":[1,true,null,"K\u00f6ln"],"nested":{"number":-0.5}})";
    velm::JsonConfigReader reader;
    picojson::value value;
    std::string error;
    reader.Read(text);
    Require(reader.getJsonValue(value, error), "JSON was refused: " + error);
    picojson::value again;
    reader.Read(value.serialize());
    Require(reader.getJsonValue(again, error) && again == value, "JSON changed on its round trip");
    Require(value.get("list").get(3).get<std::string>() == "K\xC3\xB6ln", "JSON was not read as written");
    reader.Read(std::string(200, '['));
    Require(!reader.getJsonValue(value, error), "JSON nested 200 deep was accepted");
    return 3;
}

int CheckEnvironment() {
    _wputenv(L"VELMDIAG_SELF_TEST=K\u00f6ln \u20ac");
    const auto value = Variable("VELMDIAG_SELF_TEST");
    _wputenv(L"VELMDIAG_SELF_TEST=");
    Require(value == "K\xC3\xB6ln \xE2\x82\xAC", "an environment variable was not read as set");
    Require(!Variable("VELMDIAG_SELF_TEST"), "an environment variable still exists after its removal");
    return 2;
}

}  // namespace

std::string TestSettings(SelfTest& test) {
    const int ini = CheckIni();
    const int json = CheckJson();
    const int environment = CheckEnvironment();
    test.figures.Add("ini_checks", static_cast<long long>(ini));
    test.figures.Add("json_checks", static_cast<long long>(json));
    test.figures.Add("environment_checks", static_cast<long long>(environment));
    return "INI file, JSON and environment were read as written, in " +
           std::to_string(ini + json + environment) + " checks.";
}

}  // namespace velmdiag::report
