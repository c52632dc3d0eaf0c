#include "raylume/load/ReaderInterface.h"

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <utility>

#include "tests/load/LoadFixture.h"

namespace {

// A null element and an index outside are different outcomes.

class PointerArray : public LoadFixture {
protected:
    static std::uint32_t codeOf(const ovPointerArray<int>& array, long long index)
    {
        try {
            array.at(index);
        } catch (const platform::ComError& error) {
            return error.code();
        }
        return 0;
    }

    int value = 5;
    int* elements[2] = {&value, nullptr};
    ovPointerArray<int> array{elements, 2};
};

TEST_F(PointerArray, GivesWhatItHoldsNullIncluded)
{
    EXPECT_EQ(array.at(0), &value);
    EXPECT_EQ(array.at(1), nullptr);
}

TEST_F(PointerArray, RaisesInvalidArgumentOutside)
{
    EXPECT_EQ(codeOf(array, 2), 0x80070057u);
    EXPECT_EQ(codeOf(array, -1), 0x80070057u);
    EXPECT_EQ(codeOf(array, 1ll << 40), 0x80070057u);
    EXPECT_EQ(codeOf({}, 0), 0x80070057u);
    EXPECT_EQ(codeOf({nullptr, 2}, 0), 0x80070057u);
    EXPECT_EQ(codeOf(array, 1), 0u);
}

TEST_F(PointerArray, CountsInSixtyFourBits)
{
    static_assert(sizeof(array.count) == 8);
    static_assert(std::is_signed_v<decltype(array.count)>);
}

TEST(ReaderList, HandsOutWhatItWasGiven)
{
    CList<CRectItem*, CRectItem*> list(10);
    EXPECT_EQ(list.GetCount(), 0);
    list.AddTail(nullptr);
    EXPECT_EQ(list.GetCount(), 1);
    list.RemoveAll();
    EXPECT_EQ(list.GetCount(), 0);
}

// Bytes in memory, with an end.
class MemoryArchive final : public ovListArchive {
public:
    explicit MemoryArchive(bool storing, std::string content = {})
        : storing_(storing), bytes(std::move(content))
    {
    }

    bool isStoring() const override { return storing_; }
    void read(void* to, std::size_t size) override
    {
        if (size > bytes.size() - at_)
            throw platform::ArchiveError(platform::ArchiveError::kEndOfFile, L"memory");
        bytes.copy(static_cast<char*>(to), size, at_);
        at_ += size;
    }
    void write(const void* from, std::size_t size) override
    {
        bytes.append(static_cast<const char*>(from), size);
    }
    std::size_t left() const { return bytes.size() - at_; }

private:
    bool storing_;
    std::size_t at_ = 0;

public:
    std::string bytes;
};

using Items = CList<CRectItem*, CRectItem*>;

CRectItem* item(std::uint64_t number)
{
    return reinterpret_cast<CRectItem*>(static_cast<std::uintptr_t>(number));
}

std::string stored(Items& list)
{
    MemoryArchive archive(true);
    list.Serialize(archive);
    return archive.bytes;
}

TEST(ReaderList, StoresItsCountAndEightBytesAnElement)
{
    Items list;
    EXPECT_EQ(stored(list), std::string(2, '\0'));
    list.AddTail(item(0x0102030405060708));
    list.AddTail(nullptr);
    EXPECT_EQ(stored(list), std::string("\x02\0\x08\x07\x06\x05\x04\x03\x02\x01\0\0\0\0\0\0\0\0", 18));
    EXPECT_EQ(list.GetCount(), 2);
}

TEST(ReaderList, AppendsWhatItLoadsAtTheTail)
{
    Items list;
    list.AddTail(item(1));
    MemoryArchive archive(false, std::string("\x02\0\x02\0\0\0\0\0\0\0\x03\0\0\0\0\0\0\0rest", 22));
    list.Serialize(archive);
    EXPECT_EQ(archive.left(), 4u);
    EXPECT_EQ(stored(list),
              std::string("\x03\0\x01\0\0\0\0\0\0\0\x02\0\0\0\0\0\0\0\x03\0\0\0\0\0\0\0", 26));
}

struct CountCase {
    const char* name;
    std::uint64_t count;
    std::string bytes;
};
const CountCase kCounts[] = {
    {"none", 0, std::string(2, '\0')},
    {"last_in_two_bytes", 0xFFFE, "\xFE\xFF"},
    {"first_in_four_bytes", 0xFFFF, std::string("\xFF\xFF\xFF\xFF\0\0", 6)},
    {"last_in_four_bytes", 0xFFFFFFFE, "\xFF\xFF\xFE\xFF\xFF\xFF"},
    {"first_in_eight_bytes", 0xFFFFFFFF,
     std::string("\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\0\0\0\0", 14)},
};

class ListCount : public testing::TestWithParam<CountCase> {};
TEST_P(ListCount, TakesAsManyBytesAsItNeeds)
{
    MemoryArchive storing(true);
    storing.writeCount(GetParam().count);
    EXPECT_EQ(storing.bytes, GetParam().bytes);
    MemoryArchive loading(false, GetParam().bytes);
    EXPECT_EQ(loading.readCount(), GetParam().count);
    EXPECT_EQ(loading.left(), 0u);
}
INSTANTIATE_TEST_SUITE_P(Rows, ListCount, testing::ValuesIn(kCounts),
                         [](const auto& row) { return row.param.name; });

TEST(ReaderList, KeepsWhatCameBeforeTheEndOfTheArchive)
{
    std::string bytes = "\xFF\xFF\xFE\xFF\xFF\xFF";
    bytes += std::string("\x07\0\0\0\0\0\0\0half", 12);
    Items list;
    MemoryArchive archive(false, bytes);
    EXPECT_THROW(list.Serialize(archive), platform::ArchiveError);
    EXPECT_EQ(stored(list), std::string("\x01\0\x07\0\0\0\0\0\0\0", 10));
}

// The operations exactly as the translators call them, and no stricter.

template <class Class, class Result, class... Arguments>
constexpr bool isNonConst(Result (Class::*)(Arguments...))
{
    return true;
}

template <class Class, class Result, class... Arguments>
constexpr bool isNonConst(Result (Class::*)(Arguments...) const)
{
    return false;
}

static_assert(isNonConst(&uoTempBodyTessData_c::getBodyVizProp));
static_assert(isNonConst(&uoTempBodyTessData_c::getBodyPropInfo));
static_assert(isNonConst(&uoTempFaceTessData_c::getFaceVizProp));
static_assert(isNonConst(&uoTempFaceTessData_c::getVizPropMode));
static_assert(!isNonConst(&uoTempPartTessData_c::getNumBodies));
static_assert(!isNonConst(&uoTempPartTessData_c::getModelVizProp));
static_assert(std::is_invocable_v<decltype(&CDispListsDoc::getTempDispListDataSHDArrayForConfig),
                                  CDispListsDoc&, std::wstring&>);
static_assert(!std::is_invocable_v<decltype(&CDispListsDoc::getTempDispListDataSHDArrayForConfig),
                                   CDispListsDoc&, const std::wstring&>);
static_assert(
    std::is_same_v<decltype(std::declval<uoDecalProperties&>().getColorMask()), std::list<unsigned long>>);
static_assert(sizeof(VizPropMode_e) == 4 && sizeof(LIGHT_TYPE) == 4);
static_assert(std::is_base_of_v<suFileStorage, suStructuredStorage>);
static_assert(std::has_virtual_destructor_v<OVDLOleDocumentContainer> &&
              std::has_virtual_destructor_v<suFileStorage>);
// What hosts, tests and other readers spell out.
template <auto operation, class Type>
constexpr bool isA = std::is_same_v<decltype(operation), Type>;

using Result = OVXDLReader_FileLoadResult;
static_assert(
    isA<&CDispListsDoc::ReadFile,
        Result (CDispListsDoc::*)(const std::wstring&, const std::wstring&, unsigned long&, bool)>);
static_assert(isA<&CDispListsDoc::iRestoreVersionHistory, bool (CDispListsDoc::*)(suFileStorage&)>);
static_assert(isA<&CDispListsDoc::iRestoreConfigManager, bool (CDispListsDoc::*)(suFileStorage&)>);
static_assert(
    isA<&suFileStorage::createStorage, suFileStorage* (*)(const std::wstring&, int, CDocument*, IStorage*,
                                                          int, int, ZipStorage*, suStorageType_e*)>);
static_assert(std::is_constructible_v<suStructuredStorage, const std::wstring&, int, CDocument*, IStorage*,
                                      int, int>);
static_assert(isA<&suFileStorage::isOpen, int (suFileStorage::*)() const>);
static_assert(
    isA<&suFileStorage::openSubStorage, bool (suFileStorage::*)(const std::wstring&, int, int, int)>);
static_assert(isA<&suFileStorage::subStorageInterface, IStorage* (suFileStorage::*)()>);
static_assert(isA<&suFileStorage::secondInterface, IUnknown* (suFileStorage::*)()>);
static_assert(isA<&suFileStorage::endOpen, void (suFileStorage::*)()>);
static_assert(isA<&suFileStorage::loadVersion, unsigned long (suFileStorage::*)() const>);
static_assert(isA<&suFileStorage::loadDLVersion, unsigned long (suFileStorage::*)() const>);
static_assert(isA<&suFileStorage::getUncompressedStreamSize, unsigned long (suFileStorage::*)() const>);
static_assert(isA<&restoreOleItems,
                  OVDLOleDocumentContainer* (*)(const std::wstring&, CList<CRectItem*, CRectItem*>&)>);
static_assert(isA<&SetOVDL_Callbacks, void (*)(OVDL_Callbacks*)>);
static_assert(isA<&OVDL_Callbacks::CheckVersions, int (OVDL_Callbacks::*)(int, int)>);
static_assert(isA<&OVDL_Callbacks::LoadExtraDataFromStorage, void (OVDL_Callbacks::*)(suFileStorage&)>);
static_assert(isA<&OVDL_Callbacks::UpdateProgress, void (OVDL_Callbacks::*)(float, int, int)>);
static_assert(isA<&OVDL_Callbacks::ShouldReadBeCancelled, int (OVDL_Callbacks::*)()>);
static_assert(isA<&OVDL_Callbacks::SetPercentCompleted, void (OVDL_Callbacks::*)(float)>);
static_assert(isA<&uoMaterialTextureProperties::getTextureRanges,
                  bool (uoMaterialTextureProperties::*)(int, double&, double&)>);
static_assert(isA<&uoMaterialTextureProperties::getTextureDir,
                  bool (uoMaterialTextureProperties::*)(int, double&, double&, double&)>);
static_assert(
    isA<&uoTempAssemblySHDData_c::decals, std::list<uoDecalProperties*> uoTempAssemblySHDData_c::*>);
static_assert(isA<&uoTempPartTessData_c::decalsByConfig,
                  std::map<int, std::list<uoDecalProperties*>> uoTempPartTessData_c::*>);
static_assert(isA<&uoDecalProperties::faceMappings, std::list<uoDecalFaceMapping> uoDecalProperties::*>);
static_assert(isA<static_cast<void (mgXform_c::*)(double* const) const>(&mgXform_c::getGLData),
                  void (mgXform_c::*)(double*) const>);
static_assert(isA<static_cast<void (mgXform_c::*)(float* const) const>(&mgXform_c::getGLData),
                  void (mgXform_c::*)(float*) const>);

// The six virtual operations stand in this order: in this machine's convention a member pointer to a
// virtual operation holds one more than its offset in the table.
template <class Operation>
std::ptrdiff_t slotOf(Operation operation)
{
    std::ptrdiff_t words[2];
    static_assert(sizeof operation == sizeof words);
    std::memcpy(words, &operation, sizeof words);
    return (words[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

TEST(ReaderCallbacks, HaveTheirOperationsInOrder)
{
    EXPECT_EQ(slotOf(&OVDL_Callbacks::CheckVersions), 0);
    EXPECT_EQ(slotOf(&OVDL_Callbacks::GetJapaneseFontName), 1);
    EXPECT_EQ(slotOf(&OVDL_Callbacks::LoadExtraDataFromStorage), 2);
    EXPECT_EQ(slotOf(&OVDL_Callbacks::UpdateProgress), 3);
    EXPECT_EQ(slotOf(&OVDL_Callbacks::ShouldReadBeCancelled), 4);
    EXPECT_EQ(slotOf(&OVDL_Callbacks::SetPercentCompleted), 5);
}

// A document object may be derived from and live on the stack.
static_assert(std::is_default_constructible_v<CDispListsDoc> && !std::is_final_v<CDispListsDoc>);

}  // namespace
