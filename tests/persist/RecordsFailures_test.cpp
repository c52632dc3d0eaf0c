// Streams and records when memory runs out in the midst of them.
#include <gtest/gtest.h>

#include "raylume/persist/RLData.h"
#include "tests/persist/Archives.h"
#include "tests/persist/StreamBuilder.h"
#include "tests/platform/FailingAllocations.h"
#include "tests/platform/ScopedEnvironment.h"

namespace {

using namespace persist_tests;
using failing_allocations::blocks;

constexpr long kMostAllocations = 10000;

// A user without a folder of views: what files cost is no concern of the records.
class RecordsFailures : public testing::Test {
protected:
    /// Lets each allocation of the call fail in turn. None of its blocks may stay behind.
    template <class Call>
    void failEach(Call call)
    {
        ASSERT_TRUE(call());
        long failures = 0;
        for (bool failed = true; failed; ++failures) {
            ASSERT_LT(failures, kMostAllocations);
            const long before = blocks();
            const auto outcome = failing_allocations::callWithFailure(failures, call);
            ASSERT_FALSE(outcome.isWrong) << failures;
            ASSERT_EQ(blocks(), before) << failures;
            ASSERT_TRUE(call()) << failures;
            failed = outcome.failed;
        }
        EXPECT_GT(failures, 5);
    }

private:
    ScopedVariable home_{"HOME", std::nullopt};
    ScopedVariable data_{"XDG_DATA_HOME", std::nullopt};
};

TEST_F(RecordsFailures, WhileLoadingLeaveNothingBehind)
{
    for (const Form form : {Form::kNarrow, Form::kWide}) {
        const std::string bytes = sampleStream(10, form, std::nullopt).get();
        failEach([&bytes] {
            RLData data;
            return load(data, bytes).empty() && data.getMaskMaterials().size() == 2 &&
                   data.getSceneData()->floorType == "reflect";
        });
    }
}

TEST_F(RecordsFailures, WhileStoringLeaveTheRecordAsItWas)
{
    RLData data;
    load(data, sampleStream(10, Form::kWide, std::nullopt).get());
    const std::string whole = stored(data);
    failEach([&] { return stored(data) == whole; });
}

TEST_F(RecordsFailures, OfALongStringLeaveItsTargetAsItWas)
{
    RLStringTag whole(1, std::string(300'000, 'x'));
    const std::string bytes = stored(whole);
    failEach([&bytes] {
        RLStringTag tag;
        Loading loading(bytes);
        try {
            tag.serialize(loading.archive());
        } catch (const std::bad_alloc&) {
            EXPECT_TRUE(tag.tag.empty());
            throw;
        }
        return tag.tag.size() == 300'000;
    });
}

}  // namespace
