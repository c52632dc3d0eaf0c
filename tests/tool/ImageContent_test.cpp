#include "tools/ImageContent.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>

#include "Folder.h"
#include "Pictures.h"
#include "raylume/platform/Text.h"
#include "raylume/services/ImageCodec.h"

namespace {

using tool_test::bmpFile;
using tool_test::Folder;
using tool_test::pngFile;

std::wstring wide(const std::string& path)
{
    return platform::fromUtf8(path);
}

std::string jpegFile(int components, J_COLOR_SPACE space)
{
    jpeg_compress_struct jpeg;
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &bytes, &size);
    jpeg.image_width = 3;
    jpeg.image_height = 2;
    jpeg.input_components = components;
    jpeg.in_color_space = space;
    jpeg_set_defaults(&jpeg);
    jpeg_start_compress(&jpeg, TRUE);
    unsigned char line[12] = {10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 110, 120};
    JSAMPROW rows[] = {line};
    for (int y = 0; y < 2; ++y)
        jpeg_write_scanlines(&jpeg, rows, 1);
    jpeg_finish_compress(&jpeg);
    std::string file(reinterpret_cast<char*>(bytes), size);
    jpeg_destroy_compress(&jpeg);
    std::free(bytes);
    return file;
}

std::string textOf(const std::vector<unsigned char>& bytes)
{
    return {bytes.begin(), bytes.end()};
}

/// What an image file becomes.
struct Converted {
    std::string mediaType;
    std::string bytes;
};

Converted converted(const std::string& name, const std::string& content)
{
    const Folder folder;
    tool_test::writeFile(folder / name, content);
    const auto image = tool::imageForGltf(wide(folder / name));
    return image ? Converted{image->mediaType, textOf(image->bytes)} : Converted{};
}

TEST(EncodedPng, has_every_pixel)
{
    const Folder folder;
    tool_test::writeFile(folder / "a.png", pngFile(5, 3));
    int width = 0, height = 0, stride = 0;
    unsigned char* decoded = nullptr;
    ASSERT_EQ(rlu_GetBitmapDataFromFile(wide(folder / "a.png"), width, height, stride, &decoded, 0, nullptr,
                                        nullptr),
              1);
    EXPECT_EQ(std::vector<unsigned char>(decoded, decoded + stride * height), tool_test::pixels(5, 3));
    delete[] decoded;
}

TEST(ImageForGltf, copies_png_files_whatever_their_name)
{
    const std::string file = pngFile(5, 3);
    const Converted made = converted("wood.bmp", file);
    EXPECT_EQ(made.mediaType, "image/png");
    EXPECT_EQ(made.bytes, file);
}

TEST(ImageForGltf, copies_grey_and_colour_jpeg_files)
{
    for (const std::string& file : {jpegFile(1, JCS_GRAYSCALE), jpegFile(3, JCS_RGB)}) {
        const Converted made = converted("wood.jpg", file);
        EXPECT_EQ(made.mediaType, "image/jpeg");
        EXPECT_EQ(made.bytes, file);
    }
}

TEST(ImageForGltf, encodes_jpeg_files_of_four_components_anew)
{
    const Converted made = converted("wood.jpg", jpegFile(4, JCS_CMYK));
    EXPECT_EQ(made.mediaType, "image/png");
    EXPECT_EQ(made.bytes.substr(1, 3), "PNG");
}

TEST(ImageForGltf, encodes_other_files_as_png)
{
    const Converted made = converted("wood.png", bmpFile(7, 2, 1, 2, 3));
    EXPECT_EQ(made.mediaType, "image/png");
    const Folder folder;
    tool_test::writeFile(folder / "again.png", made.bytes);
    const auto size = tool::imageSize(wide(folder / "again.png"));
    ASSERT_TRUE(size);
    EXPECT_EQ(size->width, 7);
    EXPECT_EQ(size->height, 2);
}

TEST(ImageForGltf, is_none_for_what_cannot_be_decoded)
{
    const std::string png = pngFile(5, 3);
    EXPECT_EQ(converted("a.png", png.substr(0, png.size() / 2)).mediaType, "");
    EXPECT_EQ(converted("a.png", "x").mediaType, "");
    EXPECT_EQ(converted("a.png", "").mediaType, "");
    const Folder folder;
    EXPECT_FALSE(tool::imageForGltf(wide(folder.path()))) << "a folder";
    EXPECT_FALSE(tool::imageForGltf(wide(folder / "none.png")));
    EXPECT_FALSE(tool::imageForGltf({}));
}

TEST(ImageSize, is_that_of_the_file_before_any_limit)
{
    const Folder folder;
    tool_test::writeFile(folder / "a.bmp", bmpFile(3000, 2));
    const auto size = tool::imageSize(wide(folder / "a.bmp"));
    ASSERT_TRUE(size);
    EXPECT_EQ(size->width, 3000);
    EXPECT_EQ(size->height, 2);
}

TEST(ImageSize, goes_the_way_of_texts_to_files)
{
    const Folder folder;
    tool_test::writeFile(folder / "Wood.BMP", bmpFile(3, 2));
    EXPECT_TRUE(tool::imageSize(wide(folder.path()) + L"\\wood.bmp"));
}

}  // namespace
