#include <gtest/gtest.h>

#include <string>

#include <windows.h>

#include "velm/AbortMessage.h"
#include "velm/Scheduling.h"

namespace velm {
namespace {

TEST(AbortMessage, AMessageOfAnyLengthReturns) {
    const std::string text(10'000, 'x');
    AbortMessage("%s", text.c_str());
    AbortMessage("%.99999999d", 5);
    AbortMessage(nullptr);
}

TEST(SchedulingProcess, RaisesThePriorityClass) {
    EXPECT_TRUE(SchedulingProcess::SetPriorityHigh());
    EXPECT_EQ(GetPriorityClass(GetCurrentProcess()), static_cast<DWORD>(HIGH_PRIORITY_CLASS));
    SetPriorityClass(GetCurrentProcess(), NORMAL_PRIORITY_CLASS);
}

}  // namespace
}  // namespace velm
