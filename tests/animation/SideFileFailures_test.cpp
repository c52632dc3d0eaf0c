// Memory that runs out at every single allocation.
#include <gtest/gtest.h>

#include "tests/animation/SideFile.h"
#include "tests/platform/FailingAllocations.h"

namespace {

std::string fileOf(const std::string& start)
{
    const Tag root =
        tag("ROOT", {animation({component("first", {transform("0"), transform("1")}),
                                component("a name that takes memory of its own",
                                          {visualTransform("0"), visualTransform("1"),
                                           component("inner", {visualState("0", "1"), transform("2")})}),
                                viewport({camera("0"), viewPoint("0")}), light({lightKey("0", 1, 2)}),
                                light({lightKey("1", 1, 6), lightKey("0", 2, 3)})})});
    return start + root.text();
}

std::size_t keyCount(const dlAnimTrackSet& set)
{
    std::size_t count =
        set.visualTransforms.size() + set.transforms.size() + set.viewKeys.size() + set.visualStates.size();
    for (const auto& track : set.lightTracks) {
        count += track.second.size();
    }
    return count;
}

// What is there is as it is in the end; only the entry that grows may have less.
bool isPartOf(const AnimationTracks& tracks, const AnimationTracks& whole)
{
    for (const auto& [name, set] : tracks) {
        const auto found = whole.find(name);
        if (found == whole.end()) {
            return false;
        }
        const bool grows = name == L"@LIGHTS";
        if (grows ? keyCount(set) > keyCount(found->second) : keyCount(set) != keyCount(found->second)) {
            return false;
        }
    }
    return true;
}

class FailingAllocation : public testing::TestWithParam<const char*> {};

TEST_P(FailingAllocation, IsAnAnswerAndLosesNothingElse)
{
    const std::string xml = fileOf(GetParam());
    AnimationTracks whole;
    ASSERT_TRUE(readSideFile(xml, whole));
    ASSERT_EQ(whole.size(), 6u);
    bool failed = true;
    for (long successes = 0; failed; ++successes) {
        AnimationTracks tracks;
        TableXmlService service([&] { return std::make_unique<BytesInMemory>(xml); });
        failing_allocations::start(successes);
        bool escaped = false;
        bool result = false;
        try {
            result = readAnimation(L"", tracks, service);
        } catch (...) {
            escaped = true;
        }
        failed = failing_allocations::stop();
        ASSERT_FALSE(escaped) << successes;
        ASSERT_EQ(result, !failed) << successes;
        ASSERT_TRUE(isPartOf(tracks, whole)) << successes;
    }
}

INSTANTIATE_TEST_SUITE_P(Encodings, FailingAllocation,
                         testing::Values("", "<?xml version='1.0' encoding='windows-1252'?>"));

}  // namespace
