#include "raylume/platform/posix/CompoundReader.h"

#include <gsf/gsf-infile-impl.h>
#include <pthread.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <utility>

#include "raylume/platform/Text.h"
#include "raylume/platform/posix/CompoundGsf.h"

namespace platform::compound {

namespace {

struct ErrorRelease {
    void operator()(GError* error) const { g_error_free(error); }
};

// A call of libgsf that makes an object or says why it made none. The wrappers of the class operations
// print that; the operations themselves do not.
template <class Type, class Call>
Object<Type> called(Call call)
{
    GError* error = nullptr;
    Object<Type> object(call(&error));
    const std::unique_ptr<GError, ErrorRelease> failure(error);
    return object;
}

Object<GsfInput> childOf(GsfInfile* storage, int index)
{
    const auto* type = static_cast<GsfInfileClass*>(static_cast<void*>(G_OBJECT_GET_CLASS(storage)));
    return called<GsfInput>([&](GError** error) { return type->child_by_index(storage, index, error); });
}

// A storage of the file as libgsf has it; opened when a stream in it is.
class OpenedStorage {
public:
    explicit OpenedStorage(Object<GsfInfile> root) : infile_(std::move(root)) {}
    OpenedStorage(std::shared_ptr<OpenedStorage> parent, const std::wstring& name)
        : parent_(std::move(parent)), name_(toUtf8(name))
    {
    }

    Object<GsfInput> open(const std::string& name)
    {
        GsfInfile* storage = infile();
        if (!storage)
            return nullptr;
        if (places_.empty())
            listPlaces(storage);
        const auto place = places_.find(name);
        return place == places_.end() || place->second < 0 ? nullptr : childOf(storage, place->second);
    }

private:
    GsfInfile* infile()
    {
        if (!infile_ && parent_) {
            Object<GsfInput> opened = parent_->open(name_);
            if (opened && GSF_IS_INFILE(opened.get()))
                infile_.reset(GSF_INFILE(opened.release()));
        }
        return infile_.get();
    }

    // A name that stands twice tells nothing.
    void listPlaces(GsfInfile* storage)
    {
        const int count = gsf_infile_num_children(storage);
        for (int i = 0; i < count; ++i) {
            const char* name = gsf_infile_name_by_index(storage, i);
            const auto [place, isNew] = places_.emplace(name ? name : "", i);
            if (!isNew)
                place->second = -1;
        }
    }

    std::shared_ptr<OpenedStorage> parent_;
    std::string name_;
    Object<GsfInfile> infile_;
    std::map<std::string, int> places_;
};

class GsfStream final : public StreamSource {
public:
    GsfStream(Object<GsfInput> input, std::shared_ptr<const unsigned char> inPlace)
        : input_(std::move(input)), inPlace_(std::move(inPlace))
    {
    }

    std::uint64_t size() const override { return static_cast<std::uint64_t>(gsf_input_size(input_.get())); }

    bool read(std::uint64_t offset, void* buffer, std::size_t count) override
    {
        return count == 0 || (!gsf_input_seek(input_.get(), static_cast<gsf_off_t>(offset), G_SEEK_SET) &&
                              gsf_input_read(input_.get(), count, static_cast<guint8*>(buffer)));
    }

    std::shared_ptr<const unsigned char> inPlace() const override { return inPlace_; }

private:
    Object<GsfInput> input_;
    std::shared_ptr<const unsigned char> inPlace_;
};

class EmptyStream final : public StreamSource {
public:
    std::uint64_t size() const override { return 0; }
    bool read(std::uint64_t, void*, std::size_t count) override { return count == 0; }
};

class GsfOpener final : public StreamOpener {
public:
    GsfOpener(std::shared_ptr<OpenedStorage> storage, const DirectoryEntry& entry,
              std::shared_ptr<const unsigned char> inPlace)
        : storage_(std::move(storage)), name_(toUtf8(entry.name)), size_(entry.size), damaged_(entry.damaged),
          inPlace_(std::move(inPlace))
    {
    }

    std::shared_ptr<StreamSource> open() override
    {
        if (damaged_)
            return nullptr;
        // Writers leave what they like as the first sector of an empty stream.
        if (size_ == 0)
            return std::make_shared<EmptyStream>();
        Object<GsfInput> input = storage_->open(name_);
        if (!input || gsf_input_size(input.get()) != static_cast<gsf_off_t>(size_))
            return nullptr;
        return std::make_shared<GsfStream>(std::move(input), inPlace_);
    }

private:
    std::shared_ptr<OpenedStorage> storage_;
    std::string name_;
    std::uint64_t size_;
    bool damaged_;
    std::shared_ptr<const unsigned char> inPlace_;
};

class TreeBuilder {
public:
    TreeBuilder(const Directory& directory, std::shared_ptr<const FileBytes> file)
        : directory_(directory), file_(std::move(file))
    {
    }

    ElementPtr build(Object<GsfInfile> root) const
    {
        auto element = std::make_shared<Element>(L"", Kind::kStorage);
        fill(*element, directory_.entries[0], std::make_shared<OpenedStorage>(std::move(root)));
        return element;
    }

private:
    // As deep as storages nest, which is limited.
    void fill(Element& storage, const DirectoryEntry& entry,
              const std::shared_ptr<OpenedStorage>& opened) const
    {
        storage.classId = entry.classId;
        storage.modified = entry.modified;
        for (const std::size_t place : entry.children)
            storage.add(make(directory_.entries[place], opened, storage.depth() + 1));
    }

    ElementPtr make(const DirectoryEntry& entry, const std::shared_ptr<OpenedStorage>& parent,
                    int depth) const
    {
        if (!entry.isStorage)
            return std::make_shared<Element>(entry.name,
                                             std::make_unique<GsfOpener>(parent, entry, inPlace(entry)));
        auto element = std::make_shared<Element>(entry.name, Kind::kStorage, depth);
        fill(*element, entry, std::make_shared<OpenedStorage>(parent, entry.name));
        return element;
    }

    std::shared_ptr<const unsigned char> inPlace(const DirectoryEntry& entry) const
    {
        if (!entry.place || !file_->inMemory())
            return nullptr;
        return {file_, file_->inMemory() + *entry.place};
    }

    const Directory& directory_;
    std::shared_ptr<const FileBytes> file_;
};

// A file whose damaged streams have no bytes. libgsf drops a stream that claims more than the file has,
// and with it all elements that hang below.
class MendedFile final : public FileBytes {
public:
    MendedFile(std::shared_ptr<const FileBytes> file, std::vector<std::uint64_t> sizes)
        : file_(std::move(file)), sizes_(std::move(sizes))
    {
    }

    std::uint64_t size() const override { return file_->size(); }

    bool read(std::uint64_t offset, void* buffer, std::size_t count) const override
    {
        if (!file_->read(offset, buffer, count))
            return false;
        const std::uint64_t end = offset + count;
        auto place = std::lower_bound(sizes_.begin(), sizes_.end(), offset < 7 ? 0 : offset - 7);
        for (; place != sizes_.end() && *place < end; ++place) {
            const std::uint64_t from = std::max(*place, offset);
            const std::uint64_t to = std::min(*place + 8, end);
            std::memset(static_cast<char*>(buffer) + (from - offset), 0,
                        static_cast<std::size_t>(to - from));
        }
        return true;
    }

private:
    std::shared_ptr<const FileBytes> file_;
    std::vector<std::uint64_t> sizes_;
};

struct RootOpening {
    GsfInput* input;
    Object<GsfInfile> root;
};

void openRoot(RootOpening& opening)
{
    opening.root =
        called<GsfInfile>([&](GError** error) { return gsf_infile_msole_new(opening.input, error); });
}

void* openRootOnOwnStack(void* opening)
{
    openRoot(*static_cast<RootOpening*>(opening));
    return nullptr;
}

// libgsf walks the entries by calling itself, some 300 bytes of stack for each link, and many writers
// (libgsf among them) hang the elements of a storage one below the other. A host's thread may have a
// small stack, so a large directory gets one of its own.
bool openRootWithStack(RootOpening& opening, std::size_t farthest)
{
    constexpr std::size_t kFewLinks = 128;
    constexpr std::size_t kStackForLink = 1024;
    if (farthest <= kFewLinks) {
        openRoot(opening);
        return true;
    }
    pthread_attr_t attributes;
    pthread_t thread;
    if (pthread_attr_init(&attributes) != 0)
        return false;
    const bool started =
        pthread_attr_setstacksize(
            &attributes, (std::size_t{256} << 10) + (farthest * kStackForLink & ~std::size_t{4095})) == 0 &&
        pthread_create(&thread, &attributes, openRootOnOwnStack, &opening) == 0;
    pthread_attr_destroy(&attributes);
    return started && pthread_join(thread, nullptr) == 0;
}

}  // namespace

HResult readTree(const std::shared_ptr<const FileBytes>& file, ElementPtr& root, std::size_t& sectorSize)
{
    Directory directory;
    const HResult result = readDirectory(*file, directory);
    if (result < 0)
        return result;
    const Object<GsfInput> input = makeGsfInput(
        directory.damagedSizes.empty() ? file : std::make_shared<MendedFile>(file, directory.damagedSizes));
    RootOpening opening{input.get(), nullptr};
    if (!openRootWithStack(opening, directory.farthest))
        return kStorageOutOfMemory;
    if (!opening.root)
        return kStorageCorrupt;
    root = TreeBuilder(directory, file).build(std::move(opening.root));
    sectorSize = directory.sectorSize;
    return kStorageOk;
}

}  // namespace platform::compound
