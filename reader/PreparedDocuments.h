// Documents built in memory and put under a path. Hosts use them to show what they have made
// themselves; tests use them to reach every corner of the reader interface.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "raylume/load/ReaderInterface.h"

namespace ovdl {

/// One document, made anew for each read.
///
/// Ownership: owns the documents, the configurations and whatever is given to own(); the reader
///   keeps it until the document object of the read is destroyed or reads again. The documents go
///   first, then what is owned, the newest first. May be derived from, to hold the objects as members,
///   which go before the documents.
class OVDL_API PreparedDocument {
public:
    PreparedDocument();
    PreparedDocument(const PreparedDocument&) = delete;
    PreparedDocument& operator=(const PreparedDocument&) = delete;
    virtual ~PreparedDocument();

    /// Makes an object that lives as long as the document.
    template <class T, class... Arguments>
    T* own(Arguments&&... arguments)
    {
        auto object = std::make_shared<T>(std::forward<Arguments>(arguments)...);
        T* made = object.get();
        owned_.push_back(std::move(object));
        return made;
    }

    /// An array of pointers over `elements`, which live as long as the document.
    template <class T>
    ovPointerArray<T> array(std::vector<T*> elements)
    {
        auto* kept = own<std::vector<T*>>(std::move(elements));
        return {kept->data(), static_cast<long long>(kept->size())};
    }

    /// A view over `values`, which live as long as the document.
    template <class T>
    ovArrayView<T> view(std::vector<T> values)
    {
        auto* kept = own<std::vector<T>>(std::move(values));
        return {kept->data(), static_cast<long long>(kept->size())};
    }

    /// At most one of these two is usual; the library takes the part when there are both.
    std::unique_ptr<OVDLPartDocument> part;
    std::unique_ptr<OVDLAssemblyDocument> assembly;
    /// Component arrays by configuration name.
    std::map<std::wstring, uoTempAssemblySHDDataArray_c> configurations;
    std::uint32_t version = 12000;
    /// False: the document cannot be opened at all.
    bool openable = true;
    /// True: part and assembly are handed out with their own `rejected` set.
    bool rejected = false;
    /// What ReadFile gives.
    OVXDLReader_FileLoadResult result = OVXDLReader_Loaded;
    /// The one-line reason that lastReason() gives when the document is rejected or not openable.
    std::string reason;
    /// The version of the display lists; 0 for none. Written documents tell it (DocumentWriter.h).
    std::uint32_t displayListVersion = 0;

private:
    std::vector<std::shared_ptr<void>> owned_;
};

using DocumentFactory = std::function<std::unique_ptr<PreparedDocument>()>;

/// Puts a document under a path (compared exactly). It takes the place of a file of that name and of
/// an earlier document. The factory is called once for each load: what it makes for a probe serves the
/// read that follows, or is destroyed with the next document object. A factory that is empty, gives
/// null or raises stands for a document that cannot be opened (std::bad_alloc goes through).
OVDL_API void prepareDocument(const std::wstring& path, DocumentFactory factory);
/// Takes the document away; an unknown path does nothing.
OVDL_API void forgetDocument(const std::wstring& path);

}  // namespace ovdl
