// Streams of settings by hand, byte for byte, in every version and both forms of string.
#pragma once

#include <bit>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace persist_tests {

enum class Form { kNarrow, kWide };

class Bytes {
public:
    explicit Bytes(Form form = Form::kWide) : form_(form) {}

    Bytes& u8(std::uint32_t value) { return number(value, 1); }
    Bytes& u16(std::uint32_t value) { return number(value, 2); }
    Bytes& u32(std::uint32_t value) { return number(value, 4); }
    Bytes& i32(std::int32_t value) { return number(static_cast<std::uint32_t>(value), 4); }
    Bytes& u64(std::uint64_t value) { return number(value, 8); }
    Bytes& f32(float value) { return u32(std::bit_cast<std::uint32_t>(value)); }
    Bytes& flag(bool value) { return u8(value ? 1 : 0); }
    Bytes& raw(std::string_view bytes)
    {
        all_ += bytes;
        return *this;
    }
    /// Fewer than 255 ASCII characters.
    Bytes& text(std::string_view ascii)
    {
        if (form_ == Form::kWide)
            u8(0xFF).u16(0xFFFE);
        u8(static_cast<std::uint32_t>(ascii.size()));
        for (const char c : ascii) {
            u8(static_cast<unsigned char>(c));
            if (form_ == Form::kWide)
                u8(0);
        }
        return *this;
    }

    const std::string& get() const { return all_; }
    std::size_t size() const { return all_.size(); }

private:
    Bytes& number(std::uint64_t value, int size)
    {
        for (int i = 0; i < size; ++i)
            all_.push_back(static_cast<char>(value >> (8 * i)));
        return *this;
    }

    Form form_;
    std::string all_;
};

// The records of the sample stream. Every field has a value of its own, and none that a default has.

inline void addMask(Bytes& bytes, std::uint32_t version, const std::string& mark)
{
    bytes.text("name" + mark).text("type" + mark).text("ptag" + mark).text("material" + mark);
    bytes.f32(0.125f).f32(0.25f).f32(0.5f).f32(0.75f).flag(true);
    if (version == 0)
        return;
    bytes.u32(2).text("gloss" + mark).f32(1.5f).text("bump" + mark).f32(-2.5f);
    bytes.u32(1).u32(77).text("tag" + mark);
}

inline void addEnvironment(Bytes& bytes, std::uint32_t version)
{
    bytes.text("studio");
    if (version > 1)
        bytes.u32(2).u32(5).text("five").u32(6).text("six");
    if (version > 7)
        bytes.f32(1.5f).flag(true).f32(2.25f).flag(true).f32(3.5f).f32(4.5f).f32(5.5f);
}

struct View {
    std::string path;
    std::string content;
};

/// Nothing: a stream of somebody without a folder of views, which only such a reader can read.
using Views = std::optional<std::vector<View>>;

/// The number of views takes four bytes here, as readers have it.
inline void addCamera(Bytes& bytes, std::uint32_t version, const Views& views = std::vector<View>())
{
    bytes.f32(1).f32(2).f32(3).f32(4).f32(5).f32(6).f32(7);
    if (version > 3)
        bytes.f32(35.5f).i32(2);
    if (version > 5 && views) {
        bytes.u32(static_cast<std::uint32_t>(views->size()));
        for (const View& view : *views)
            bytes.text(view.path).u32(static_cast<std::uint32_t>(view.content.size())).raw(view.content);
    }
    if (version > 7)
        bytes.f32(8.5f).f32(2.75f).i32(640).i32(480).flag(true).text("draft").text("best");
    if (version >= 9)
        bytes.text("png");
}

inline void addScene(Bytes& bytes, std::uint32_t version)
{
    bytes.text("environment.hdr").flag(true).text("plate.png").flag(true);
    if (version >= 7)
        bytes.text("XY").flag(true).flag(false);
    if (version >= 10)
        bytes.text("reflect");
}

/// Two masks, the environment, and as far as the version has them camera and scene.
inline Bytes sampleStream(std::uint32_t version, Form form = Form::kWide,
                          const Views& views = std::vector<View>())
{
    Bytes bytes(form);
    bytes.u32(version).u32(2);
    addMask(bytes, version, "1");
    addMask(bytes, version, "2");
    addEnvironment(bytes, version);
    if (version > 2) {
        bytes.flag(true);
        addCamera(bytes, version, views);
    }
    if (version >= 5) {
        bytes.flag(true);
        addScene(bytes, version);
    }
    return bytes;
}

}  // namespace persist_tests
