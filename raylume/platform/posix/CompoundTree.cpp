#include "raylume/platform/posix/CompoundTree.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <new>
#include <utility>

#include "raylume/platform/MappedCompoundFile.h"
#include "raylume/platform/Text.h"

namespace platform::compound {

void EditedBytes::read(std::uint64_t offset, void* buffer, std::size_t count) const
{
    auto* to = static_cast<std::byte*>(buffer);
    while (count > 0) {
        const auto within = static_cast<std::size_t>(offset % kPiece);
        const std::size_t part = std::min(count, kPiece - within);
        std::memcpy(to, pieces_[static_cast<std::size_t>(offset / kPiece)].data() + within, part);
        to += part;
        offset += part;
        count -= part;
    }
}

// A failure on the way leaves a last piece that is not full, perhaps an empty one, to go on with.
void EditedBytes::grow(std::uint64_t size)
{
    while (capacity_ < size) {
        if (pieces_.size() * std::uint64_t{kPiece} == capacity_)
            pieces_.emplace_back();
        std::vector<std::byte>& last = pieces_.back();
        const std::uint64_t before = capacity_ - last.size();
        last.resize(static_cast<std::size_t>(std::min<std::uint64_t>(kPiece, size - before)));
        capacity_ = before + last.size();
    }
}

void EditedBytes::write(std::uint64_t offset, const void* buffer, std::size_t count)
{
    const auto* from = static_cast<const std::byte*>(buffer);
    // All that can fail comes first: either all is written or nothing.
    grow(offset + count);
    while (count > 0) {
        const auto within = static_cast<std::size_t>(offset % kPiece);
        const std::size_t part = std::min(count, kPiece - within);
        std::memcpy(pieces_[static_cast<std::size_t>(offset / kPiece)].data() + within, from, part);
        from += part;
        offset += part;
        count -= part;
        size_ = std::max(size_, offset);
    }
}

Element::Element(std::wstring name, Kind kind, int depth)
    : name_(std::move(name)), kind_(kind), depth_(depth)
{
    if (kind == Kind::kStream)
        edited_ = std::make_unique<EditedBytes>();
}

Element::Element(std::wstring name, std::unique_ptr<StreamOpener> opener)
    : name_(std::move(name)), kind_(Kind::kStream), opener_(std::move(opener))
{
}

ElementPtr Element::find(std::wstring_view name) const
{
    const auto [first, last] = places_.equal_range(toLower(name));
    if (first == last)
        return nullptr;
    // Children that only differ in case are few; of two with one name the first counts.
    std::size_t similar = children_.size();
    std::size_t exact = children_.size();
    for (auto place = first; place != last; ++place) {
        similar = std::min(similar, place->second);
        if (children_[place->second]->name_ == name)
            exact = std::min(exact, place->second);
    }
    return children_[exact < children_.size() ? exact : similar];
}

void Element::add(ElementPtr child)
{
    child->depth_ = depth_ + 1;
    places_.emplace(toLower(child->name_), children_.size());
    children_.push_back(std::move(child));
}

void Element::remove(const ElementPtr& child)
{
    const auto place = std::find(children_.begin(), children_.end(), child);
    if (place == children_.end())
        return;
    child->detach();
    const auto gone = static_cast<std::size_t>(place - children_.begin());
    children_.erase(place);
    std::erase_if(places_, [gone](const auto& entry) { return entry.second == gone; });
    for (auto& [name, index] : places_)
        index -= index > gone ? 1 : 0;
}

void Element::detach()
{
    detached_ = true;
    for (const ElementPtr& child : children_)
        child->detach();
}

bool Element::openBytes(std::shared_ptr<StreamSource>& source)
{
    if (edited_)
        return true;
    source = source_.lock();
    if (!source) {
        source = opener_->open();
        source_ = source;
    }
    return source != nullptr;
}

bool Element::edit()
{
    if (edited_)
        return true;
    auto bytes = std::make_unique<EditedBytes>();
    const auto take = [&bytes](const void* piece, std::size_t count) {
        bytes->write(bytes->size(), piece, count);
        return true;
    };
    if (copyBytes(*this, take) != kStorageOk)
        return false;
    edited_ = std::move(bytes);
    return true;
}

std::size_t utf16Length(std::wstring_view text)
{
    std::size_t units = 0;
    for (const wchar_t character : text)
        units += static_cast<std::uint32_t>(character) > 0xFFFFu ? 2 : 1;
    return units;
}

bool isValidName(std::wstring_view name)
{
    constexpr std::size_t kLongest = 31;
    const auto fits = [](wchar_t character) {
        const auto code = static_cast<std::uint32_t>(character);
        const bool half = code >= 0xD800u && code <= 0xDFFFu;
        return code != 0 && code <= 0x10FFFFu && !half &&
               std::wstring_view(L"/\\:!").find(character) == std::wstring_view::npos;
    };
    return !name.empty() && utf16Length(name) <= kLongest && std::all_of(name.begin(), name.end(), fits);
}

namespace {

// A tree, with what writes it. The views share it, so that its end is the release of the last one.
class Tree {
public:
    Tree(ElementPtr root, std::unique_ptr<TreeWriter> writer, bool unsaved)
        : root_(std::move(root)), writer_(std::move(writer)), unsaved_(unsaved)
    {
    }
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;
    ~Tree() { save(); }

    void touch() { unsaved_ = true; }

    HResult save()
    {
        if (!writer_ || !unsaved_)
            return kStorageOk;
        try {
            const HResult result = writer_->write(*root_);
            unsaved_ = result < 0;
            return result;
        } catch (const std::bad_alloc&) {
            return kStorageOutOfMemory;
        }
    }

private:
    ElementPtr root_;
    std::unique_ptr<TreeWriter> writer_;
    bool unsaved_;
};

using TreePtr = std::shared_ptr<Tree>;

// Exceptions do not pass through these interfaces.
template <class Operation>
HResult guarded(Operation operation)
{
    try {
        return operation();
    } catch (const std::bad_alloc&) {
        return kStorageOutOfMemory;
    }
}

bool wantsWriting(std::uint32_t mode)
{
    return (mode & 3u) != kModeRead;
}

// What is wrong with a mode, if anything.
HResult checkMode(std::uint32_t mode, bool writable)
{
    if ((mode & 3u) == 3u)
        return kStorageInvalidFlag;
    return wantsWriting(mode) && !writable ? kStorageAccessDenied : kStorageOk;
}

template <class Interface>
class View : public Interface {
public:
    View(TreePtr tree, ElementPtr element, bool writable)
        : tree_(std::move(tree)), element_(std::move(element)), writable_(writable)
    {
    }
    View(const View&) = delete;
    View& operator=(const View&) = delete;
    virtual ~View() = default;

    std::uint32_t AddRef() override { return ++references_; }
    std::uint32_t Release() override
    {
        const std::uint32_t left = --references_;
        if (left == 0)
            delete this;
        return left;
    }

protected:
    TreePtr tree_;
    ElementPtr element_;
    bool writable_;

private:
    std::atomic<std::uint32_t> references_ = 1;
};

class StreamView final : public View<IStream> {
public:
    using View::View;

    /// Before the first read, so that a damaged stream fails when it is opened.
    bool open() { return element_->openBytes(source_); }

    /// All of the bytes, wherever Read() has come to.
    HResult bytes(StreamBytes& bytes) const
    {
        if (element_->detached())
            return kStorageReverted;
        const EditedBytes* edited = element_->edited();
        if (!edited && source_->inPlace()) {
            bytes = {source_->inPlace(), static_cast<std::size_t>(source_->size())};
            return kStorageOk;
        }
        const auto size = static_cast<std::size_t>(edited ? edited->size() : source_->size());
        // Not set to zero first: all of it is read.
        const std::shared_ptr<unsigned char[]> copy(new unsigned char[size]);
        if (edited)
            edited->read(0, copy.get(), size);
        else if (!source_->read(0, copy.get(), size))
            return kStorageReadFault;
        bytes = {std::shared_ptr<const unsigned char>(copy, copy.get()), size};
        return kStorageOk;
    }

    HResult Read(void* buffer, std::uint32_t size, std::uint32_t* read) override
    {
        std::uint32_t ignored;
        std::uint32_t& count = read ? *read : ignored;
        count = 0;
        if (!buffer)
            return kStorageInvalidPointer;
        if (element_->detached())
            return kStorageReverted;
        return readAt(buffer, size, count);
    }

    HResult Write(const void* buffer, std::uint32_t size, std::uint32_t* written) override
    {
        std::uint32_t ignored;
        std::uint32_t& count = written ? *written : ignored;
        count = 0;
        if (!buffer)
            return kStorageInvalidPointer;
        if (element_->detached())
            return kStorageReverted;
        if (!writable_)
            return kStorageAccessDenied;
        if (size > kLargestStream - position_)
            return kStorageTooLarge;
        return guarded([&] { return writeAt(buffer, size, count); });
    }

private:
    HResult readAt(void* buffer, std::uint32_t size, std::uint32_t& count)
    {
        const EditedBytes* edited = element_->edited();
        const std::uint64_t total = edited ? edited->size() : source_->size();
        const auto part =
            static_cast<std::uint32_t>(std::min<std::uint64_t>(size, total - std::min(position_, total)));
        if (part == 0)
            return kStorageOk;
        if (edited)
            edited->read(position_, buffer, part);
        else if (!source_->read(position_, buffer, part))
            return kStorageReadFault;
        position_ += part;
        count = part;
        return kStorageOk;
    }

    HResult writeAt(const void* buffer, std::uint32_t size, std::uint32_t& count)
    {
        if (size == 0)
            return kStorageOk;
        if (!element_->edit())
            return kStorageReadFault;
        tree_->touch();
        element_->edited()->write(position_, buffer, size);
        position_ += size;
        count = size;
        return kStorageOk;
    }

    std::shared_ptr<StreamSource> source_;
    std::uint64_t position_ = 0;
};

class StorageView final : public View<IStorage> {
public:
    using View::View;

    const ElementPtr& element() const { return element_; }
    HResult put(const ElementPtr& element) { return insert(element, kModeReadWrite + kModeCreate); }

    HResult OpenStream(const wchar_t* name, std::uint32_t mode, IStream** stream) override
    {
        if (!stream)
            return kStorageInvalidPointer;
        *stream = nullptr;
        return guarded([&] {
            ElementPtr element;
            const HResult result = findToOpen(name, mode, Kind::kStream, element);
            return result < 0 ? result : viewStream(std::move(element), mode, stream);
        });
    }

    HResult CreateStorage(const wchar_t* name, std::uint32_t mode, IStorage** storage) override
    {
        if (!storage)
            return kStorageInvalidPointer;
        *storage = nullptr;
        return guarded([&] {
            ElementPtr element;
            const HResult result = create(name, mode, Kind::kStorage, element);
            return result < 0 ? result : viewStorage(std::move(element), mode, storage);
        });
    }

    HResult OpenStorage(const wchar_t* name, std::uint32_t mode, IStorage** storage) override
    {
        if (!storage)
            return kStorageInvalidPointer;
        *storage = nullptr;
        return guarded([&] {
            ElementPtr element;
            const HResult result = findToOpen(name, mode, Kind::kStorage, element);
            return result < 0 ? result : viewStorage(std::move(element), mode, storage);
        });
    }

    HResult Commit(std::uint32_t) override
    {
        if (element_->detached())
            return kStorageReverted;
        return writable_ ? tree_->save() : kStorageOk;
    }

    HResult DestroyElement(const wchar_t* name) override
    {
        return guarded([&] {
            ElementPtr element;
            const HResult result = find(name, element);
            if (result < 0)
                return result;
            if (!writable_)
                return kStorageAccessDenied;
            element_->remove(element);
            tree_->touch();
            return kStorageOk;
        });
    }

    HResult CreateStream(const wchar_t* name, std::uint32_t mode, IStream** stream) override
    {
        if (!stream)
            return kStorageInvalidPointer;
        *stream = nullptr;
        return guarded([&] {
            ElementPtr element;
            const HResult result = create(name, mode, Kind::kStream, element);
            return result < 0 ? result : viewStream(std::move(element), mode, stream);
        });
    }

private:
    HResult find(const wchar_t* name, ElementPtr& element) const
    {
        if (!name)
            return kStorageInvalidPointer;
        if (element_->detached())
            return kStorageReverted;
        element = element_->find(name);
        return element ? kStorageOk : kStorageNotFound;
    }

    HResult findToOpen(const wchar_t* name, std::uint32_t mode, Kind kind, ElementPtr& element) const
    {
        const HResult result = find(name, element);
        if (result < 0)
            return result;
        // An element of the other kind is none of that name.
        return element->kind() == kind ? checkMode(mode, writable_) : kStorageNotFound;
    }

    // Whatever has the name goes, if the mode says so.
    HResult makeRoom(std::wstring_view name, std::uint32_t mode)
    {
        const ElementPtr present = element_->find(name);
        if (present && (mode & kModeCreate) == 0)
            return kStorageExists;
        if (present)
            element_->remove(present);
        else if (element_->children().size() >= kMostElements)
            return kStorageTooLarge;
        return kStorageOk;
    }

    HResult create(const wchar_t* name, std::uint32_t mode, Kind kind, ElementPtr& element)
    {
        if (!name)
            return kStorageInvalidPointer;
        auto made = std::make_shared<Element>(name, kind);
        const HResult result = insert(made, mode);
        if (result >= 0)
            element = std::move(made);
        return result;
    }

    HResult insert(const ElementPtr& made, std::uint32_t mode)
    {
        if (element_->detached())
            return kStorageReverted;
        if (!writable_)
            return kStorageAccessDenied;
        if ((mode & 3u) == 3u)
            return kStorageInvalidFlag;
        if (!isValidName(made->name()))
            return kStorageInvalidName;
        if (element_->depth() >= kDeepestStorage)
            return kStorageTooLarge;
        const HResult result = makeRoom(made->name(), mode);
        if (result < 0)
            return result;
        element_->add(made);
        tree_->touch();
        return kStorageOk;
    }

    HResult viewStorage(ElementPtr element, std::uint32_t mode, IStorage** storage) const
    {
        *storage = new StorageView(tree_, std::move(element), wantsWriting(mode));
        return kStorageOk;
    }

    HResult viewStream(ElementPtr element, std::uint32_t mode, IStream** stream) const
    {
        auto view = std::make_unique<StreamView>(tree_, std::move(element), wantsWriting(mode));
        if (!view->open())
            return kStorageCorrupt;
        *stream = view.release();
        return kStorageOk;
    }
};

}  // namespace

IStorage* viewTree(ElementPtr root, std::unique_ptr<TreeWriter> writer, bool unsaved)
{
    const bool writable = writer != nullptr;
    auto tree = std::make_shared<Tree>(root, std::move(writer), unsaved);
    return new StorageView(std::move(tree), std::move(root), writable);
}

ElementPtr elementOf(IStorage& view)
{
    const auto* shown = dynamic_cast<StorageView*>(&view);
    return shown ? shown->element() : nullptr;
}

HResult putElement(IStorage& view, ElementPtr element)
{
    auto* shown = dynamic_cast<StorageView*>(&view);
    return shown ? shown->put(element) : kNotImplemented;
}

}  // namespace platform::compound

namespace platform {

HResult streamBytes(IStorage& storage, const wchar_t* name, StreamBytes& bytes)
{
    IStream* stream = nullptr;
    const HResult result = storage.OpenStream(name, kModeExclusive + kModeRead, &stream);
    if (result < 0)
        return result;
    const auto* view = dynamic_cast<compound::StreamView*>(stream);
    const HResult got = view ? compound::guarded([&] { return view->bytes(bytes); }) : kNotImplemented;
    stream->Release();
    return got;
}

}  // namespace platform
