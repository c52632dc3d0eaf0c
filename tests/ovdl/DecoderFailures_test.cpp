// Memory that is refused at any point of a read.
#include <gtest/gtest.h>

#include "raylume/platform/Files.h"
#include "raylume/platform/Reference.h"
#include "reader/formats/ovdl/CompoundStreams.h"
#include "reader/formats/ovdl/OvdlFile.h"
#include "tests/ovdl/DocumentBuffers.h"
#include "tests/platform/FailingAllocations.h"
#include "tests/platform/TemporaryFolder.h"

namespace ovdl_tests {
namespace {

using failing_allocations::callWithFailure;
using failing_allocations::Outcome;

// Lets each allocation of a read fail in turn, to the read in which none did. Nothing may stay behind.
template <class Read>
void failEachAllocation(Read read)
{
    ASSERT_TRUE(read());
    long successes = 0;
    for (bool failed = true; failed; ++successes) {
        const long blocks = failing_allocations::blocks();
        const Outcome outcome = callWithFailure(successes, read);
        failed = outcome.failed;
        ASSERT_FALSE(outcome.isWrong && !failed) << successes;
        ASSERT_EQ(failing_allocations::blocks(), blocks) << successes;
    }
    EXPECT_GT(successes, 50);
}

TEST(FailingAllocation, OfTheDecoderLeavesNothingBehind)
{
    const Buffers buffers = everything().buffers();
    failEachAllocation([&] {
        Context context;
        const auto outcome = decode(buffers, context);
        return outcome.kind == ovdl::ReadOutcome::kRead;
    });
}

TEST(FailingAllocation, OfTheFileLeavesNothingBehind)
{
    const TemporaryFolder folder;
    const std::wstring path = folder.wide() + L"/a.ovdl";
    const Buffers buffers = trianglePart().buffers();
    {
        platform::Reference<IStorage> root;
        ASSERT_GE(platform::createCompoundFile(path, true, root.out()), 0);
        const auto sink = ovdl::makeCompoundSink(*root.get());
        sink->document(buffers.header, buffers.document);
        sink->tessellation(0, 0, 1, buffers.tessellations.at({0, 0}));
        ASSERT_GE(root->Commit(0), 0);
    }
    failEachAllocation([&] {
        Context context;
        return ovdl::readOvdlFile(platform::MappedFile::open(path), context).kind ==
               ovdl::ReadOutcome::kRead;
    });
}

}  // namespace
}  // namespace ovdl_tests
