#include "tools/SideFile.h"

#include <gtest/gtest.h>

#include "tests/platform/TemporaryFolder.h"

namespace {

using Counts = std::map<std::wstring, std::size_t>;

TEST(SideFile, tells_the_different_times_of_each_component)
{
    const TemporaryFolder folder;
    folder.write("_rlAnimData.xml", R"(<r>
        <COMPONENT Name="outside"><VisualTransform Time="1"/></COMPONENT>
        <ANIMATION>
        <COMPONENT Name="a"><VisualTransform Time="1"/><VisualTransform Time="1.0"/></COMPONENT>
        <COMPONENT Name="b"><VisualTransform Time="1"/><VisualTransform Time="2"/></COMPONENT>
        <COMPONENT Name="a"><w><VisualTransform Time="1"/><VisualTransform Time="3"/></w>
            <VisualTransform Time="x"/><VisualTransform/><VisualTransform Time="4"/></COMPONENT>
        <COMPONENT/>
        </ANIMATION></r>)");
    EXPECT_EQ(tool::appearanceKeysInFile(folder / "any.gltf"), (Counts{{L"", 0}, {L"a", 3}, {L"b", 2}}));
}

TEST(SideFile, that_is_missing_or_broken_tells_nothing)
{
    const TemporaryFolder folder;
    EXPECT_TRUE(tool::appearanceKeysInFile(folder / "any.gltf").empty());
    folder.write("_rlAnimData.xml", R"(<r><ANIMATION><COMPONENT Name="a"/></ANIMATION>)");
    EXPECT_TRUE(tool::appearanceKeysInFile(folder / "any.gltf").empty());
}

}  // namespace
