// Shorthand for compound files in tests.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "RawCompoundFile.h"
#include "raylume/platform/CompoundFile.h"
#include "raylume/platform/Reference.h"
#include "raylume/platform/Text.h"

namespace compound_tests {

using Storage = platform::Reference<IStorage>;
using Stream = platform::Reference<IStream>;

inline constexpr std::uint32_t kReading = kModeExclusive + kModeRead;
inline constexpr std::uint32_t kWriting = kModeExclusive + kModeReadWrite;

/// A result as it is published, for a message that can be read.
inline std::uint32_t code(HResult result)
{
    return static_cast<std::uint32_t>(result);
}

#define EXPECT_RESULT(expected, actual) \
    EXPECT_EQ(compound_tests::code(static_cast<HResult>(expected)), compound_tests::code(actual))
#define ASSERT_RESULT(expected, actual) \
    ASSERT_EQ(compound_tests::code(static_cast<HResult>(expected)), compound_tests::code(actual))

inline std::string readAll(IStream& stream)
{
    std::string bytes;
    char piece[5000];
    std::uint32_t count = 0;
    HResult result;
    while ((result = stream.Read(piece, sizeof(piece), &count)) == 0 && count > 0)
        bytes.append(piece, count);
    EXPECT_RESULT(0, result);
    return bytes;
}

/// The bytes of a stream; the text "no stream" when it does not open.
inline std::string bytesOf(IStorage& storage, const wchar_t* name)
{
    Stream stream;
    const HResult result = storage.OpenStream(name, kReading, stream.out());
    return result == 0 ? readAll(*stream.get()) : "no stream";
}

inline void put(IStorage& storage, const wchar_t* name, const std::string& bytes)
{
    Stream stream;
    ASSERT_RESULT(0, storage.CreateStream(name, kWriting, stream.out()));
    std::uint32_t count = 0;
    ASSERT_RESULT(0, stream->Write(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &count));
    ASSERT_EQ(count, bytes.size());
}

inline Storage createIn(IStorage& storage, const wchar_t* name)
{
    Storage made;
    EXPECT_RESULT(0, storage.CreateStorage(name, kWriting, made.out()));
    return made;
}

inline Storage openIn(IStorage& storage, const wchar_t* name, std::uint32_t mode = kReading)
{
    Storage opened;
    EXPECT_RESULT(0, storage.OpenStorage(name, mode, opened.out())) << platform::toUtf8(name);
    return opened;
}

inline Storage openFile(const std::string& path, bool writable = false)
{
    Storage root;
    EXPECT_RESULT(0, platform::openCompoundFile(platform::fromUtf8(path), writable, root.out())) << path;
    return root;
}

inline Storage createFile(const std::string& path, bool replace = false)
{
    Storage root;
    EXPECT_RESULT(0, platform::createCompoundFile(platform::fromUtf8(path), replace, root.out())) << path;
    return root;
}

/// Bytes that differ from one place to the next and from one seed to the next.
inline std::string pattern(std::size_t size, unsigned seed = 1)
{
    std::string bytes(size, '\0');
    std::uint32_t state = seed * 2654435761u + 1;
    for (char& byte : bytes) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

/// A file with sectors of 4096 bytes, a stream "Large" of pattern(70000, 2) and a stream "Small" of
/// pattern(100, 3).
inline std::string largeSectorFile()
{
    using Builder = RawCompoundBuilder;
    Builder builder(12);
    const std::uint32_t large = builder.add(pattern(70000, 2));
    std::string small = pattern(100, 3);
    small.resize(128);
    const std::uint32_t smallStream = builder.add(small);
    std::string table = Builder::little(1, 4) + Builder::little(Builder::kEnd, 4);
    table.resize(4096, '\xFF');
    const std::uint32_t smallTable = builder.add(table);
    const Builder::Entry root{u"Root Entry", 5, Builder::kNone, Builder::kNone, 1, smallStream, 128};
    const Builder::Entry first{u"Large", 2, Builder::kNone, 2, Builder::kNone, large, 70000};
    const Builder::Entry second{u"Small", 2, Builder::kNone, Builder::kNone, Builder::kNone, 0, 100};
    return builder.file({root, first, second}, smallTable, 1);
}

}  // namespace compound_tests
