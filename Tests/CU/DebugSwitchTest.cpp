#include <gtest/gtest.h>

#include "CU/DebugSwitch.h"

TEST(DebugSwitch, IsFoundByNameAndSetByTheUserOrTheProgram)
{
    const struct
    {
        const char *setting;
        long value;
    } cases[] = {{nullptr, 0},
                 {"Level=3", 3},
                 {" level = -0x10 ;Other=1", -16},
                 {"Level", 1},
                 {"Other=1;\\Debug\\Test\\Level=7", 7},
                 {"\\debug\\test\\LEVEL", 1},
                 {";;Level=1;Level=2;", 2},
                 {"Level=010", 10},
                 {"Level=99999999999", 0x7FFFFFFF},
                 {"Level=0x80000001", -0x7FFFFFFF},
                 {"Level=", 0},
                 {"Level=5x", 0},
                 {"Level=0x", 0},
                 {"Levels=5", 0},
                 {"\\Debug\\Level=5", 0},
                 {"\\Debug\\Test\\", 0},
                 {"\\Debug\\Test", 0},
                 {"=", 0}};
    for (const auto &test : cases) {
        SetEnvironmentVariableA("CU_DEBUG", test.setting);
        CCUDebugSwitch level("\\Debug\\Test", "Level"), set("\\Debug\\Test", "Set");
        set.Set(9);
        EXPECT_EQ(test.value, level.Get()) << (test.setting ? test.setting : "null");
        SetEnvironmentVariableA("CU_DEBUG", "Set=12;Level=12");  // too late
        EXPECT_EQ(test.value, level.Get());
        EXPECT_EQ(9, set.Get());

        CCUDebugSwitch other("\\Debug\\Other", "Level");
        EXPECT_EQ(&other, CCUDebugSwitch::Find(nullptr, "level"));
        EXPECT_EQ(&level, CCUDebugSwitch::Find("\\debug\\test", "Level"));
        EXPECT_EQ(nullptr, CCUDebugSwitch::Find("\\Debug", "Level"));
        EXPECT_EQ(&other, CCUDebugSwitch::GetFirst());
        EXPECT_EQ(&set, other.GetNext());
    }
    EXPECT_EQ(nullptr, CCUDebugSwitch::Find(nullptr, "Level"));
    EXPECT_EQ(nullptr, CCUDebugSwitch::Find(nullptr, nullptr));
}
