// Writes the seeds of fuzz_images into the folder that it is given.
#include <fstream>
#include <iostream>
#include <string>

#include "tests/platform/PictureFiles.h"

namespace {

using namespace picture_files;

std::string folder;

void write(const std::string& name, const std::string& content)
{
    std::ofstream(folder + "/" + name, std::ios::binary) << content;
}

unsigned sample(int column, int row, int channel)
{
    return static_cast<unsigned>(column * 11 + row * 7 + channel * 50) & 0xFF;
}

void writeBitmaps()
{
    BmpParts parts;
    parts.width = 6;
    parts.height = 4;
    for (const int bits : {1, 4, 8, 16, 24, 32}) {
        parts.bits = bits;
        parts.palette = bits <= 8 ? std::string(4u << bits, '\x37') : "";
        parts.pixels = bmpRows(6, 4, bits, false,
                               [](int column, int row) { return static_cast<unsigned>(column + row) % 2; });
        write("plain" + std::to_string(bits) + ".bmp", bmp(parts));
    }
    write("cut_out.ico", icon({{6, 4, 32, iconBitmap(parts, std::string(16, '\x55'))}}));
    parts.headerBytes = 108;
    parts.compression = 3;
    parts.masks = {0xFF0000, 0xFF00, 0xFF, 0xFF000000};
    write("alpha.bmp", bmp(parts));
    parts = {40, 6, 4, 8, 1, {}, std::string(1024, '\x37'), 0, ""};
    parts.pixels = std::string("\x06\x01\0\0\0\x03\x01\x02\x03\0\0\x02\x01\x01\0\1", 16);
    write("runs8.bmp", bmp(parts));
    parts.bits = 4;
    parts.compression = 2;
    parts.palette.resize(64);
    write("runs4.bmp", bmp(parts));
}

void writeCodecs()
{
    const Image image = scattered(9, 7);
    write("alpha.png", pngOf(image));
    write("interlaced.png", pngOf(image, true));
    write("palette.png",
          png(9, 7, {3, 4, false, true}, [](int column, int, int) { return unsigned(column); }));
    write("png.ico", icon({{9, 7, 32, pngOf(image)}}));
    write("colour.jpg", jpeg(20, 20, {3, false, true, false, 50}, sample));
    write("progressive.jpg", jpeg(20, 20, {3, true, true, false, 50}, sample));
    write("inks.jpg", jpeg(20, 20, {4, false, true, true, 50}, sample));
    write("lzw.tif", tiff(9, 7, {2, 4, 8, 5, 3, 0, 2, 0, false, false}, sample));
    write("tiles.tif", tiff(20, 7, {1, 1, 8, 1, 0, 16, -1, 0, false, false}, sample));
    write("fax.tif", tiff(16, 7, {0, 1, 1, 4, 0, 0, -1, 0, false, false},
                          [](int column, int, int) { return static_cast<unsigned>(column & 1); }));
    write("frame.gif", gif({9, 7, 1, 1, 5, 4, true, false, 8, 2},
                           [](int column, int row) { return sample(column, row, 0); }));
}

}  // namespace

int main(int count, char** arguments)
{
    if (count != 2) {
        std::cerr << "usage: images_seeds FOLDER\n";
        return 2;
    }
    folder = arguments[1];
    writeBitmaps();
    writeCodecs();
    return 0;
}
