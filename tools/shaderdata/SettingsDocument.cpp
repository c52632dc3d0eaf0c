#include "tools/shaderdata/SettingsDocument.h"

#include <cstdint>
#include <memory>

#include "raylume/persist/RLByteEnds.h"
#include "raylume/platform/CompoundFile.h"
#include "raylume/platform/Errors.h"
#include "raylume/platform/Text.h"

namespace shaderdata {
namespace {

constexpr std::uint32_t kWriting = kModeExclusive + kModeReadWrite;

struct ReleaseIt {
    template <class Interface>
    void operator()(Interface* held) const
    {
        held->Release();
    }
};
using Storage = std::unique_ptr<IStorage, ReleaseIt>;
using Stream = std::unique_ptr<IStream, ReleaseIt>;

void require(HResult result)
{
    if (result < 0)
        throw platform::OleError(static_cast<std::uint32_t>(result));
}

Storage openOrMakeFile(const std::wstring& path)
{
    IStorage* root = nullptr;
    HResult result = platform::openCompoundFile(path, true, &root);
    if (result == kStorageNotFound)
        result = platform::createCompoundFile(path, false, &root);
    require(result);
    return Storage(root);
}

Storage openOrMake(IStorage& parent, const wchar_t* name)
{
    IStorage* child = nullptr;
    HResult result = parent.OpenStorage(name, kWriting, &child);
    if (result == kStorageNotFound)
        result = parent.CreateStorage(name, kWriting, &child);
    require(result);
    return Storage(child);
}

void replaceStream(IStorage& parent, const wchar_t* name, const std::string& bytes)
{
    IStream* made = nullptr;
    require(parent.CreateStream(name, kWriting + kModeCreate, &made));
    const Stream stream(made);
    RLStreamSink(*stream).write(bytes.data(), bytes.size());
}

}  // namespace

void putSettings(const std::string& path, const std::string& bytes)
{
    const Storage root = openOrMakeFile(platform::fromUtf8(path));
    const Storage third = openOrMake(*root, L"ThirdPtyStore");
    const Storage addin = openOrMake(*third, L"Raylume");
    replaceStream(*addin, L"ShaderData", bytes);
    require(root->Commit(0));
}

}  // namespace shaderdata
