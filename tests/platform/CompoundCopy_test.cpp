// Elements of one compound file in another.
#include "raylume/platform/CompoundCopy.h"

#include "CompoundFileTools.h"
#include "TemporaryFolder.h"

namespace {

using namespace compound_tests;

class CompoundCopy : public testing::Test {
protected:
    void SetUp() override
    {
        const Storage store = createIn(*source.get(), L"Store");
        put(*store.get(), L"Small", "few bytes");
        put(*store.get(), L"Large", pattern(200000));
        put(*store.get(), L"Empty", "");
        put(*createIn(*store.get(), L"Inner").get(), L"Deep", "deeper");
        put(*source.get(), L"Stream", "a stream");
        ASSERT_RESULT(0, source->Commit(0));
    }

    static void expectCopy(IStorage& root)
    {
        const Storage store = openIn(root, L"Store");
        EXPECT_EQ(bytesOf(*store.get(), L"Small"), "few bytes");
        EXPECT_EQ(bytesOf(*store.get(), L"Large"), pattern(200000));
        EXPECT_EQ(bytesOf(*store.get(), L"Empty"), "");
        EXPECT_EQ(bytesOf(*openIn(*store.get(), L"Inner").get(), L"Deep"), "deeper");
    }

    const TemporaryFolder folder;
    const Storage source = createFile(folder / "source.doc");
    const Storage target = createFile(folder / "target.doc");
};

TEST_F(CompoundCopy, HasAllThatIsBelow)
{
    ASSERT_RESULT(0, platform::copyElement(*source.get(), L"store", *target.get()));
    expectCopy(*target.get());
    ASSERT_RESULT(0, target->Commit(0));
    expectCopy(*openFile(folder / "target.doc").get());
}

TEST_F(CompoundCopy, IsMadeFromFilesThatAreOpenedForReading)
{
    const Storage reading = openFile(folder / "source.doc");
    ASSERT_RESULT(0, platform::copyElement(*reading.get(), L"Store", *target.get()));
    expectCopy(*target.get());
}

TEST_F(CompoundCopy, MayBeOfAStream)
{
    ASSERT_RESULT(0, platform::copyElement(*source.get(), L"Stream", *target.get()));
    EXPECT_EQ(bytesOf(*target.get(), L"Stream"), "a stream");
}

TEST_F(CompoundCopy, TakesThePlaceOfWhatHasTheName)
{
    put(*createIn(*target.get(), L"STORE").get(), L"Old", "old");
    ASSERT_RESULT(0, platform::copyElement(*source.get(), L"Store", *target.get()));
    expectCopy(*target.get());
    EXPECT_EQ(bytesOf(*openIn(*target.get(), L"Store").get(), L"Old"), "no stream");
}

TEST_F(CompoundCopy, StaysAsItWasWhenTheSourceIsEdited)
{
    ASSERT_RESULT(0, platform::copyElement(*source.get(), L"Store", *target.get()));
    ASSERT_RESULT(0, source->DestroyElement(L"Store"));
    expectCopy(*target.get());
}

TEST_F(CompoundCopy, HasWhatWasEditedAndNotSaved)
{
    put(*openIn(*source.get(), L"Store", kWriting).get(), L"New", "new");
    ASSERT_RESULT(0, platform::copyElement(*source.get(), L"Store", *target.get()));
    EXPECT_EQ(bytesOf(*openIn(*target.get(), L"Store").get(), L"New"), "new");
}

TEST_F(CompoundCopy, MayLieInsideWhatIsCopied)
{
    const Storage store = openIn(*source.get(), L"Store", kWriting);
    ASSERT_RESULT(0, platform::copyElement(*source.get(), L"Store", *store.get()));
    expectCopy(*source.get());
    expectCopy(*store.get());
    // Once, not without end.
    Storage none;
    EXPECT_RESULT(0x80030002, openIn(*openIn(*store.get(), L"Store").get(), L"Inner")
                                  ->OpenStorage(L"Store", kReading, none.out()));
    EXPECT_RESULT(0x80030002, openIn(*store.get(), L"Store")->OpenStorage(L"Store", kReading, none.out()));
}

TEST_F(CompoundCopy, FailsForNamesThatAreNotThere)
{
    EXPECT_RESULT(0x80030002, platform::copyElement(*source.get(), L"Nothing", *target.get()));
    EXPECT_RESULT(0x80030009, platform::copyElement(*source.get(), nullptr, *target.get()));
}

TEST_F(CompoundCopy, FailsIntoWhatIsOpenedForReading)
{
    const Storage reading = openFile(folder / "target.doc");
    EXPECT_RESULT(0x80030005, platform::copyElement(*source.get(), L"Store", *reading.get()));
}

TEST_F(CompoundCopy, FailsWithStoragesThatAreGone)
{
    const Storage store = openIn(*source.get(), L"Store", kWriting);
    ASSERT_RESULT(0, source->DestroyElement(L"Store"));
    EXPECT_RESULT(0x80030102, platform::copyElement(*store.get(), L"Small", *target.get()));
    EXPECT_RESULT(0x80030102, platform::copyElement(*source.get(), L"Stream", *store.get()));
}

TEST_F(CompoundCopy, FailsWhereStoragesWouldNestTooDeep)
{
    Storage deep = createIn(*target.get(), L"d");
    for (int depth = 2; depth < 999; ++depth)
        deep = createIn(*deep.get(), L"d");
    // Store, Inner and Deep are three more levels.
    EXPECT_RESULT(0x80030111, platform::copyElement(*source.get(), L"Store", *deep.get()));
    EXPECT_RESULT(0, platform::copyElement(*source.get(), L"Stream", *deep.get()));
}

// A damaged stream: the sectors that it names are not in the file.
TEST_F(CompoundCopy, FailsForADamagedStream)
{
    using Builder = RawCompoundBuilder;
    Builder builder(9);
    const std::uint32_t data = builder.add(pattern(5000));
    const Builder::Entry root{u"Root Entry", 5, Builder::kNone, Builder::kNone, 1, Builder::kEnd, 0};
    const Builder::Entry stream{u"Data", 2, Builder::kNone, Builder::kNone, Builder::kNone, data, 50000};
    folder.write("damaged.doc", builder.file({root, stream}));
    const Storage damaged = openFile(folder / "damaged.doc");
    EXPECT_RESULT(0x80030109, platform::copyElement(*damaged.get(), L"Data", *target.get()));
    EXPECT_EQ(bytesOf(*target.get(), L"Data"), "no stream");
}

class ForeignStorage final : public IStorage {
public:
    std::uint32_t AddRef() override { return 1; }
    std::uint32_t Release() override { return 1; }
    HResult OpenStream(const wchar_t*, std::uint32_t, IStream**) override { return kNotImplemented; }
    HResult CreateStorage(const wchar_t*, std::uint32_t, IStorage**) override { return kNotImplemented; }
    HResult OpenStorage(const wchar_t*, std::uint32_t, IStorage**) override { return kNotImplemented; }
    HResult Commit(std::uint32_t) override { return kNotImplemented; }
    HResult DestroyElement(const wchar_t*) override { return kNotImplemented; }
};

TEST_F(CompoundCopy, FailsWithStoragesOfAnotherLibrary)
{
    ForeignStorage foreign;
    EXPECT_RESULT(0x80004001, platform::copyElement(foreign, L"Store", *target.get()));
    EXPECT_RESULT(0x80004001, platform::copyElement(*source.get(), L"Store", foreign));
}

}  // namespace
