#include <gmock/gmock.h>

#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "ElfSymbols.h"

namespace {

using testing::Contains;
using testing::IsEmpty;

std::set<std::string> namesOf(const std::vector<ExportedSymbol>& symbols)
{
    std::set<std::string> names;
    for (const auto& symbol : symbols)
        names.insert(symbol.name);
    return names;
}

bool matches(const std::string& text, const char* pattern)
{
    return testing::Matches(testing::MatchesRegex(pattern))(text);
}

bool isOfTheLanguage(const ExportedSymbol& symbol)
{
    // Instantiations of the standard library's templates are shared by all who have them. They name
    // std first, or behind what they return.
    constexpr char kStandard[] =
        "((typeinfo|typeinfo name|vtable|guard variable) for )?([^(]* )?(std|__gnu_cxx)::.*";
    // What the sanitizers and the counting of lines add of their own.
    constexpr char kInstrumentation[] = "(__odr_asan|__asan|__ubsan|__gcov|mangle_path).*";
    return (symbol.weak && matches(symbol.name, kStandard)) || matches(symbol.mangled, kInstrumentation);
}

bool isOfTheInterface(const ExportedSymbol& symbol)
{
    return matches(symbol.name,
                   "((typeinfo|typeinfo name|vtable) for )?(dl|RL)[A-Z][A-Za-z]*(::.*)?"
                   "|rlu_[A-Za-z0-9_]+(\\[abi:cxx11\\])?(\\(.*)?"
                   "|findFile\\(.*"
                   "|g_terminateLoad");
}

// The listed interface of readers, and the default reader's own headers.
bool isOfTheReaderInterface(const ExportedSymbol& symbol)
{
    return matches(
        symbol.name,
        "((typeinfo|typeinfo name|vtable) for )?"
        "((uo|mo|mg|pw|ov|su)[A-Z][A-Za-z]*(_c)?|OVDL[A-Za-z_]*|CDispListsDoc|color)(::.*)?"
        "|(mg_[A-Za-z]+|restoreOleItems|SetOVDL_Callbacks)(\\[abi:cxx11\\])?\\(.*"
        "|operator[-*%]\\(mg.*"
        "|ovdl::(setProgressHandler|setCancelHandler|lastReason|formatNames|embeddedImage|prepareDocument"
        "|forgetDocument|writeDocument|convertDocument|setImportLimits|setTessellation)(\\[abi:cxx11\\])?\\(.*"
        "|((typeinfo|typeinfo name|vtable) for )?ovdl::PreparedDocument(::~?PreparedDocument\\(\\))?");
}

TEST(ExportedSymbols, AreThoseOfTheInterfaceOnly)
{
    std::vector<std::string> others;
    for (const auto& symbol : exportedSymbols(RAYLUME_DL_FILE))
        if (!isOfTheInterface(symbol) && !isOfTheLanguage(symbol))
            others.push_back(symbol.name);
    EXPECT_THAT(others, IsEmpty());
}

// Hosts derive records of their own: an operation more would move those behind it.
TEST(ExportedSymbols, HaveRecordsOfExactlyOneVirtualOperation)
{
    constexpr std::size_t kOffsetAndType = 2 * sizeof(void*);
    std::set<std::string> seen;
    for (const auto& symbol : exportedSymbols(RAYLUME_DL_FILE)) {
        if (!matches(symbol.name,
                     "vtable for RL(CameraData|Data|EnvironmentMaterial|FloatChannel"
                     "|MaskMaterial|SceneData|StringTag|TextureInfo)"))
            continue;
        seen.insert(symbol.name);
        EXPECT_EQ(symbol.size, kOffsetAndType + sizeof(void*)) << symbol.name;
    }
    EXPECT_EQ(seen.size(), 8u);
}

TEST(ExportedSymbols, HaveWhatAHostNeeds)
{
    const auto names = namesOf(exportedSymbols(RAYLUME_DL_FILE));
    for (const char* name : {"g_terminateLoad",
                             "dlModel::ReadModel(char const*)",
                             "dlModel::dlModel()",
                             "dlModel::dlModel(dlModel const&)",
                             "dlModel::operator=(dlModel const&)",
                             "dlModel::~dlModel()",
                             "dlModel::addDLPart(void*, dlPart*, int)",
                             "dlModel::getDLPart(void*, int)",
                             "dlModel::createAssemblyHierarchy()",
                             "dlModel::updateSingletons()",
                             "dlPart::dlPart()",
                             "dlBody::dlBody()",
                             "dlFace::dlFace()",
                             "dlInstance::dlInstance()",
                             "dlMaterial::dlMaterial()",
                             "dlMaterial::operator=(dlMaterial const&)",
                             "dlMaterial::operator==(dlMaterial const&) const",
                             "dlMaterial::operator<(dlMaterial const&) const",
                             "dlMaterial::addDecals(dlDecal*)",
                             "dlMaterial::getDecals[abi:cxx11]()",
                             "dlTexture::dlTexture()",
                             "dlTexture::operator=(dlTexture const&)",
                             "dlTexture::operator!=(dlTexture const&) const",
                             "dlTexture::operator<(dlTexture const&) const",
                             "dlDecal::dlDecal()",
                             "dlDecal::~dlDecal()",
                             "dlDecal::operator=(dlDecal const&)",
                             "dlDecal::operator==(dlDecal const&) const",
                             "dlDecal::operator<(dlMaterial const&) const",
                             "dlDecal::getFaceId() const",
                             "dlLight::dlLight()",
                             "dlScene::dlScene()",
                             "dlAssemblyNode::~dlAssemblyNode()",
                             "dlBBox::getRadius()",
                             "RLData::ReadRaylumeData(char const*)",
                             "RLData::WriteRaylumeData(char const*, RLData const*)",
                             "RLData::OVFileExists(char const*)",
                             "RLData::serialize(RLArchive&)",
                             "RLData::RLData(RLData const&)",
                             "RLData::~RLData()",
                             "RLCameraData::RLCameraData()",
                             "RLCameraData::getImageFormat[abi:cxx11]() const",
                             "RLEnvironmentMaterial::RLEnvironmentMaterial()",
                             "RLSceneData::RLSceneData()",
                             "RLMaskMaterial::RLMaskMaterial()",
                             "RLFloatChannel::RLFloatChannel()",
                             "RLStringTag::RLStringTag()",
                             "RLTextureInfo::serialize(RLArchive&)",
                             "typeinfo for RLSerializable"})
        EXPECT_THAT(names, Contains(name));
}

TEST(ExportedSymbols, HaveTheMasksOfDecals)
{
    const std::string wide =
        "std::__cxx11::basic_string<wchar_t, std::char_traits<wchar_t>, std::allocator<wchar_t> >";
    const auto names = namesOf(exportedSymbols(RAYLUME_DL_FILE));
    EXPECT_THAT(names, Contains("dlDecal::generateNewImageUsingMaskColors(" + wide + ")"));
    EXPECT_THAT(names,
                Contains("dlDecal::generateNewImageUsingMaskFile(" + wide + ", " + wide + ", bool)"));
}

// By their bare names, without what they take.
TEST(ExportedSymbols, HaveTheImagesThatAModelNames)
{
    std::set<std::string> plain;
    for (const auto& symbol : exportedSymbols(RAYLUME_DL_FILE))
        plain.insert(symbol.name.substr(0, symbol.name.find_first_of("[(")));
    for (const char* name :
         {"findFile", "rlu_getTextureFilename", "rlu_observeTextureSearches", "rlu_GetDefaultAppearanceCol",
          "rlu_PopulateIgnoredMissingImagesList", "rlu_IsInIgnoredMissingImagesList",
          "rlu_GetBitmapDataFromFile", "rlu_GetPictureFileData", "rlu_SaveAsBitmap",
          "rlu_ClearTempBMPFiles", "rlu_nativePath"})
        EXPECT_THAT(plain, Contains(name));
}

class HiddenName : public testing::TestWithParam<const char*> {};

TEST_P(HiddenName, IsNotExported)
{
    for (const auto& symbol : exportedSymbols(RAYLUME_DL_FILE))
        EXPECT_EQ(symbol.name.find(GetParam()), std::string::npos) << symbol.name;
}

INSTANTIATE_TEST_SUITE_P(Rows, HiddenName,
                         testing::Values("applyVisualProperties", "capturePart", "g_storageRegistry",
                                         "getRegisteredStorage", "dropRegisteredStorage", "CDispListsDocRL",
                                         "RL_OVDL_CallBacks", "translatePartDocument",
                                         "translateAssemblyDocument", "chooseComponents",
                                         "attachPartDecals", "attachInstanceDecals", "translateDecal",
                                         "generateBoxTextureCoords", "boxCoordsForFace", "maskImageCache",
                                         "maskimages", "surfaceFinishBumpFile", "placeImageCentre",
                                         "openAddinSubStorage", "openRaylumeStorage", "eraseShaderData",
                                         "matrixToAngles", "persist::", "searchFolderList",
                                         "g_ignoredImages", "platform::"),
                         [](const auto& row) {
                             std::string name = row.param;
                             std::erase(name, ':');
                             return name;
                         });

// Nothing of the formats and of what they use.
TEST(ExportedSymbols, OfTheReaderAreThoseOfItsInterfaceOnly)
{
    std::vector<std::string> others;
    for (const auto& symbol : exportedSymbols(OVDLREADER_FILE))
        if (!isOfTheReaderInterface(symbol) && !isOfTheLanguage(symbol))
            others.push_back(symbol.name);
    EXPECT_THAT(others, IsEmpty());
}

TEST(ExportedSymbols, OfAFileThatIsNoLibraryAreAnError)
{
    EXPECT_THROW(exportedSymbols("/no such library"), std::runtime_error);
}

}  // namespace
