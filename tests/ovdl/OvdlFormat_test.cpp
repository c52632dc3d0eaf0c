// Documents in compound files, through the format itself.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "raylume/platform/CompoundFile.h"
#include "raylume/platform/Reference.h"
#include "reader/formats/ovdl/CompoundStreams.h"
#include "reader/formats/ovdl/OvdlFile.h"
#include "tests/ovdl/DocumentBuffers.h"
#include "tests/platform/TemporaryFolder.h"

namespace ovdl_tests {
namespace {

using ovdl::ReadOutcome;
using testing::HasSubstr;
using Storage = platform::Reference<IStorage>;

// The file of these streams.
void write(const std::wstring& path, const Buffers& buffers)
{
    Storage root;
    ASSERT_GE(platform::createCompoundFile(path, true, root.out()), 0);
    const auto sink = ovdl::makeCompoundSink(*root.get());
    sink->document(buffers.header, buffers.document);
    const auto& all = buffers.tessellations;
    for (const auto& [key, bytes] : all) {
        const auto next = std::make_pair(key.first + 1, 0u);
        const auto pieces = static_cast<std::uint32_t>(
            std::distance(all.lower_bound({key.first, 0}), all.lower_bound(next)));
        sink->tessellation(key.first, key.second, pieces, bytes);
    }
    ASSERT_GE(root->Commit(0), 0);
}

class OvdlFormat : public testing::Test {
protected:
    void write(const Buffers& buffers) { ovdl_tests::write(path, buffers); }
    bool recognises()
    {
        std::string reason;
        const bool recognised = format->recognises(path, reason);
        EXPECT_EQ(reason, "");
        return recognised;
    }
    ReadOutcome read() { return format->read(path, context); }
    std::string native() const { return folder / "a.ovdl"; }
    void edit(const std::function<void(IStorage&)>& change)
    {
        Storage root;
        ASSERT_GE(platform::openCompoundFile(path, true, root.out()), 0);
        change(*root.get());
        ASSERT_GE(root->Commit(0), 0);
    }

    TemporaryFolder folder;
    std::wstring path = folder.wide() + L"/a.ovdl";
    std::unique_ptr<ovdl::DocumentFormat> format = ovdl::makeOvdlFormat();
    Context context;
};

TEST_F(OvdlFormat, ReadsWhatIsInTheFile)
{
    write(everything().buffers());
    EXPECT_TRUE(recognises());
    const auto outcome = read();
    ASSERT_EQ(outcome.kind, ReadOutcome::kRead) << outcome.reason;
    EXPECT_EQ(walk(*outcome.document), 4 + 3 + 5);
    EXPECT_THAT(context.told, testing::ElementsAre(12000));
}

TEST_F(OvdlFormat, KeepsTheBytesWhenTheFileGoes)
{
    write(everything().buffers());
    const auto outcome = read();
    std::filesystem::remove(native());
    EXPECT_EQ(walk(*outcome.document), 4 + 3 + 5);
}

// Where the points of the first face lie.
const unsigned char* firstPoints(ovdl::ReadDocument& document)
{
    const auto& face = *document.part()->tessData->bodies.at(0)->faces.at(0);
    return reinterpret_cast<const unsigned char*>(face.points.data);
}

TEST_F(OvdlFormat, UsesLargeArraysInTheMappedFile)
{
    Draft draft;
    fb::TessellationT& tessellation = draft.addTessellation();
    addBody(tessellation, {addFace(tessellation, 1000)});
    draft.part().tessData = 0;
    write(draft.buffers());
    const std::shared_ptr<const platform::MappedFile> file = platform::MappedFile::open(path);
    const auto outcome = ovdl::readOvdlFile(file, context);
    ASSERT_EQ(outcome.kind, ReadOutcome::kRead) << outcome.reason;
    const unsigned char* points = firstPoints(*outcome.document);
    EXPECT_GE(points, file->data());
    EXPECT_LT(points, file->data() + file->size());
    EXPECT_EQ(walk(*outcome.document), 1000);
}

TEST_F(OvdlFormat, ReadsTessellationsInGroups)
{
    Draft draft;
    constexpr std::uint32_t kCount = ovdl::kGroupedFrom + 10;
    for (std::uint32_t i = 0; i < kCount; ++i) {
        fb::TessellationT& tessellation = draft.addTessellation(i == 5000 || i == 4100 ? 2 : 1);
        addBody(tessellation, {addFace(tessellation, 3, false, static_cast<std::int32_t>(i))});
        draft.addComponent("a-" + std::to_string(i + 1) + "@b", static_cast<std::int32_t>(i));
        draft.assembly().components.push_back(static_cast<std::int32_t>(i));
    }
    write(draft.buffers());
    const auto outcome = read();
    ASSERT_EQ(outcome.kind, ReadOutcome::kRead) << outcome.reason;
    const auto& components = outcome.document->assembly()->components;
    for (std::uint32_t i = 0; i < kCount; ++i)
        ASSERT_EQ(components.at(i)->tessData->bodies.at(0)->faces.at(0)->faceId,
                  static_cast<std::int32_t>(i));
}

TEST_F(OvdlFormat, ReadsADocumentWithoutTessellations)
{
    Draft draft;
    draft.assembly();
    write(draft.buffers());
    EXPECT_EQ(read().kind, ReadOutcome::kRead);
}

TEST_F(OvdlFormat, LeavesCompoundFilesWithoutADocumentToOthers)
{
    write(trianglePart().buffers());
    edit([](IStorage& root) { EXPECT_EQ(root.DestroyElement(ovdl::kDocumentName), 0); });
    EXPECT_FALSE(recognises());
    EXPECT_EQ(read().kind, ReadOutcome::kRejected);
}

TEST_F(OvdlFormat, LeavesCompoundFilesWithoutAHeaderToOthers)
{
    write(trianglePart().buffers());
    edit([](IStorage& root) { EXPECT_EQ(root.DestroyElement(ovdl::kHeaderName), 0); });
    EXPECT_FALSE(recognises());
    const auto outcome = read();
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    EXPECT_THAT(outcome.reason, HasSubstr("header"));
}

TEST_F(OvdlFormat, LeavesOtherFilesToOthers)
{
    EXPECT_FALSE(recognises());
    EXPECT_EQ(read().kind, ReadOutcome::kRejected);
    for (const char* bytes : {"", "text", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"}) {
        folder.write("a.ovdl", bytes);
        EXPECT_FALSE(recognises());
        const auto outcome = read();
        EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
        EXPECT_NE(outcome.reason, "");
    }
}

TEST_F(OvdlFormat, RefusesANewerFormatWithBothNumbers)
{
    Buffers buffers = trianglePart().buffers();
    buffers.header.formatVersion = ovdl::kFormatVersion + 1;
    write(buffers);
    EXPECT_TRUE(recognises());
    const auto outcome = read();
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    EXPECT_THAT(outcome.reason, HasSubstr(std::to_string(ovdl::kFormatVersion + 1)));
    EXPECT_THAT(outcome.reason, HasSubstr("up to " + std::to_string(ovdl::kFormatVersion)));
}

TEST_F(OvdlFormat, NamesTheTessellationThatIsMissing)
{
    write(everything().buffers());
    edit([](IStorage& root) {
        Storage all;
        ASSERT_EQ(root.OpenStorage(ovdl::kTessellationName, kModeReadWrite, all.out()), 0);
        EXPECT_EQ(all->DestroyElement(L"1"), 0);
    });
    EXPECT_THAT(read().reason, HasSubstr("tessellation 1 is missing"));
    edit([](IStorage& root) {
        Storage all;
        Storage pieces;
        ASSERT_EQ(root.OpenStorage(ovdl::kTessellationName, kModeReadWrite, all.out()), 0);
        ASSERT_EQ(all->OpenStorage(L"0", kModeReadWrite, pieces.out()), 0);
        EXPECT_EQ(pieces->DestroyElement(L"1"), 0);
    });
    EXPECT_THAT(read().reason, HasSubstr("tessellation 0, piece 1 is missing"));
    edit([](IStorage& root) { EXPECT_EQ(root.DestroyElement(ovdl::kTessellationName), 0); });
    EXPECT_THAT(read().reason, HasSubstr("tessellation 0"));
}

TEST_F(OvdlFormat, HasAnOutcomeForEveryPrefixOfAFile)
{
    write(everything().buffers());
    const std::string whole = readFile(native());
    for (std::size_t length = 0; length < whole.size(); length += 61) {
        folder.write("a.ovdl", whole.substr(0, length));
        const auto outcome = read();
        if (outcome.kind == ReadOutcome::kRead)
            walk(*outcome.document);
        else
            ASSERT_NE(outcome.reason, "") << length;
    }
}

// What the streams hold is damaged byte by byte where no file is needed for it.
TEST_F(OvdlFormat, HasAnOutcomeForFlippedBytesOfAFile)
{
    write(everything().buffers());
    const std::string whole = readFile(native());
    for (std::size_t at = 0; at < whole.size(); at += 5) {
        std::string damaged = whole;
        damaged[at] = static_cast<char>(~damaged[at]);
        folder.write("a.ovdl", damaged);
        const auto outcome = read();
        if (outcome.kind == ReadOutcome::kRead)
            walk(*outcome.document);
        else
            ASSERT_NE(outcome.reason, "") << at;
    }
}

TEST_F(OvdlFormat, CanBeCancelled)
{
    write(everything().buffers());
    context.answersBeforeCancel = 1;
    EXPECT_EQ(read().kind, ReadOutcome::kCancelled);
}

TEST(MappedDocument, ThatIsNoneIsRejected)
{
    Context context;
    EXPECT_EQ(ovdl::readOvdlFile(nullptr, context).kind, ReadOutcome::kRejected);
}

}  // namespace
}  // namespace ovdl_tests
