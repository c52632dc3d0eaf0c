#include "tests/platform/PictureFiles.h"

#include <gif_lib.h>
#include <png.h>
#include <tiffio.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>

#include <jpeglib.h>

namespace picture_files {

namespace {

std::size_t size(int count)
{
    return static_cast<std::size_t>(count);
}

std::string bytesOf(const Pixel& pixel, std::size_t count)
{
    return std::string(reinterpret_cast<const char*>(pixel.data()), count);
}

}  // namespace

Image makeImage(int width, int height, const std::function<Pixel(int, int)>& colour)
{
    Image image{width, height, {}};
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            image.pixels.push_back(colour(column, row));
        }
    }
    return image;
}

Image scattered(int width, int height)
{
    return makeImage(width, height, [](int column, int row) {
        const auto seed = static_cast<unsigned>(row * 131 + column * 17);
        return Pixel{static_cast<unsigned char>(seed * 7), static_cast<unsigned char>(seed * 29 + 50),
                     static_cast<unsigned char>(seed * 101 + 100), static_cast<unsigned char>(seed * 3)};
    });
}

Image opaque(Image image)
{
    for (Pixel& pixel : image.pixels) {
        pixel[3] = 255;
    }
    return image;
}

Image turnedOver(const Image& image)
{
    return makeImage(image.width, image.height,
                     [&](int column, int row) { return image.at(column, image.height - 1 - row); });
}

std::string bytes16(std::uint32_t value)
{
    return {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8 & 0xFF)};
}

std::string bytes32(std::uint32_t value)
{
    return bytes16(value & 0xFFFF) + bytes16(value >> 16);
}

// ------------------------------------------------------------------------------------- bitmaps

namespace {

std::string bmpInfo(const BmpParts& parts, int height)
{
    const auto width = static_cast<std::uint32_t>(parts.width);
    const auto rows = static_cast<std::uint32_t>(height);
    const auto bits = static_cast<std::uint32_t>(parts.bits);
    if (parts.headerBytes == 12) {
        return bytes32(12) + bytes16(width) + bytes16(rows) + bytes16(1) + bytes16(bits);
    }
    std::string info = bytes32(parts.headerBytes) + bytes32(width) + bytes32(rows) + bytes16(1) +
                       bytes16(bits) + bytes32(parts.compression) + bytes32(0) + bytes32(2835) +
                       bytes32(2835) + bytes32(parts.coloursUsed) + bytes32(0);
    std::string masks;
    for (const std::uint32_t mask : parts.masks) {
        masks += bytes32(mask);
    }
    if (parts.headerBytes <= 40) {
        return info.substr(0, parts.headerBytes) + masks;
    }
    info += masks;
    info.resize(parts.headerBytes);
    return info;
}

}  // namespace

std::string bmp(const BmpParts& parts)
{
    const std::string head = bmpInfo(parts, parts.height) + parts.palette;
    const auto offset = static_cast<std::uint32_t>(14 + head.size());
    return "BM" + bytes32(offset + static_cast<std::uint32_t>(parts.pixels.size())) + bytes32(0) +
           bytes32(offset) + head + parts.pixels;
}

std::string bmpRows(int width, int height, int bits, bool isTopDown,
                    const std::function<std::uint32_t(int, int)>& value)
{
    const std::size_t rowBytes = (size(width) * size(bits) + 31) / 32 * 4;
    std::string rows(rowBytes * size(height), '\0');
    for (int fileRow = 0; fileRow < height; ++fileRow) {
        const int row = isTopDown ? fileRow : height - 1 - fileRow;
        char* const bytes = rows.data() + rowBytes * size(fileRow);
        for (int column = 0; column < width; ++column) {
            const std::uint32_t pixel = value(column, row);
            if (bits < 8) {
                const int shift = 8 - bits - column * bits % 8;
                bytes[column * bits / 8] = static_cast<char>(bytes[column * bits / 8] | pixel << shift);
            } else {
                std::copy_n(bytes32(pixel).data(), bits / 8, bytes + column * bits / 8);
            }
        }
    }
    return rows;
}

std::string bmpPalette(const std::vector<Pixel>& colours, bool isCore)
{
    std::string palette;
    for (const Pixel& colour : colours) {
        palette += bytesOf(colour, 3);
        if (!isCore) {
            palette += '\0';
        }
    }
    return palette;
}

std::string iconBitmap(BmpParts parts, const std::string& mask)
{
    return bmpInfo(parts, 2 * parts.height) + parts.palette + parts.pixels + mask;
}

std::string icon(const std::vector<IconEntry>& entries)
{
    std::string list = bytes16(0) + bytes16(1) + bytes16(static_cast<std::uint32_t>(entries.size()));
    std::string contents;
    for (const IconEntry& entry : entries) {
        const std::size_t offset = 6 + 16 * entries.size() + contents.size();
        list += bytes16(static_cast<std::uint32_t>(entry.width & 0xFF) |
                        static_cast<std::uint32_t>(entry.height & 0xFF) << 8) +
                bytes16(0) + bytes16(1) + bytes16(static_cast<std::uint32_t>(entry.bits)) +
                bytes32(static_cast<std::uint32_t>(entry.content.size())) +
                bytes32(static_cast<std::uint32_t>(offset));
        contents += entry.content;
    }
    return list + contents;
}

// ------------------------------------------------------------------------------------- PNG

namespace {

extern "C" {

static void appendPng(png_structp writer, png_bytep bytes, std::size_t count)
{
    static_cast<std::string*>(png_get_io_ptr(writer))->append(reinterpret_cast<char*>(bytes), count);
}

static void flushNothing(png_structp)
{
}
}

png_color entry(unsigned index)
{
    return {static_cast<png_byte>(index), static_cast<png_byte>(2 * index),
            static_cast<png_byte>(255 - index)};
}

void addPngPalette(png_structp writer, png_infop info, const PngKind& kind)
{
    std::vector<png_color> colours;
    for (unsigned index = 0; index < 1u << kind.depth; ++index) {
        colours.push_back(entry(index));
    }
    png_set_PLTE(writer, info, colours.data(), static_cast<int>(colours.size()));
}

void addPngTransparency(png_structp writer, png_infop info, const PngKind& kind)
{
    png_byte alpha = 0;
    png_color_16 colour{};
    png_set_tRNS(writer, info, &alpha, 1, kind.colourType == 3 ? nullptr : &colour);
}

int channelCount(int colourType)
{
    return colourType == 2 ? 3 : colourType == 4 ? 2 : colourType == 6 ? 4 : 1;
}

std::vector<std::string> pngRows(int width, int height, const PngKind& kind,
                                 const std::function<unsigned(int, int, int)>& sample)
{
    const int channels = channelCount(kind.colourType);
    std::vector<std::string> rows;
    for (int row = 0; row < height; ++row) {
        std::string bytes((size(width) * size(channels) * size(kind.depth) + 7) / 8, '\0');
        for (int place = 0; place < width * channels; ++place) {
            const unsigned value = sample(place / channels, row, place % channels);
            const std::size_t bit = size(place) * size(kind.depth);
            if (kind.depth == 16) {
                bytes[bit / 8] = static_cast<char>(value >> 8);
                bytes[bit / 8 + 1] = static_cast<char>(value);
            } else {
                bytes[bit / 8] =
                    static_cast<char>(bytes[bit / 8] | value << (8 - size(kind.depth) - bit % 8));
            }
        }
        rows.push_back(bytes);
    }
    return rows;
}

}  // namespace

std::string png(int width, int height, const PngKind& kind,
                const std::function<unsigned(int, int, int)>& sample)
{
    std::string file;
    std::vector<std::string> rows = pngRows(width, height, kind, sample);
    std::vector<png_bytep> pointers;
    for (std::string& row : rows) {
        pointers.push_back(reinterpret_cast<png_bytep>(row.data()));
    }
    png_structp writer = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(writer);
    png_set_write_fn(writer, &file, appendPng, flushNothing);
    png_set_IHDR(writer, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height),
                 kind.depth, kind.colourType, kind.isInterlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (kind.colourType == 3) {
        addPngPalette(writer, info, kind);
    }
    if (kind.hasTransparency) {
        addPngTransparency(writer, info, kind);
    }
    png_write_info(writer, info);
    png_write_image(writer, pointers.data());
    png_write_end(writer, info);
    png_destroy_write_struct(&writer, &info);
    return file;
}

std::string pngOf(const Image& image, bool isInterlaced)
{
    return png(image.width, image.height, {6, 8, isInterlaced, false},
               [&](int column, int row, int channel) {
                   return unsigned{image.at(column, row)[size(channel < 3 ? 2 - channel : 3)]};
               });
}

namespace {

class PngWriter {
public:
    PngWriter(int width, int height, int colourType, int depth)
    {
        png_set_write_fn(writer_, &file_, appendPng, flushNothing);
        png_set_IHDR(writer_, info_, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height),
                     depth, colourType, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                     PNG_FILTER_TYPE_DEFAULT);
    }
    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;
    ~PngWriter() { png_destroy_write_struct(&writer_, &info_); }

    void addText(std::string& text, bool isCompressed)
    {
        char key[] = "Comment";
        png_text chunk{};
        chunk.compression = isCompressed ? PNG_TEXT_COMPRESSION_zTXt : PNG_TEXT_COMPRESSION_NONE;
        chunk.key = key;
        chunk.text = text.data();
        chunk.text_length = text.size();
        png_set_text(writer_, info_, &chunk, 1);
    }

    std::string write(std::string row, int height)
    {
        png_write_info(writer_, info_);
        for (int count = 0; count < height; ++count) {
            png_write_row(writer_, reinterpret_cast<png_bytep>(row.data()));
        }
        png_write_end(writer_, nullptr);
        return file_;
    }

private:
    std::string file_;
    png_structp writer_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info_ = png_create_info_struct(writer_);
};

}  // namespace

std::string pngWithTexts(int count, std::size_t length, bool areCompressed)
{
    PngWriter writer(1, 1, PNG_COLOR_TYPE_GRAY, 8);
    std::string text(length, 'x');
    for (int index = 0; index < count; ++index) {
        writer.addText(text, areCompressed);
    }
    return writer.write("\x50", 1);
}

std::string blackPng(int width, int height)
{
    return PngWriter(width, height, PNG_COLOR_TYPE_GRAY, 1)
        .write(std::string((size(width) + 7) / 8, '\0'), height);
}

// ------------------------------------------------------------------------------------- JPEG

namespace {

class JpegWriter {
public:
    JpegWriter(int width, int height, int components, J_COLOR_SPACE colours) : components_(components)
    {
        info_.err = jpeg_std_error(&errors_);
        jpeg_create_compress(&info_);
        jpeg_mem_dest(&info_, &bytes_, &count_);
        info_.image_width = static_cast<JDIMENSION>(width);
        info_.image_height = static_cast<JDIMENSION>(height);
        info_.input_components = components;
        info_.in_color_space = colours;
        jpeg_set_defaults(&info_);
    }
    JpegWriter(const JpegWriter&) = delete;
    JpegWriter& operator=(const JpegWriter&) = delete;
    ~JpegWriter()
    {
        jpeg_destroy_compress(&info_);
        std::free(bytes_);
    }

    jpeg_compress_struct& info() { return info_; }

    std::string write(const std::function<unsigned(int, int, int)>& sample)
    {
        jpeg_start_compress(&info_, TRUE);
        std::vector<JSAMPLE> row(info_.image_width * size(components_));
        while (info_.next_scanline < info_.image_height) {
            for (std::size_t place = 0; place < row.size(); ++place) {
                row[place] = static_cast<JSAMPLE>(sample(static_cast<int>(place) / components_,
                                                         static_cast<int>(info_.next_scanline),
                                                         static_cast<int>(place) % components_));
            }
            JSAMPROW pointer = row.data();
            jpeg_write_scanlines(&info_, &pointer, 1);
        }
        jpeg_finish_compress(&info_);
        return std::string(reinterpret_cast<char*>(bytes_), count_);
    }

private:
    jpeg_compress_struct info_{};
    jpeg_error_mgr errors_{};
    int components_;
    unsigned char* bytes_ = nullptr;
    unsigned long count_ = 0;
};

J_COLOR_SPACE coloursOf(int components)
{
    return components == 1 ? JCS_GRAYSCALE : components == 3 ? JCS_RGB : JCS_CMYK;
}

}  // namespace

std::string jpeg(int width, int height, const JpegKind& kind,
                 const std::function<unsigned(int, int, int)>& sample)
{
    JpegWriter writer(width, height, kind.components, coloursOf(kind.components));
    jpeg_compress_struct& info = writer.info();
    if (kind.components == 4) {
        jpeg_set_colorspace(&info, kind.storesInksAsYcck ? JCS_YCCK : JCS_CMYK);
        info.write_Adobe_marker = kind.hasAdobeMarker ? TRUE : FALSE;
    }
    jpeg_set_quality(&info, kind.quality, TRUE);
    info.comp_info[0].h_samp_factor = info.comp_info[0].v_samp_factor = 1;
    if (kind.components == 4) {
        info.comp_info[3].h_samp_factor = info.comp_info[3].v_samp_factor = 1;
    }
    info.arith_code = kind.isArithmetic ? TRUE : FALSE;
    if (kind.isProgressive) {
        jpeg_simple_progression(&info);
    }
    return writer.write(sample);
}

Image jpegReduced(const std::string& file, unsigned denominator)
{
    jpeg_decompress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, reinterpret_cast<const unsigned char*>(file.data()), file.size());
    jpeg_read_header(&info, TRUE);
    info.out_color_space = JCS_EXT_BGRA;
    info.scale_num = 1;
    info.scale_denom = denominator;
    jpeg_start_decompress(&info);
    Image image{static_cast<int>(info.output_width), static_cast<int>(info.output_height), {}};
    image.pixels.resize(size(image.width) * size(image.height));
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = image.pixels[info.output_scanline * size(image.width)].data();
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    jpeg_destroy_decompress(&info);
    return image;
}

// The first scan has the mean of each block, the others the finer and finer rest, over and over.
std::string jpegOfScans(int width, int height, int scans)
{
    JpegWriter writer(width, height, 1, JCS_GRAYSCALE);
    jpeg_scan_info script[2] = {{1, {0}, 0, 0, 0, 0}, {1, {0}, 1, 63, 0, 0}};
    writer.info().scan_info = script;
    writer.info().num_scans = 2;
    std::string file = writer.write([](int, int, int) { return 200u; });
    const std::size_t last = file.rfind("\xFF\xDA");
    const std::string scan = file.substr(last, file.size() - 2 - last);
    file.resize(file.size() - 2);
    for (int count = 2; count < scans; ++count) {
        file += scan;
    }
    return file + "\xFF\xD9";
}

// ------------------------------------------------------------------------------------- TIFF

namespace {

struct MemoryTiff {
    std::string bytes;
    std::size_t at = 0;
};

extern "C" {

static tmsize_t readMemoryTiff(thandle_t handle, void* buffer, tmsize_t count)
{
    auto& file = *static_cast<MemoryTiff*>(handle);
    const std::size_t read = std::min(static_cast<std::size_t>(count), file.bytes.size() - file.at);
    std::copy_n(file.bytes.data() + file.at, read, static_cast<char*>(buffer));
    file.at += read;
    return static_cast<tmsize_t>(read);
}

static tmsize_t writeMemoryTiff(thandle_t handle, void* buffer, tmsize_t count)
{
    auto& file = *static_cast<MemoryTiff*>(handle);
    file.bytes.resize(std::max(file.bytes.size(), file.at + static_cast<std::size_t>(count)));
    std::copy_n(static_cast<char*>(buffer), count, file.bytes.data() + file.at);
    file.at += static_cast<std::size_t>(count);
    return count;
}

static toff_t seekMemoryTiff(thandle_t handle, toff_t offset, int from)
{
    auto& file = *static_cast<MemoryTiff*>(handle);
    file.at = from == SEEK_END ? file.bytes.size() + offset : from == SEEK_CUR ? file.at + offset : offset;
    file.bytes.resize(std::max(file.bytes.size(), file.at));
    return file.at;
}

static int closeMemoryTiff(thandle_t)
{
    return 0;
}

static toff_t sizeOfMemoryTiff(thandle_t handle)
{
    return static_cast<MemoryTiff*>(handle)->bytes.size();
}
}

void setTiffTags(TIFF* writer, int width, int height, const TiffKind& kind)
{
    TIFFSetField(writer, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(writer, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(writer, TIFFTAG_BITSPERSAMPLE, kind.bits);
    TIFFSetField(writer, TIFFTAG_SAMPLESPERPIXEL, kind.samples);
    TIFFSetField(writer, TIFFTAG_PHOTOMETRIC, kind.photometric);
    TIFFSetField(writer, TIFFTAG_COMPRESSION, kind.compression);
    TIFFSetField(writer, TIFFTAG_PLANARCONFIG, kind.isPlanar ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    if (kind.orientation > 0) {
        TIFFSetField(writer, TIFFTAG_ORIENTATION, kind.orientation);
    }
    if (kind.extraSamples >= 0) {
        const auto extra = static_cast<std::uint16_t>(kind.extraSamples);
        TIFFSetField(writer, TIFFTAG_EXTRASAMPLES, 1, &extra);
    }
    if (kind.photometric == PHOTOMETRIC_YCBCR && kind.compression == COMPRESSION_JPEG) {
        TIFFSetField(writer, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        TIFFSetField(writer, TIFFTAG_JPEGQUALITY, 100);
    } else if (kind.photometric == PHOTOMETRIC_YCBCR) {
        TIFFSetField(writer, TIFFTAG_YCBCRSUBSAMPLING, 1, 1);
    }
    if (kind.sampleFormat > 0) {
        TIFFSetField(writer, TIFFTAG_SAMPLEFORMAT, kind.sampleFormat);
    }
    if (kind.tile > 0) {
        TIFFSetField(writer, TIFFTAG_TILEWIDTH, kind.tile);
        TIFFSetField(writer, TIFFTAG_TILELENGTH, kind.tile);
    } else {
        TIFFSetField(writer, TIFFTAG_ROWSPERSTRIP, kind.rowsPerStrip > 0 ? kind.rowsPerStrip : height);
    }
    if (kind.photometric == PHOTOMETRIC_PALETTE) {
        std::vector<std::uint16_t> red, green, blue;
        for (unsigned index = 0; index < 1u << kind.bits; ++index) {
            const png_color colour = entry(index);
            red.push_back(static_cast<std::uint16_t>(colour.red * 257));
            green.push_back(static_cast<std::uint16_t>(colour.green * 257));
            blue.push_back(static_cast<std::uint16_t>(colour.blue * 257));
        }
        TIFFSetField(writer, TIFFTAG_COLORMAP, red.data(), green.data(), blue.data());
    }
}

// Samples of a row of `count` pixels from `column` on; of one plane if `plane` is not below 0.
std::string tiffSamples(const TiffKind& kind, int column, int row, int count, int plane,
                        const std::function<unsigned(int, int, int)>& sample)
{
    const int samples = plane >= 0 ? 1 : kind.samples;
    std::string bytes((size(count) * size(samples) * size(kind.bits) + 7) / 8, '\0');
    for (int place = 0; place < count * samples; ++place) {
        const unsigned value = sample(column + place / samples, row, plane >= 0 ? plane : place % samples);
        const std::size_t bit = size(place) * size(kind.bits);
        if (kind.bits >= 16) {
            std::copy_n(bytes32(value).data(), kind.bits / 8, bytes.data() + bit / 8);
        } else {
            bytes[bit / 8] = static_cast<char>(bytes[bit / 8] | value << (8 - size(kind.bits) - bit % 8));
        }
    }
    return bytes;
}

void writeTiles(TIFF* writer, int width, int height, const TiffKind& kind,
                const std::function<unsigned(int, int, int)>& sample)
{
    const auto within = [&](int column, int row, int channel) {
        return sample(std::min(column, width - 1), std::min(row, height - 1), channel);
    };
    for (int plane = kind.isPlanar ? 0 : -1; plane < (kind.isPlanar ? kind.samples : 0); ++plane) {
        for (int top = 0; top < height; top += kind.tile) {
            for (int left = 0; left < width; left += kind.tile) {
                std::string tile;
                for (int row = top; row < top + kind.tile; ++row) {
                    tile += tiffSamples(kind, left, row, kind.tile, plane, within);
                }
                TIFFWriteTile(writer, tile.data(), static_cast<std::uint32_t>(left),
                              static_cast<std::uint32_t>(top), 0,
                              static_cast<std::uint16_t>(std::max(plane, 0)));
            }
        }
    }
}

void writeStrips(TIFF* writer, int width, int height, const TiffKind& kind,
                 const std::function<unsigned(int, int, int)>& sample)
{
    for (int plane = kind.isPlanar ? 0 : -1; plane < (kind.isPlanar ? kind.samples : 0); ++plane) {
        for (int row = 0; row < height; ++row) {
            std::string bytes = tiffSamples(kind, 0, row, width, plane, sample);
            TIFFWriteScanline(writer, bytes.data(), static_cast<std::uint32_t>(row),
                              static_cast<std::uint16_t>(std::max(plane, 0)));
        }
    }
}

}  // namespace

std::string tiff(int width, int height, const TiffKind& kind,
                 const std::function<unsigned(int, int, int)>& sample)
{
    MemoryTiff file;
    TIFF* const writer =
        TIFFClientOpen("", kind.isBig ? "w8" : "w", &file, readMemoryTiff, writeMemoryTiff, seekMemoryTiff,
                       closeMemoryTiff, sizeOfMemoryTiff, nullptr, nullptr);
    setTiffTags(writer, width, height, kind);
    if (kind.tile > 0) {
        writeTiles(writer, width, height, kind, sample);
    } else {
        writeStrips(writer, width, height, kind, sample);
    }
    TIFFClose(writer);
    return file.bytes;
}

std::string blackTiff(int width, int height)
{
    constexpr int kRows = 16;
    MemoryTiff file;
    TIFF* const writer = TIFFClientOpen("", "w", &file, readMemoryTiff, writeMemoryTiff, seekMemoryTiff,
                                        closeMemoryTiff, sizeOfMemoryTiff, nullptr, nullptr);
    setTiffTags(writer, width, height, {1, 1, 1, 1, kRows, 0, -1, 0, false, false});
    std::string strip((size(width) + 7) / 8 * kRows, '\0');
    for (int index = 0; index < height / kRows; ++index) {
        TIFFWriteEncodedStrip(writer, static_cast<std::uint32_t>(index), strip.data(),
                              static_cast<tmsize_t>(strip.size()));
    }
    TIFFClose(writer);
    return file.bytes;
}

// Twelve bytes for each tag: number, kind (4: of 32 bits), count, value.
std::string withTiffTag(std::string file, unsigned tag, std::uint32_t value)
{
    const auto number = [&](std::size_t at, int bytes) {
        std::size_t sum = 0;
        for (int index = 0; index < bytes; ++index) {
            sum |= std::size_t{static_cast<unsigned char>(file[at + size(index)])} << 8 * index;
        }
        return sum;
    };
    const std::size_t directory = number(4, 4);
    for (std::size_t entry = 0; entry < number(directory, 2); ++entry) {
        const std::size_t at = directory + 2 + 12 * entry;
        if (number(at, 2) == tag) {
            return file.replace(at + 2, 10, bytes16(4) + bytes32(1) + bytes32(value));
        }
    }
    throw std::invalid_argument("no such tag");
}

// ------------------------------------------------------------------------------------- GIF

namespace {

extern "C" {

static int appendGif(GifFileType* writer, const GifByteType* bytes, int count)
{
    static_cast<std::string*>(writer->UserData)->append(reinterpret_cast<const char*>(bytes), size(count));
    return count;
}
}

struct FreeMap {
    void operator()(ColorMapObject* map) const { GifFreeMapObject(map); }
};
using Map = std::unique_ptr<ColorMapObject, FreeMap>;

Map gifMap()
{
    Map map(GifMakeMapObject(256, nullptr));
    for (unsigned index = 0; index < 256; ++index) {
        const png_color colour = entry(index);
        map->Colors[index] = {colour.red, colour.green, colour.blue};
    }
    return map;
}

void putFrame(GifFileType* writer, const GifParts& parts, const ColorMapObject* map,
              const std::function<unsigned(int, int)>& index)
{
    constexpr int kFirst[] = {0, 4, 2, 1};
    constexpr int kStep[] = {8, 8, 4, 2};
    EGifPutImageDesc(writer, parts.left, parts.top, parts.width, parts.height, parts.isInterlaced, map);
    for (int pass = 0; pass < (parts.isInterlaced ? 4 : 1); ++pass) {
        const int step = parts.isInterlaced ? kStep[pass] : 1;
        for (int row = parts.isInterlaced ? kFirst[pass] : 0; row < parts.height; row += step) {
            std::vector<GifPixelType> line;
            for (int column = 0; column < parts.width; ++column) {
                line.push_back(static_cast<GifPixelType>(index(column, row)));
            }
            EGifPutLine(writer, line.data(), parts.width);
        }
    }
}

}  // namespace

std::string gif(const GifParts& parts, const std::function<unsigned(int, int)>& index)
{
    std::string file;
    int error = 0;
    GifFileType* const writer = EGifOpen(&file, appendGif, &error);
    EGifSetGifVersion(writer, true);
    const Map map = gifMap();
    EGifPutScreenDesc(writer, parts.screenWidth, parts.screenHeight, 8, 0,
                      parts.hasOwnPalette ? nullptr : map.get());
    if (parts.transparent >= 0) {
        GifByteType block[4];
        const GraphicsControlBlock control{DISPOSAL_UNSPECIFIED, false, 0, parts.transparent};
        EGifGCBToExtension(&control, block);
        EGifPutExtension(writer, GRAPHICS_EXT_FUNC_CODE, sizeof block, block);
    }
    for (int frame = 0; frame < parts.frames; ++frame) {
        putFrame(writer, parts, parts.hasOwnPalette ? map.get() : nullptr,
                 [&](int column, int row) { return (index(column, row) + size(frame)) & 0xFF; });
    }
    EGifCloseFile(writer, &error);
    return file;
}

}  // namespace picture_files
