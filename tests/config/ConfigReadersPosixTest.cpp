#include <gtest/gtest.h>

#include "File.h"
#include "velm/EnvConfigReader.h"
#include "velm/IniConfigReader.h"
#include "velm/posix/Control.h"

namespace velm {
namespace {

class ConfigReadersPosix : public testing::Test {
protected:
    ~ConfigReadersPosix() override { posix::Reset(); }
};

TEST_F(ConfigReadersPosix, NamesThatCannotBeConvertedLeaveTheValueAlone) {
    const std::string path = WriteFile("posix.ini", "[s]\nk=5\n");
    for (unsigned int name = 0; name < 4; ++name) {  // file, section, key, default
        std::string text = "old";
        posix::FailCall("MultiByteToWideChar", ERROR_INVALID_PARAMETER, 2 * name);
        IniConfigReader().GetIfOk(path, "s", "k", "d", text);
        EXPECT_EQ(text, "old") << name;
        int number = 12345;
        posix::FailCall("MultiByteToWideChar", ERROR_INVALID_PARAMETER, 2 * (name % 3));
        IniConfigReader().GetIfOk(path, "s", "k", 9, number);
        EXPECT_EQ(number, 12345) << name;
    }
    std::string text = "old";
    posix::FailCall("MultiByteToWideChar", ERROR_INVALID_PARAMETER);
    EnvConfigReader().GetIfOk("PATH", text);
    EXPECT_EQ(text, "old");
}

TEST_F(ConfigReadersPosix, ValuesThatCannotBeConvertedLeaveTheValueAlone) {
    const std::string path = WriteFile("posix.ini", "[s]\nk=5\n");
    for (const char* const call : {"_wdupenv_s", "WideCharToMultiByte"}) {
        std::string text = "old";
        // The stand-in for the variable's look-up uses the second of these calls itself, twice.
        posix::FailCall(call, ERROR_INVALID_PARAMETER, *call == 'W' ? 2 : 0);
        EnvConfigReader().GetIfOk("PATH", text);
        EXPECT_EQ(text, "old") << call;
    }
    std::string text = "old";
    posix::FailCall("GetPrivateProfileStringW", ERROR_GEN_FAILURE);
    IniConfigReader().GetIfOk(path, "s", "k", "d", text);
    EXPECT_EQ(text, "");
}

}  // namespace
}  // namespace velm
