// Compound files of other programs, and another program's view of ours.
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>

#include "CompoundFileTools.h"
#include "ScopedEnvironment.h"
#include "TemporaryFolder.h"
#include "raylume/persist/RLData.h"
#include "tests/persist/StreamBuilder.h"

namespace {

using namespace compound_tests;
using persist_tests::sampleStream;
using Json = nlohmann::json;

const std::string kFolder = RAYLUME_COMPOUND_SAMPLES;

std::string node(const std::string& command, const std::string& argument)
{
    const std::string line =
        std::string(RAYLUME_NODE) + " " + kFolder + "/cfb.js " + command + " '" + argument + "'";
    std::FILE* pipe = popen(line.c_str(), "r");
    if (!pipe)
        return "";
    std::string text;
    char piece[4096];
    while (const std::size_t count = std::fread(piece, 1, sizeof(piece), pipe))
        text.append(piece, count);
    EXPECT_EQ(pclose(pipe), 0) << line;
    return text;
}

Json listOf(const std::string& file)
{
    return Json::parse(node("list", file));
}

std::uint32_t sumOf(const std::string& bytes)
{
    std::uint32_t hash = 0x811C9DC5u;
    for (const char byte : bytes)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x01000193u;
    return hash;
}

/// Finds every element of the list in the file, with the same bytes.
void expectElements(const std::string& file, const Json& list)
{
    const Storage root = openFile(file);
    ASSERT_TRUE(root);
    for (const Json& element : list) {
        Storage holder;
        const Json& path = element["path"];
        IStorage* storage = root.get();
        for (std::size_t i = 0; i + (element["stream"] ? 1u : 0u) < path.size(); ++i) {
            holder = openIn(*storage, platform::fromUtf8(path[i].get<std::string>()).c_str());
            ASSERT_TRUE(holder) << element;
            storage = holder.get();
        }
        if (!element["stream"])
            continue;
        const auto name = platform::fromUtf8(path.back().get<std::string>());
        const std::string bytes = bytesOf(*storage, name.c_str());
        EXPECT_EQ(bytes.size(), element["size"].get<std::size_t>()) << file << element;
        EXPECT_EQ(sumOf(bytes), element["sum"].get<std::uint32_t>()) << file << element;
    }
}

std::vector<std::string> others()
{
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(kFolder + "/excel"))
        files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    std::filesystem::create_directories(kFolder + "/made");
    node("make", kFolder + "/made");
    for (const auto& entry : std::filesystem::directory_iterator(kFolder + "/made"))
        files.push_back(entry.path());
    return files;
}

TEST(OtherPrograms, WriteFilesThatAreReadAlike)
{
    const auto files = others();
    ASSERT_GE(files.size(), 8u);
    for (const std::string& file : files) {
        const Json list = listOf(file);
        ASSERT_FALSE(list.empty()) << file;
        expectElements(file, list);
    }
}

TEST(OtherPrograms, ReadTheirFilesAfterARewriteHere)
{
    const TemporaryFolder folder;
    for (const std::string& file : others()) {
        const std::string copy = folder / "copy";
        std::filesystem::copy_file(file, copy, std::filesystem::copy_options::overwrite_existing);
        Json wanted = listOf(copy);
        {
            const Storage root = openFile(copy, true);
            const Storage store = createIn(*root.get(), L"Raylume added");
            put(*store.get(), L"ShaderData", pattern(9000));
            ASSERT_RESULT(0, root->Commit(0));
        }
        const Json seen = listOf(copy);
        wanted.push_back({{"path", {"Raylume added"}}, {"stream", false}, {"size", 0}, {"sum", sumOf("")}});
        wanted.push_back({{"path", {"Raylume added", "ShaderData"}},
                          {"stream", true},
                          {"size", 9000},
                          {"sum", sumOf(pattern(9000))}});
        ASSERT_EQ(seen.size(), wanted.size()) << file;
        for (const Json& element : wanted)
            EXPECT_NE(std::find(seen.begin(), seen.end(), element), seen.end()) << file << element;
    }
}

TEST(OtherPrograms, WriteDocumentsWhoseSettingsAreRead)
{
    const TemporaryFolder folder;
    const ScopedVariable data("XDG_DATA_HOME", folder.path());
    std::string large = sampleStream(10).get();
    large.append(9000, 'x');  // What follows the settings is nobody's.
    for (const std::string& bytes : {sampleStream(10).get(), large}) {
        const std::string file = folder.write("settings", bytes);
        node("settings", file);
        const std::unique_ptr<RLData> settings(RLData::ReadRaylumeData((file + ".cfb").c_str()));
        ASSERT_NE(settings, nullptr);
        EXPECT_EQ(settings->getStorageVersion(), 10u);
        EXPECT_EQ(settings->getMaskMaterials().back().getMaterialName(), "material2");
        ASSERT_TRUE(settings->hasSceneData());
        EXPECT_EQ(settings->getSceneData()->getFloorType(), "reflect");
    }
}

TEST(OtherPrograms, ReadLargeFilesOfOurs)
{
    const TemporaryFolder folder;
    const std::string file = folder / "large";
    {
        const Storage root = createFile(file);
        put(*root.get(), L"Large", pattern(9000000));
        const Storage inner = createIn(*root.get(), L"Inner");
        for (int i = 0; i < 300; ++i)
            put(*inner.get(), (L"n" + std::to_wstring(i)).c_str(),
                pattern(static_cast<std::size_t>(i) * 20));
    }
    const Json list = listOf(file);
    EXPECT_EQ(list.size(), 302u);
    expectElements(file, list);
}

}  // namespace
