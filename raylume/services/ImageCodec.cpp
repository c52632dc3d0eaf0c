#include "raylume/services/ImageCodec.h"

int rlu_GetBitmapDataFromFile(const std::wstring&, int&, int&, int&, unsigned char**, int, int*, int*)
{
    return 0;
}

int rlu_GetPictureFileData(const std::wstring&, int&, int&, int&, unsigned char**, int, int, int)
{
    return 0;
}

std::wstring rlu_SaveAsBitmap(int, int, int, const unsigned char*)
{
    return {};
}

void rlu_ClearTempBMPFiles()
{
}
