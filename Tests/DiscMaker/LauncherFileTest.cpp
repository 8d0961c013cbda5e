#include <gtest/gtest.h>

#include "File/LauncherFile.h"
#include "File/FileBytes.h"
#include "Model/Blob.h"
#include "Resource.h"
#include "Support/ImportHook.h"
#include "Support/TemporaryDirectory.h"

namespace {

CBlob Launcher()
{
    return ReadFileBytes(TEST_LAUNCHER);
}

}  // namespace

// The linker lays the section out as we do, so that nothing changes but what was edited.
TEST(LauncherFile, WritesResourcesAsTheToolsDo)
{
    CPeImage image;
    CCUString sWhat;
    ASSERT_TRUE(image.Read(*Launcher(), sWhat)) << sWhat;
    CResourceTree tree;
    ASSERT_TRUE(tree.Read(image.Resources(), image.ResourcesAddress()));
    EXPECT_TRUE(*Launcher() == image.WithResources(tree));
    CProblems problems;
    const auto shipped = CLauncherFile::Read("a", Launcher(), problems);
    const auto other = CLauncherFile::Read("b", ReadFileBytes(TEST_OTHER_LAUNCHER), problems);
    const CBlob made = shipped->WithSkin(other->Skin(), problems);
    EXPECT_EQ(0u, problems.size());
    EXPECT_TRUE(*made == *ReadFileBytes(TEST_OTHER_LAUNCHER));
}
