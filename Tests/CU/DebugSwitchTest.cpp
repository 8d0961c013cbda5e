#include <gtest/gtest.h>

#include "CU/DebugSwitch.h"

namespace {

TEST(DebugSwitch, UserSetsItThroughTheEnvironment)
{
    const struct
    {
        const char *setting;
        long value;
    } cases[] = {
        {nullptr, 0},
        {"", 0},
        {"Level=3", 3},
        {" level = -0x10 ;Other=1", -16},
        {"Other=1;\\Debug\\Test\\Level=7", 7},
        {"\\debug\\test\\LEVEL", 1},
        {"Level", 1},
        {"Level=1;Level=2", 2},
        {"Level=010", 10},
        {"Level=99999999999", 0x7FFFFFFF},
        {";;Level=5;", 5},
        {"Level=", 0},
        {"Level=x", 0},
        {"Level=5x", 0},
        {"Level=0x", 0},
        {"Levels=5", 0},
        {"\\Debug\\Level=5", 0},
        {"\\Debug\\Test\\", 0},
        {"\\Debug\\Test", 0},
        {"=", 0},
        {"\\", 0},
    };
    for (const auto &test : cases) {
        SetEnvironmentVariableA("CU_DEBUG", test.setting);
        CCUDebugSwitch level("\\Debug\\Test", "Level");
        EXPECT_EQ(test.value, level.Get()) << (test.setting ? test.setting : "null");
    }
    // Read once; what the program sets holds.
    CCUDebugSwitch set("\\Debug\\Test", "Set"), read("\\Debug\\Test", "Read");
    SetEnvironmentVariableA("CU_DEBUG", "Set=1;Read=1");
    set.Set(9);
    read.Get();
    SetEnvironmentVariableA("CU_DEBUG", "Set=2;Read=2");
    EXPECT_EQ(9, set.Get());
    EXPECT_EQ(1, read.Get());
}

TEST(DebugSwitch, ProgramFindsAndListsThem)
{
    CCUDebugSwitch one("\\Debug\\Test", "One");
    {
        CCUDebugSwitch two("\\Debug\\Test", "Two"), other("\\Debug\\Other", "One");
        EXPECT_EQ(&two, CCUDebugSwitch::Find(nullptr, "two"));
        EXPECT_EQ(&one, CCUDebugSwitch::Find("\\debug\\test", "One"));
        EXPECT_EQ(&other, CCUDebugSwitch::Find("\\Debug\\Other", "One"));
        EXPECT_EQ(nullptr, CCUDebugSwitch::Find("\\Debug", "One"));
    }
    EXPECT_EQ(nullptr, CCUDebugSwitch::Find(nullptr, "Two"));
    EXPECT_EQ(nullptr, CCUDebugSwitch::Find(nullptr, nullptr));
    int nFound = 0;
    for (CCUDebugSwitch *pSwitch = CCUDebugSwitch::GetFirst(); pSwitch;
         pSwitch = pSwitch->GetNext())
        nFound += pSwitch == &one;
    EXPECT_EQ(1, nFound);
}

}  // namespace
