#include "tests/appearance/ScriptedImages.h"

#include <algorithm>
#include <cstddef>

#include "raylume/platform/Text.h"
#include "raylume/services/ImageCodec.h"
#include "raylume/services/Locations.h"
#include "raylume/services/TextureSearch.h"

namespace scripted {
namespace {

std::wstring saveFolder;

void record(const std::string& line)
{
    images().lines.push_back(line);
}

}  // namespace

Images& images()
{
    static Images all;
    return all;
}

void reset(const std::wstring& folder)
{
    images() = {};
    saveFolder = folder;
}

}  // namespace scripted

using scripted::images;

std::string rlu_getTextureFilename(const std::wstring& storedPath, const std::string& searchFolder,
                                   TextureImageType type, const std::wstring& sceneFolder)
{
    scripted::record("search " + platform::toUtf8(storedPath) + " in '" + searchFolder + "' as " +
                     std::to_string(type) + " '" + platform::toUtf8(sceneFolder) + "'");
    if (images().onSearch)
        images().onSearch();
    const auto place = images().places.find(storedPath);
    return platform::narrow(place == images().places.end() ? storedPath : place->second);
}

int rlu_GetPictureFileData(const std::wstring& path, int& width, int& height, int& stride,
                           unsigned char** pixels, int flag, int first, int second)
{
    scripted::record("load " + platform::toUtf8(path) + " " + std::to_string(flag) + "," +
                     std::to_string(first) + "," + std::to_string(second));
    const auto found = images().pictures.find(path);
    if (found == images().pictures.end())
        return 0;
    const scripted::Picture& picture = found->second;
    width = picture.width;
    height = picture.height;
    stride = 4 * picture.width;
    *pixels = new unsigned char[picture.pixels.size()];
    std::copy(picture.pixels.begin(), picture.pixels.end(), *pixels);
    return picture.status;
}

std::wstring rlu_SaveAsBitmap(int width, int height, int stride, const unsigned char* pixels)
{
    scripted::record("save " + std::to_string(width) + "x" + std::to_string(height) + "/" +
                     std::to_string(stride) + (pixels ? "" : " nothing"));
    const std::size_t size = static_cast<std::size_t>(stride) * static_cast<std::size_t>(height);
    images().saved.push_back({width, height, stride, {pixels, pixels + size}});
    if (images().savePath)
        return *images().savePath;
    return scripted::saveFolder + L"\\" + std::to_wstring(++images().saveNumber) + L".bmp";
}

std::wstring rlu_getDataDir()
{
    return L"data";
}
