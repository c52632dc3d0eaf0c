#include "raylume/platform/ReplacementFile.h"

#include <unistd.h>

#include <cerrno>
#include <new>
#include <utility>

#include "raylume/platform/Paths.h"
#include "raylume/platform/Reference.h"
#include "raylume/platform/posix/CompoundWriter.h"
#include "raylume/platform/posix/NewFile.h"
#include "raylume/platform/posix/ReplacementTarget.h"

namespace platform {

namespace {

using namespace compound;

class PosixReplacementFile final : public ReplacementFile {
public:
    explicit PosixReplacementFile(std::string target) : file_(std::move(target)) {}

    HResult open() { return file_.open(); }

    HResult write(const void* bytes, std::size_t size) override
    {
        const QuietSizeLimit quiet;
        const char* from = static_cast<const char*>(bytes);
        while (size > 0) {
            const ssize_t written = ::write(file_.number(), from, size);
            if (written < 0 && errno == EINTR)
                continue;
            if (written <= 0)
                return written < 0 ? resultOfErrno(errno) : kStorageWriteFault;
            from += written;
            size -= static_cast<std::size_t>(written);
        }
        return kStorageOk;
    }

    HResult commit() override { return file_.replaceTarget(); }

private:
    NewFile file_;
};

// A tree that is filled has to be writable, and must not reach the disk before it is complete.
class NoWriter final : public TreeWriter {
public:
    HResult write(Element&) override { return kStorageOk; }
};

HResult findReplaceable(const std::wstring& path, std::string& target)
{
    bool present = false;
    return findTarget(nativePath(path), true, target, present);
}

HResult writeTree(std::string target, Element& root)
{
    constexpr std::size_t kSmallSectors = 512;
    try {
        return makeFileWriter(std::move(target), kSmallSectors)->write(root);
    } catch (const std::bad_alloc&) {
        return kStorageOutOfMemory;
    }
}

}  // namespace

ReplacementFile::ReplacementFile() = default;
ReplacementFile::~ReplacementFile() = default;

HResult ReplacementFile::create(const std::wstring& path, std::unique_ptr<ReplacementFile>& file)
{
    file.reset();
    std::string target;
    HResult result = findReplaceable(path, target);
    if (result < 0)
        return result;
    auto made = std::make_unique<PosixReplacementFile>(std::move(target));
    result = made->open();
    if (result >= 0)
        file = std::move(made);
    return result;
}

HResult replaceCompoundFile(const std::wstring& path, const std::function<void(IStorage& root)>& fill)
{
    std::string target;
    const HResult result = findReplaceable(path, target);
    if (result < 0)
        return result;
    const auto root = std::make_shared<Element>(L"", Kind::kStorage);
    const Reference<IStorage> view(viewTree(root, std::make_unique<NoWriter>(), false));
    fill(*view.get());
    return writeTree(std::move(target), *root);
}

}  // namespace platform
