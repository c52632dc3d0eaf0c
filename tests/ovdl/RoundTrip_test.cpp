// Objects to streams to objects again.
#include <gmock/gmock.h>
#include <rapidcheck.h>

#include <string>

#include "DocumentComparison.h"
#include "MemoryStreams.h"
#include "RandomDocuments.h"
#include "SchemaCoverage.h"
#include "reader/formats/ovdl/Decoder.h"
#include "reader/formats/ovdl/Encoder.h"
#include "reader/formats/ovdl/JsonText.h"

namespace {

using namespace ovdl_tests;
using ovdl::DocumentContents;
using testing::IsEmpty;

/// Reads what was written; the outcome holds the document.
ovdl::ReadOutcome decoded(std::unique_ptr<ovdl::DocumentStreams> streams)
{
    WillingContext context;
    return ovdl::decodeDocument(std::move(streams), context);
}

std::unique_ptr<ovdl::DocumentStreams> throughMemory(const DocumentContents& contents,
                                                     std::uint64_t largestPiece = ovdl::kLargestPiece)
{
    MemorySink sink;
    ovdl::encodeDocument(contents, sink, largestPiece);
    return std::make_unique<MemoryDocumentStreams>(std::move(sink.streams));
}

std::unique_ptr<ovdl::DocumentStreams> throughJson(const DocumentContents& contents)
{
    std::string text;
    const auto sink = ovdl::makeJsonSink([&text](std::string_view piece) { text += piece; });
    ovdl::encodeDocument(contents, *sink);
    sink->finish();
    return ovdl::readJsonStreams(text);
}

std::vector<std::string> differencesAfter(const DocumentContents& contents,
                                          std::unique_ptr<ovdl::DocumentStreams> streams)
{
    const ovdl::ReadOutcome outcome = decoded(std::move(streams));
    auto* document = dynamic_cast<ovdl::DecodedDocument*>(outcome.document.get());
    if (!document)
        return {"no document: " + outcome.reason};
    return differences(contents, document->contents());
}

std::string joined(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines)
        text += line + "\n";
    return text;
}

TEST(RoundTrip, KeepsEveryMemberOfEveryObject)
{
    EXPECT_TRUE(rc::check([](std::uint64_t seed) {
        const auto document = randomDocument(seed, *rc::gen::inRange(1, 5));
        const DocumentContents contents = contentsOf(*document);
        const auto found = differencesAfter(contents, throughMemory(contents));
        if (!found.empty())
            RC_FAIL(joined(found));
    }));
}

TEST(RoundTrip, KeepsEveryMemberThroughJson)
{
    EXPECT_TRUE(rc::check([](std::uint64_t seed) {
        const auto document = randomDocument(seed, *rc::gen::inRange(1, 5));
        const DocumentContents contents = contentsOf(*document);
        const auto found = differencesAfter(contents, throughJson(contents));
        if (!found.empty())
            RC_FAIL(joined(found));
    }));
}

/// With about the smallest pieces that the document allows; gives their limit.
std::uint64_t encodeFinely(const DocumentContents& contents, MemorySink& sink)
{
    for (std::uint64_t limit = 1200;; limit += limit / 8) {
        try {
            ovdl::encodeDocument(contents, sink, limit);
            return limit;
        } catch (const ovdl::Refusal&) {
        }
    }
}

TEST(RoundTrip, KeepsTessellationsThatAreCutIntoPieces)
{
    std::uint32_t most = 0;
    EXPECT_TRUE(rc::check([&most](std::uint64_t seed) {
        const auto document = randomDocument(seed, *rc::gen::inRange(3, 6));
        const DocumentContents contents = contentsOf(*document);
        MemorySink sink;
        const std::uint64_t limit = encodeFinely(contents, sink);
        for (const auto& [number, pieces] : sink.streams.pieces)
            most = std::max(most, pieces);
        for (const auto& [place, stream] : sink.streams.tessellations)
            RC_ASSERT(stream.size < limit);
        const auto found =
            differencesAfter(contents, std::make_unique<MemoryDocumentStreams>(std::move(sink.streams)));
        if (!found.empty())
            RC_FAIL(joined(found));
    }));
    EXPECT_GE(most, 3u);
}

// A field that no test fills is a field that nobody knows to be kept.
TEST(RoundTrip, FillsEveryFieldOfTheSchema)
{
    SchemaCoverage coverage;
    for (std::uint64_t seed = 0; seed < 100; ++seed) {
        const auto document = randomDocument(seed, 3);
        MemorySink sink;
        ovdl::encodeDocument(contentsOf(*document), sink);
        coverage.add(sink.streams);
    }
    EXPECT_THAT(coverage.missing(), IsEmpty());
}

}  // namespace
