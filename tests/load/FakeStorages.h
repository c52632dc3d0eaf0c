// A document's file with storages and streams in memory. All calls become lines of the recording reader,
// between its own: "third.OpenStorage(Raylume,10)", "raylume.Release", "file.isOpen". What a call answers
// is a field that a test sets.
#pragma once

#include <cstring>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "raylume/load/ReaderInterface.h"
#include "raylume/platform/Text.h"
#include "tests/recording_reader/RecordingReader.h"

namespace fakes {

inline constexpr HResult kNotFound = static_cast<HResult>(0x80030002u);
inline constexpr HResult kAccessDenied = static_cast<HResult>(0x80030005u);

inline void record(const std::string& line)
{
    recording::Recorder::get().record(line);
}

inline std::string call(const char* operation, const wchar_t* name, std::uint32_t mode)
{
    std::ostringstream text;
    text << operation << "(" << platform::toUtf8(name) << "," << std::hex << mode << ")";
    return text.str();
}

/// Counts references and writes the calls down; never deletes itself.
template <class Interface>
class Counted : public Interface {
public:
    explicit Counted(std::string text) : name(std::move(text)) {}
    std::uint32_t AddRef() override
    {
        record(name + ".AddRef");
        return ++references;
    }
    std::uint32_t Release() override
    {
        record(name + ".Release");
        return --references;
    }

    std::string name;
    std::uint32_t references = 0;
};

class FakeStream final : public Counted<IStream> {
public:
    using Counted::Counted;
    HResult Read(void* buffer, std::uint32_t size, std::uint32_t* read) override
    {
        const std::size_t count = std::min<std::size_t>(size, bytes.size() - at);
        std::memcpy(buffer, bytes.data() + at, count);
        at += count;
        if (read)
            *read = static_cast<std::uint32_t>(count);
        return readResult;
    }
    HResult Write(const void*, std::uint32_t, std::uint32_t*) override { return kAccessDenied; }

    std::string bytes;
    std::size_t at = 0;
    HResult readResult = 0;
};

class FakeStorage final : public Counted<IStorage> {
public:
    using Counted::Counted;

    HResult OpenStream(const wchar_t* child, std::uint32_t mode, IStream** stream) override
    {
        record(name + "." + call("OpenStream", child, mode));
        return open(streams, child, stream);
    }
    HResult CreateStorage(const wchar_t* child, std::uint32_t mode, IStorage** storage) override
    {
        record(name + "." + call("CreateStorage", child, mode));
        return createResult < 0 ? createResult : open(creatable, child, storage);
    }
    HResult OpenStorage(const wchar_t* child, std::uint32_t mode, IStorage** storage) override
    {
        record(name + "." + call("OpenStorage", child, mode));
        return openResult < 0 ? openResult : open(storages, child, storage);
    }
    HResult Commit(std::uint32_t) override
    {
        record(name + ".Commit");
        return commitResult;
    }
    HResult DestroyElement(const wchar_t* child) override
    {
        record(name + ".DestroyElement(" + platform::toUtf8(child) + ")");
        return destroyResult;
    }

    std::map<std::wstring, FakeStream*> streams;
    std::map<std::wstring, FakeStorage*> storages;
    std::map<std::wstring, FakeStorage*> creatable;
    HResult openResult = 0;
    HResult createResult = 0;
    HResult commitResult = 0;
    HResult destroyResult = 0;

private:
    template <class Fake, class Interface>
    static HResult open(const std::map<std::wstring, Fake*>& children, const wchar_t* child,
                        Interface** opened)
    {
        const auto entry = children.find(child);
        if (entry == children.end())
            return kNotFound;
        ++entry->second->references;
        if constexpr (std::is_same_v<Fake, FakeStream>)
            entry->second->at = 0;
        *opened = entry->second;
        return 0;
    }
};

/// Something counted that is no storage.
class FakeUnknown final : public Counted<IUnknown> {
public:
    using Counted::Counted;
};

/// What the file answers; outlives it.
struct FileAnswers {
    std::vector<int> isOpen = {1};  ///< One after another; the last one for good.
    unsigned long version = 12000;
    unsigned long listVersion = 0;
    std::function<void()> onVersion = [] {};
    FakeStorage* thirdParty = nullptr;  ///< Null: the document has none.
    bool givesInterface = true;         ///< Otherwise the sub-storage opens, but cannot be had.
    IUnknown* second = nullptr;
};

class FakeFile final : public suFileStorage {
public:
    explicit FakeFile(FileAnswers& answers) : answers_(answers) {}
    ~FakeFile() override { record("~file"); }

    int isOpen() const override
    {
        record("file.isOpen");
        const std::size_t last = answers_.isOpen.size() - 1;
        return answers_.isOpen[std::min(asked_++, last)];
    }
    bool openSubStorage(const std::wstring& name, int forWrite, int third, int fourth) override
    {
        record("file.openSubStorage(" + platform::toUtf8(name) + "," + std::to_string(forWrite) + "," +
               std::to_string(third) + "," + std::to_string(fourth) + ")");
        return answers_.thirdParty != nullptr;
    }
    IStorage* subStorageInterface() override
    {
        record("file.subStorageInterface");
        if (!answers_.givesInterface)
            return nullptr;
        ++answers_.thirdParty->references;
        return answers_.thirdParty;
    }
    IUnknown* secondInterface() override
    {
        record("file.secondInterface");
        return answers_.second;
    }
    void endOpen() override { record("file.endOpen"); }
    unsigned long loadVersion() const override
    {
        record("file.loadVersion");
        answers_.onVersion();
        return answers_.version;
    }
    unsigned long loadDLVersion() const override
    {
        record("file.loadDLVersion");
        return answers_.listVersion;
    }

private:
    FileAnswers& answers_;
    mutable std::size_t asked_ = 0;
};

/// A document with settings in it, as far as a test leaves them there.
struct Document {
    Document()
    {
        answers.thirdParty = &third;
        third.storages[L"Raylume"] = &raylume;
        third.creatable[L"Raylume"] = &raylume;
        raylume.streams[L"ShaderData"] = &settings;
    }

    std::uint32_t references() const
    {
        return third.references + raylume.references + settings.references + second.references +
               spare.references;
    }

    FakeStorage third{"third"};
    FakeStorage raylume{"raylume"};
    FakeStream settings{"settings"};
    FakeStorage second{"second"};
    FakeUnknown spare{"spare"};
    FileAnswers answers;
};

}  // namespace fakes
