#include "raylume/load/ReaderInterface.h"

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
// A document object may be derived from and live on the stack.
static_assert(std::is_default_constructible_v<CDispListsDoc> && !std::is_final_v<CDispListsDoc>);

}  // namespace
