#include "raylume/appearance/SurfaceFinish.h"

#include <string>

#include "raylume/load/ReaderInterface.h"
#include "raylume/services/Locations.h"

namespace {

std::wstring finishImage(const std::wstring& fileName)
{
    return rlu_getDataDir() + L"\\images\\textures\\surfacefinishes\\" + fileName;
}

std::wstring numberedImage(const wchar_t* stem, int number)
{
    return finishImage(stem + std::to_wstring(number) + L"_bump.png");
}

using Rule = std::wstring (*)(uoRVAppearanceProperties& appearance, const wchar_t* image);

std::wstring noImage(uoRVAppearanceProperties&, const wchar_t*)
{
    return {};
}

std::wstring imageOfFinish(uoRVAppearanceProperties&, const wchar_t* image)
{
    return finishImage(image);
}

// As the appearance names it: no data folder before it.
std::wstring imageOfAppearance(uoRVAppearanceProperties& appearance, const wchar_t*)
{
    return appearance.getBumpTextureFilename();
}

std::wstring knurl(uoRVAppearanceProperties& appearance, const wchar_t*)
{
    const int number = appearance.getKnurlFileNumber();
    return number == 0 ? std::wstring() : numberedImage(L"ovknurled", number);
}

// Unlike the knurls, the dimples have an image number 0.
std::wstring dimple(uoRVAppearanceProperties& appearance, const wchar_t*)
{
    return numberedImage(L"ovdimple", appearance.getDimpleFileNumber());
}

// The first word that the shader name holds decides, even when its rule then gives nothing.
constexpr struct {
    const wchar_t* word;
    Rule rule;
} kShaderWords[] = {
    {L"knurl", knurl},
    {L"dimple", dimple},
    {L"circularmeshplastic", imageOfAppearance},
    {L"diamondmeshplastic", imageOfAppearance},
};

std::wstring byShader(uoRVAppearanceProperties& appearance, const wchar_t* image)
{
    const std::wstring shader = appearance.getRVShaderName();
    for (const auto& entry : kShaderWords) {
        if (shader.find(entry.word) != std::wstring::npos)
            return entry.rule(appearance, image);
    }
    return {};
}

// Finishes 9 and 17 are two different images.
constexpr struct {
    int finish;
    Rule rule;
    const wchar_t* image;
} kFinishes[] = {
    {0, byShader, nullptr},
    {1, noImage, nullptr},
    {2, imageOfAppearance, nullptr},
    {3, imageOfFinish, L"ovbrushed_bump.jpg"},
    {4, imageOfFinish, L"ovburnished_bump.jpg"},
    {5, imageOfFinish, L"ovcast_bump.jpg"},
    {6, imageOfFinish, L"ovwrought_bump.jpg"},
    {7, imageOfFinish, L"ovmachined_bump.jpg"},
    {8, knurl, nullptr},
    {9, imageOfFinish, L"treadplate_bump.png"},
    {10, dimple, nullptr},
    {11, imageOfFinish, L"ovwire_bump.jpg"},
    {12, imageOfFinish, L"ovsand_bump.jpg"},
    {13, imageOfFinish, L"ovrough1_bump.jpg"},
    {14, imageOfFinish, L"ovrough2_bump.jpg"},
    {15, imageOfFinish, L"ovrough3_bump.jpg"},
    {16, imageOfFinish, L"ovdiamondtread_bump.png"},
    {17, imageOfFinish, L"ovtreadplate_bump.png"},
    {18, imageOfAppearance, nullptr},
    {19, imageOfAppearance, nullptr},
    {20, imageOfAppearance, nullptr},
};

}  // namespace

std::wstring surfaceFinishBumpFile(int finish, uoRVAppearanceProperties* appearance)
{
    if (!appearance)
        return {};
    for (const auto& entry : kFinishes) {
        if (entry.finish == finish)
            return entry.rule(*appearance, entry.image);
    }
    return {};
}
