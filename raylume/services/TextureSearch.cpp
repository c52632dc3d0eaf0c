#include "raylume/services/TextureSearch.h"

#include "raylume/services/Text.h"

std::string rlu_getTextureFilename(const std::wstring& storedPath, const std::string&, TextureImageType,
                                   const std::wstring&)
{
    return rlu_WStringToString(storedPath);
}

int findFile(const wchar_t* storedPath, const std::wstring&, const std::wstring&, TextureImageType,
             std::wstring* result, const std::wstring&)
{
    *result = storedPath;
    return 0;
}

int searchFolderList(std::wstring&, const std::wstring&, std::wstring&)
{
    return 0;
}
