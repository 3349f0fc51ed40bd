#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "velm/AbortMessage.h"
#include "velm/Scheduling.h"

namespace velm::process_services_test {

TEST(ProcessServices, SurvivesLongMessagesRaisesPriority) {
    AbortMessage("%s", std::string(10'000, 'x').c_str());
    AbortMessage("%.99999999d", 5);
    AbortMessage(nullptr);
    EXPECT_TRUE(SchedulingProcess::SetPriorityHigh());
    EXPECT_EQ(GetPriorityClass(GetCurrentProcess()), static_cast<DWORD>(HIGH_PRIORITY_CLASS));
    SetPriorityClass(GetCurrentProcess(), NORMAL_PRIORITY_CLASS);
}

}  // namespace velm::process_services_test
