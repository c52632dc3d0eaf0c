// JPEG by libjpeg-turbo.
#include <cstdio>

#include <jerror.h>
#include <jpeglib.h>

#include <algorithm>
#include <vector>

#include "raylume/platform/posix/CodecPictures.h"
#include "raylume/platform/posix/Recovery.h"

namespace platform {

namespace {

constexpr std::size_t kBufferBytes = 65536;
// What the codec may keep of a picture in several scans: a colour picture of the most pixels, and its bits.
constexpr long kMostCodecBytes = long{2} << 30;
constexpr int kMostScans = 500;
// Each scan takes time for every pixel, however few bytes it has.
constexpr std::int64_t kMostScannedPixels = std::int64_t{1} << 34;

extern "C" {
static void failJpeg(j_common_ptr codec);
static void ignoreJpegMessage(j_common_ptr codec, int level);
static void ignoreJpegOutput(j_common_ptr codec);
static void watchJpegScans(j_common_ptr codec);
static void startJpegSource(j_decompress_ptr codec);
static boolean fillJpegBuffer(j_decompress_ptr codec);
static void skipJpegBytes(j_decompress_ptr codec, long count);
static void endJpegSource(j_decompress_ptr codec);
}

// The codec with all that it calls back; its client_data.
struct Codec {
    jpeg_decompress_struct info{};
    jpeg_error_mgr errors{};
    jpeg_progress_mgr progress{};
    jpeg_source_mgr source{};
    std::jmp_buf recovery;
    std::shared_ptr<ImageSource> bytes;
    std::uint64_t offset = 0;
    JOCTET buffer[kBufferBytes];

    explicit Codec(std::shared_ptr<ImageSource> from) : bytes(std::move(from))
    {
        info.err = jpeg_std_error(&errors);
        errors.error_exit = failJpeg;
        errors.emit_message = ignoreJpegMessage;
        errors.output_message = ignoreJpegOutput;
        source.init_source = startJpegSource;
        source.fill_input_buffer = fillJpegBuffer;
        source.skip_input_data = skipJpegBytes;
        source.resync_to_restart = jpeg_resync_to_restart;
        source.term_source = endJpegSource;
        progress.progress_monitor = watchJpegScans;
        info.client_data = this;
    }
    Codec(const Codec&) = delete;
    Codec& operator=(const Codec&) = delete;
    ~Codec() { jpeg_destroy_decompress(&info); }
};

Codec& codecOf(void* clientData)
{
    return *static_cast<Codec*>(clientData);
}

extern "C" {

static void failJpeg(j_common_ptr codec)
{
    std::longjmp(codecOf(codec->client_data).recovery, 1);
}

static void ignoreJpegMessage(j_common_ptr, int)
{
}

static void ignoreJpegOutput(j_common_ptr)
{
}

static void watchJpegScans(j_common_ptr common)
{
    const jpeg_decompress_struct& info = codecOf(common->client_data).info;
    const std::int64_t pixels = std::int64_t{info.image_width} * info.image_height;
    if (info.input_scan_number > kMostScans || info.input_scan_number * pixels > kMostScannedPixels) {
        failJpeg(common);
    }
}

static void startJpegSource(j_decompress_ptr)
{
}

// Behind the end stands an end mark, as often as it is asked for: what is missing of a picture turns out
// grey.
static boolean fillJpegBuffer(j_decompress_ptr info)
{
    static constexpr JOCTET kEnd[] = {0xFF, JPEG_EOI};
    Codec& codec = codecOf(info->client_data);
    const std::size_t count = codec.bytes->readAt(codec.offset, codec.buffer, kBufferBytes);
    codec.offset += count;
    codec.source.next_input_byte = count > 0 ? codec.buffer : kEnd;
    codec.source.bytes_in_buffer = count > 0 ? count : sizeof kEnd;
    return TRUE;
}

static void skipJpegBytes(j_decompress_ptr info, long count)
{
    jpeg_source_mgr& source = *info->src;
    if (count <= 0) {
        return;
    }
    const auto skipped = static_cast<std::size_t>(count);
    if (skipped > source.bytes_in_buffer) {
        codecOf(info->client_data).offset += skipped - source.bytes_in_buffer;
        source.bytes_in_buffer = 0;
        return;
    }
    source.next_input_byte += skipped;
    source.bytes_in_buffer -= skipped;
}

static void endJpegSource(j_decompress_ptr)
{
}
}

// Printers' inks multiply. Files with the Adobe marker hold what is left of the light, others the ink.
void convertInks(const unsigned char* inks, bool isLight, int width, unsigned char* pixels)
{
    for (int column = 0; column < width; ++column, inks += 4, pixels += 4) {
        const auto light = [&](int ink) { return isLight ? unsigned{inks[ink]} : 255u - inks[ink]; };
        for (int channel = 0; channel < 3; ++channel) {
            pixels[channel] = static_cast<unsigned char>((light(2 - channel) * light(3) + 127) / 255);
        }
        pixels[3] = 255;
    }
}

class JpegPicture final : public Picture {
public:
    explicit JpegPicture(std::shared_ptr<ImageSource> source) : codec_(std::move(source)) {}

    bool readHeader();
    ImageSize size() const override
    {
        return {static_cast<int>(codec_.info.image_width), static_cast<int>(codec_.info.image_height)};
    }
    bool hasAlpha() const override { return false; }
    bool comesByRows() const override { return !hasSeveralScans_; }
    ImageSize reduceFor(ImageSize wanted) override;
    bool decode(RowScaler& rows) override;

private:
    bool isInks() const { return codec_.info.out_color_space == JCS_CMYK; }
    bool chooseColours();
    ImageSize reduced(int eighths) const;

    Codec codec_;
    bool hasSeveralScans_ = false;
};

bool JpegPicture::chooseColours()
{
    jpeg_decompress_struct& info = codec_.info;
    switch (info.jpeg_color_space) {
    case JCS_GRAYSCALE:
    case JCS_YCbCr:
    case JCS_RGB:
        info.out_color_space = JCS_EXT_BGRA;
        return true;
    case JCS_CMYK:
    case JCS_YCCK:
        info.out_color_space = JCS_CMYK;
        return true;
    default:
        return false;
    }
}

bool JpegPicture::readHeader()
{
    bool isRead = false;
    const bool ran = runGuarded(codec_.recovery, [&] {
        jpeg_create_decompress(&codec_.info);
        codec_.info.src = &codec_.source;
        codec_.info.progress = &codec_.progress;
        codec_.info.mem->max_memory_to_use = kMostCodecBytes;
        isRead = jpeg_read_header(&codec_.info, TRUE) == JPEG_HEADER_OK;
        hasSeveralScans_ = isRead && jpeg_has_multiple_scans(&codec_.info) != FALSE;
    });
    return ran && isRead && chooseColours();
}

ImageSize JpegPicture::reduced(int eighths) const
{
    const auto side = [&](int whole) { return static_cast<int>((std::int64_t{whole} * eighths + 7) / 8); };
    return {side(size().width), side(size().height)};
}

// To a half, a quarter or an eighth: what the codec does fast. It keeps what is at least as large as
// wanted.
ImageSize JpegPicture::reduceFor(ImageSize wanted)
{
    int eighths = 8;
    while (eighths > 1 && reduced(eighths / 2).width >= wanted.width &&
           reduced(eighths / 2).height >= wanted.height) {
        eighths /= 2;
    }
    codec_.info.scale_num = static_cast<unsigned>(eighths);
    codec_.info.scale_denom = 8;
    return reduced(eighths);
}

bool JpegPicture::decode(RowScaler& rows)
{
    jpeg_decompress_struct& info = codec_.info;
    const ImageSize from = rows.sourceSize();
    if (!runGuarded(codec_.recovery, [&] { jpeg_start_decompress(&info); }) ||
        info.output_width != static_cast<unsigned>(from.width) ||
        info.output_height != static_cast<unsigned>(from.height)) {
        return false;
    }
    std::vector<unsigned char> inks(isInks() ? 4 * static_cast<std::size_t>(from.width) : 0);
    for (int row = 0; row < from.height; ++row) {
        unsigned char* const pixels = rows.row(row);
        JSAMPROW target = isInks() ? inks.data() : pixels;
        if (!runGuarded(codec_.recovery, [&] { jpeg_read_scanlines(&info, &target, 1); })) {
            return false;
        }
        if (isInks()) {
            convertInks(inks.data(), info.saw_Adobe_marker != FALSE, from.width, pixels);
        }
        rows.finishRow(row);
    }
    return true;
}

}  // namespace

std::unique_ptr<Picture> openJpegPicture(const std::shared_ptr<ImageSource>& source)
{
    auto picture = std::make_unique<JpegPicture>(source);
    return picture->readHeader() ? std::move(picture) : nullptr;
}

}  // namespace platform
