#include <gtest/gtest.h>

#include "CU/DebugSwitch.h"

TEST(DebugSwitch, IsFoundByNameAndSetByTheUserOrTheProgram)
{
    const std::pair<const char *, long> cases[] = {{nullptr, 0},
                                                   {" level = -0x10 ;Other=1", -16},
                                                   {"Other=1;\\Debug\\Test\\Level=7", 7},
                                                   {"\\debug\\test\\LEVEL", 1},
                                                   {";;Level=1;Level=010;", 10},
                                                   {"Level=0x80000001", -0x7FFFFFFF},
                                                   {"Level=", 0},
                                                   {"Level=5x;Levels=5", 0},
                                                   {"\\Debug\\Level=5;\\Debug\\Test\\", 0}};
    for (const auto &test : cases) {
        SetEnvironmentVariableA("CU_DEBUG", test.first);
        CCUDebugSwitch level("\\Debug\\Test", "Level"), other("\\Debug\\Other", "Level");
        other.Set(9);
        EXPECT_EQ(test.second, level.Get());
        SetEnvironmentVariableA("CU_DEBUG", "Level=12");  // too late
        EXPECT_EQ(test.second, level.Get());
        EXPECT_EQ(9, other.Get());
        EXPECT_EQ(&other, CCUDebugSwitch::Find(nullptr, "level"));
        EXPECT_EQ(&level, CCUDebugSwitch::Find("\\debug\\test", "Level"));
        EXPECT_EQ(nullptr, CCUDebugSwitch::Find("\\Debug", "Level"));
        EXPECT_EQ(&level, CCUDebugSwitch::GetFirst()->GetNext());
    }
    EXPECT_EQ(nullptr, CCUDebugSwitch::Find(nullptr, "Level"));
}
