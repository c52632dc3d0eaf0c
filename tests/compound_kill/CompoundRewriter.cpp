// compound_rewriter make FILE MEGABYTES | rewrite FILE | check FILE
//
// make: a document whose streams hold version 0. rewrite: for ever, the next version of all streams and
// one Commit; a line "w" before each write and "d" behind it. check: prints the version; status 1
// unless every byte of every stream is that of one version.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <unistd.h>

#include "raylume/platform/CompoundFile.h"
#include "raylume/platform/Text.h"

namespace {

constexpr std::uint32_t kReading = kModeExclusive + kModeRead;
constexpr std::uint32_t kWriting = kModeExclusive + kModeReadWrite;
constexpr std::size_t kMegabyte = std::size_t{1} << 20;

[[noreturn]] void fail(const char* what, HResult result)
{
    std::fprintf(stderr, "%s: 0x%08X\n", what, static_cast<unsigned>(result));
    std::exit(1);
}

void require(HResult result, const char* what)
{
    if (result < 0)
        fail(what, result);
}

std::wstring streamName(std::size_t number)
{
    return L"part" + std::to_wstring(number);
}

// A megabyte that no other place and no other version has.
void fill(std::vector<std::uint32_t>& piece, std::uint32_t version, std::size_t number)
{
    for (std::size_t i = 0; i < piece.size(); ++i)
        piece[i] = version * 2654435761u + static_cast<std::uint32_t>(number * piece.size() + i);
}

void writeVersion(IStorage& root, std::uint32_t version, std::size_t megabytes)
{
    std::vector<std::uint32_t> piece(kMegabyte / 4);
    for (std::size_t number = 0; number < megabytes; ++number) {
        fill(piece, version, number);
        IStream* stream = nullptr;
        require(root.CreateStream(streamName(number).c_str(), kWriting + kModeCreate, &stream), "create");
        require(stream->Write(piece.data(), kMegabyte, nullptr), "write");
        stream->Release();
    }
    IStream* stream = nullptr;
    require(root.CreateStream(L"version", kWriting + kModeCreate, &stream), "create");
    const std::uint32_t numbers[] = {version, static_cast<std::uint32_t>(megabytes)};
    require(stream->Write(numbers, sizeof(numbers), nullptr), "write");
    stream->Release();
}

struct Version {
    std::uint32_t number = 0;
    std::uint32_t megabytes = 0;
};

Version readVersion(IStorage& root)
{
    IStream* stream = nullptr;
    require(root.OpenStream(L"version", kReading, &stream), "open version");
    Version version;
    std::uint32_t count = 0;
    require(stream->Read(&version, sizeof(version), &count), "read version");
    stream->Release();
    if (count != sizeof(version))
        fail("version is cut", 0);
    return version;
}

void check(IStorage& root)
{
    const Version version = readVersion(root);
    std::vector<std::uint32_t> wanted(kMegabyte / 4);
    std::vector<std::uint32_t> found(wanted.size() + 1);
    for (std::size_t number = 0; number < version.megabytes; ++number) {
        IStream* stream = nullptr;
        std::uint32_t count = 0;
        require(root.OpenStream(streamName(number).c_str(), kReading, &stream), "open part");
        require(stream->Read(found.data(), static_cast<std::uint32_t>(4 * found.size()), &count),
                "read part");
        stream->Release();
        fill(wanted, version.number, number);
        if (count != kMegabyte || std::memcmp(found.data(), wanted.data(), kMegabyte) != 0)
            fail("a part of another version", 0);
    }
    std::printf("%u\n", version.number);
}

void say(char letter)
{
    const char line[] = {letter, '\n'};
    if (write(STDOUT_FILENO, line, 2) != 2)
        std::exit(1);
}

[[noreturn]] void rewrite(IStorage& root)
{
    Version version = readVersion(root);
    for (;;) {
        writeVersion(root, ++version.number, version.megabytes);
        say('w');
        require(root.Commit(0), "commit");
        say('d');
    }
}

IStorage* open(const std::wstring& path, bool writable)
{
    IStorage* root = nullptr;
    require(platform::openCompoundFile(path, writable, &root), "open");
    return root;
}

void make(const std::wstring& path, std::size_t megabytes)
{
    IStorage* root = nullptr;
    require(platform::createCompoundFile(path, false, &root), "create");
    writeVersion(*root, 0, megabytes);
    require(root->Commit(0), "commit");
    root->Release();
}

}  // namespace

int main(int count, char** arguments)
{
    const std::string what = count > 2 ? arguments[1] : "";
    const std::wstring path = count > 2 ? platform::fromUtf8(arguments[2]) : L"";
    if (what == "make" && count == 4) {
        make(path, std::strtoul(arguments[3], nullptr, 10));
    } else if (what == "rewrite") {
        rewrite(*open(path, true));
    } else if (what == "check") {
        IStorage* root = open(path, false);
        check(*root);
        root->Release();
    } else {
        return 2;
    }
    return 0;
}
