#include "raylume/platform/CompoundCopy.h"

#include <new>

#include "raylume/platform/posix/CompoundTree.h"

namespace platform {

namespace {

using namespace compound;

HResult copyStream(Element& from, Element& to)
{
    EditedBytes& bytes = *to.edited();
    return copyBytes(from, [&bytes](const void* piece, std::size_t count) {
        bytes.write(bytes.size(), piece, count);
        return true;
    });
}

// As deep as storages nest, which is limited.
HResult copyOf(Element& from, int depth, ElementPtr& copy)
{
    if (depth > kDeepestStorage)
        return kStorageTooLarge;
    copy = std::make_shared<Element>(from.name(), from.kind(), depth);
    copy->classId = from.classId;
    copy->modified = from.modified;
    if (from.kind() == Kind::kStream)
        return copyStream(from, *copy);
    for (const ElementPtr& child : from.children()) {
        ElementPtr made;
        const HResult result = copyOf(*child, depth + 1, made);
        if (result < 0)
            return result;
        copy->add(std::move(made));
    }
    return kStorageOk;
}

HResult copyBetween(IStorage& from, const wchar_t* name, IStorage& to)
{
    const ElementPtr source = elementOf(from);
    const ElementPtr target = elementOf(to);
    if (!source || !target)
        return kNotImplemented;
    if (source->detached())
        return kStorageReverted;
    const ElementPtr element = source->find(name);
    if (!element)
        return kStorageNotFound;
    ElementPtr copy;
    const HResult result = copyOf(*element, target->depth() + 1, copy);
    return result < 0 ? result : putElement(to, std::move(copy));
}

}  // namespace

HResult copyElement(IStorage& from, const wchar_t* name, IStorage& to)
{
    if (!name)
        return kStorageInvalidPointer;
    try {
        return copyBetween(from, name, to);
    } catch (const std::bad_alloc&) {
        return kStorageOutOfMemory;
    }
}

}  // namespace platform
