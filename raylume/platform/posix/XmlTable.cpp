#include "raylume/platform/XmlTable.h"

#include <expat.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <new>
#include <string_view>
#include <type_traits>
#include <utility>

#include "raylume/platform/posix/EncodingStream.h"
#include "raylume/platform/posix/NamespaceCheck.h"
#include "raylume/platform/posix/XmlTableBuilder.h"

namespace platform {

namespace {

struct FreeParser {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};
using Parser = std::unique_ptr<std::remove_pointer_t<XML_Parser>, FreeParser>;

constexpr int kChunk = 1 << 16;

// A document can ask for much more than it is long, by entities and by attributes that its own
// declarations give to every element. What is written out stays below all of these: a tag has three
// bytes or more, and an element without attributes takes twelve. How far the text of entities may grow
// is the parser's own limit.
constexpr std::uint64_t kFreeAttributes = 65536;
constexpr std::uint64_t kFreeSize = 65536;
constexpr std::uint64_t kKeptForEachByte = 4;
constexpr int kMostNestedEntities = 1000;  // Each level takes stack.

// The parser's memory comes from where all other comes from, so that a program has one place to limit it.
// In front of each block stands its size, for growing.
constexpr std::size_t kHeader = alignof(std::max_align_t);
static_assert(kHeader >= sizeof(std::size_t));

void* allocate(std::size_t size)
{
    if (size > std::numeric_limits<std::size_t>::max() - kHeader) {
        return nullptr;
    }
    void* const start = ::operator new(size + kHeader, std::nothrow);
    if (!start) {
        return nullptr;
    }
    std::memcpy(start, &size, sizeof size);
    return static_cast<char*>(start) + kHeader;
}

void release(void* block)
{
    if (block) {
        ::operator delete(static_cast<char*>(block) - kHeader);
    }
}

void* reallocate(void* block, std::size_t size)
{
    void* const larger = allocate(size);
    if (larger && block) {
        std::size_t former = 0;
        std::memcpy(&former, static_cast<char*>(block) - kHeader, sizeof former);
        std::memcpy(larger, block, std::min(former, size));
        release(block);
    }
    return larger;
}

constexpr XML_Memory_Handling_Suite kMemory = {allocate, reallocate, release};

class CountedFile final : public InputFile {
public:
    CountedFile(std::unique_ptr<InputFile> file, std::uint64_t* count)
        : file_(std::move(file)), count_(count)
    {
    }

    std::size_t read(void* buffer, std::size_t size) override
    {
        const std::size_t got = file_->read(buffer, size);
        *count_ += got;
        return got;
    }

private:
    const std::unique_ptr<InputFile> file_;
    std::uint64_t* const count_;
};

/// One reading of a document from its start to its end.
class Pass {
public:
    /// With an encoding, the document's own word on it counts for nothing.
    Pass(XmlTable& table, const char* encoding)
        : builder_(table), parser_(XML_ParserCreate_MM(encoding, &kMemory, nullptr))
    {
        if (!parser_) {
            throw std::bad_alloc();
        }
        XML_SetUserData(parser_.get(), this);
        setHandlers();
    }

    void run(InputFile& file)
    {
        while (void* const buffer = XML_GetBuffer(parser_.get(), kChunk)) {
            const std::size_t count = file.read(buffer, kChunk);
            fed_ += count;
            if (XML_ParseBuffer(parser_.get(), static_cast<int>(count), count == 0) != XML_STATUS_OK) {
                break;
            }
            if (count == 0) {
                load_.status = XmlStatus::kLoaded;
                return;
            }
        }
        fail();
    }

    const XmlLoad& load() const { return load_; }
    /// The encoding that the document declares and the parser does not know; empty when there is none.
    const std::string& unknownEncoding() const { return unknownEncoding_; }

    /// Raises what could not be raised inside of the parser.
    void raiseIfOutOfMemory() const
    {
        if (ranOut_) {
            throw std::bad_alloc();
        }
    }

private:
    void setHandlers()
    {
        const XML_Parser parser = parser_.get();
        XML_SetElementHandler(parser, onStart, onEnd);
        XML_SetXmlDeclHandler(parser, onDeclaration);
        XML_SetStartDoctypeDeclHandler(parser, onDoctype);
        XML_SetAttlistDeclHandler(parser, onAttributeDeclaration);
        XML_SetEntityDeclHandler(parser, onEntity);
        XML_SetProcessingInstructionHandler(parser, onInstruction);
        XML_SetNotationDeclHandler(parser, onNotation);
        XML_SetUnknownEncodingHandler(parser, onUnknownEncoding, this);
        // Otherwise a reference to an unknown parameter entity passes in silence, and takes all later
        // entities with it. Nothing is fetched: that would take a handler.
        XML_SetParamEntityParsing(parser, XML_PARAM_ENTITY_PARSING_ALWAYS);
        XML_SetSkippedEntityHandler(parser, onSkippedEntity);
    }

    void stop(XmlStatus status, const char* reason)
    {
        if (load_.reason.empty()) {
            load_.status = status;
            load_.reason = reason;
        }
        XML_StopParser(parser_.get(), XML_FALSE);
    }

    void fail()
    {
        load_.offset =
            static_cast<std::uint64_t>(std::max<XML_Index>(XML_GetCurrentByteIndex(parser_.get()), 0));
        if (!load_.reason.empty()) {
            return;
        }
        const XML_Error error = XML_GetErrorCode(parser_.get());
        const bool isMemory = error == XML_ERROR_NO_MEMORY || error == XML_ERROR_AMPLIFICATION_LIMIT_BREACH;
        load_.status = isMemory ? XmlStatus::kOutOfMemory : XmlStatus::kRefused;
        const XML_LChar* const text = XML_ErrorString(error);
        load_.reason = text ? text : "unknown error";
    }

    // Nothing may be thrown through the parser, which is C.
    template <class Work>
    static void guarded(void* pass, Work work)
    {
        Pass& self = *static_cast<Pass*>(pass);
        try {
            work(self);
        } catch (const std::bad_alloc&) {
            self.ranOut_ = true;
            XML_StopParser(self.parser_.get(), XML_FALSE);
        }
    }

    static void XMLCALL onStart(void* pass, const XML_Char* name, const XML_Char** attributes)
    {
        guarded(pass, [&](Pass& self) {
            if (self.isStopped()) {
                return;
            }
            self.builder_.start(name, attributes);
            // An element with neither is no business of namespaces, and nor is one in front of the first.
            if (self.builder_.sawPrefix() && !self.namespaces_.start(name, attributes)) {
                self.stop(XmlStatus::kRefused, "a name against the rules of namespaces");
            }
            self.checkProportion();
        });
    }

    static void XMLCALL onEnd(void* pass, const XML_Char*)
    {
        Pass& self = *static_cast<Pass*>(pass);
        if (!self.isStopped()) {
            self.builder_.end();
            if (self.builder_.sawPrefix()) {
                self.namespaces_.end();
            }
        }
    }

    // The tag of an empty element still ends after a stop.
    bool isStopped() const { return ranOut_ || !load_.reason.empty(); }

    void checkProportion()
    {
        if (builder_.attributeCount() > kFreeAttributes + fed_ ||
            builder_.keptSize() + namespaces_.declaredSize() > kFreeSize + kKeptForEachByte * fed_ ||
            builder_.isFull()) {
            stop(XmlStatus::kOutOfMemory, "more than a document of this length may hold");
        }
    }

    static void XMLCALL onDeclaration(void* pass, const XML_Char* version, const XML_Char*, int)
    {
        guarded(pass, [&](Pass& self) {
            if (version && std::string_view(version) != "1.0") {
                self.stop(XmlStatus::kRefused, "a version of XML other than 1.0");
            }
        });
    }

    static void XMLCALL onDoctype(void* pass, const XML_Char* name, const XML_Char* systemId,
                                  const XML_Char* publicId, int)
    {
        guarded(pass, [&](Pass& self) {
            self.checkExternal(systemId, publicId);
            self.checkQualified(name);
        });
    }

    static void XMLCALL onAttributeDeclaration(void* pass, const XML_Char* element,
                                               const XML_Char* attribute, const XML_Char*, const XML_Char*,
                                               int)
    {
        guarded(pass, [&](Pass& self) {
            // One text for all attributes of a list, of which there may be many.
            if (std::exchange(self.declaredFor_, element) != element) {
                self.checkQualified(element);
            }
            self.checkQualified(attribute);
        });
    }

    static void XMLCALL onInstruction(void* pass, const XML_Char* target, const XML_Char*)
    {
        guarded(pass, [&](Pass& self) { self.checkWithoutColon(target); });
    }

    static void XMLCALL onNotation(void* pass, const XML_Char*, const XML_Char*, const XML_Char* systemId,
                                   const XML_Char* publicId)
    {
        guarded(pass, [&](Pass& self) { self.checkExternal(systemId, publicId); });
    }

    static void XMLCALL onEntity(void* pass, const XML_Char* name, int isParameter, const XML_Char* value,
                                 int length, const XML_Char*, const XML_Char* systemId,
                                 const XML_Char* publicId, const XML_Char*)
    {
        guarded(pass, [&](Pass& self) {
            self.checkExternal(systemId, publicId);
            self.checkWithoutColon(name);
            if (isParameter) {
                self.stop(XmlStatus::kRefused, "a parameter entity");
            }
            self.countNesting(value ? std::string_view(value, static_cast<std::size_t>(length)) : "");
        });
    }

    void checkExternal(const XML_Char* systemId, const XML_Char* publicId)
    {
        if (systemId || publicId) {
            stop(XmlStatus::kRefused, "an external identifier");
        }
    }

    void checkQualified(std::string_view name)
    {
        if (!NamespaceCheck::isQualified(name)) {
            stop(XmlStatus::kRefused, "a declared name against the rules of namespaces");
        }
    }

    // Entities and instructions have no namespaces.
    void checkWithoutColon(std::string_view name)
    {
        if (name.find(':') != std::string_view::npos) {
            stop(XmlStatus::kRefused, "a colon in the name of an entity or instruction");
        }
    }

    void countNesting(std::string_view value)
    {
        if (value.find('&') != std::string_view::npos && ++nestedEntities_ > kMostNestedEntities) {
            stop(XmlStatus::kOutOfMemory, "too many entities of entities");
        }
    }

    static void XMLCALL onSkippedEntity(void* pass, const XML_Char*, int)
    {
        guarded(pass, [](Pass& self) { self.stop(XmlStatus::kRefused, "an undefined entity"); });
    }

    // The parser's own way is one table of 256 entries. Refusing here ends this pass; the next one gets
    // the document in UTF-8.
    static int XMLCALL onUnknownEncoding(void* pass, const XML_Char* name, XML_Encoding*)
    {
        guarded(pass, [&](Pass& self) { self.unknownEncoding_ = name; });
        return XML_STATUS_ERROR;
    }

    XmlTableBuilder builder_;
    NamespaceCheck namespaces_;
    Parser parser_;
    XmlLoad load_;
    std::string unknownEncoding_;
    const XML_Char* declaredFor_ = nullptr;
    std::uint64_t fed_ = 0;
    int nestedEntities_ = 0;
    bool ranOut_ = false;
};

/// The readings of one document: as it is, and then by its declared encoding if the parser does not know
/// it.
class Reading {
public:
    explicit Reading(const XmlTable::Open& open) : open_(open) {}

    XmlLoad run(XmlTable& table)
    {
        const XmlLoad load = pass(table);
        return load.status == XmlStatus::kRefused && !encoding_.empty() ? pass(table) : load;
    }

private:
    XmlLoad pass(XmlTable& table)
    {
        std::unique_ptr<InputFile> file = open_();
        if (!file) {
            return {};
        }
        std::uint64_t size = 0;
        bool isBroken = false;
        const std::string encoding = encoding_;
        file = decoded(std::make_unique<CountedFile>(std::move(file), &size), &isBroken);
        if (!file) {
            return {XmlStatus::kRefused, 0, 0, "an encoding that is not read: " + encoding};
        }
        XmlLoad load = parse(table, *file);
        load.size = size;
        if (isBroken && load.status == XmlStatus::kLoaded) {
            load.status = XmlStatus::kRefused;
            load.reason = "bytes without a meaning in " + encoding;
        }
        return load;
    }

    std::unique_ptr<InputFile> decoded(std::unique_ptr<InputFile> file, bool* isBroken) const
    {
        return encoding_.empty() ? std::move(file) : openAsUtf8(std::move(file), encoding_, isBroken);
    }

    XmlLoad parse(XmlTable& table, InputFile& file)
    {
        Pass pass(table, encoding_.empty() ? nullptr : "UTF-8");
        pass.run(file);
        pass.raiseIfOutOfMemory();
        encoding_ = encoding_.empty() ? pass.unknownEncoding() : encoding_;
        return pass.load();
    }

    const XmlTable::Open& open_;
    std::string encoding_;
};

}  // namespace

XmlTable::XmlTable(XmlVocabulary vocabulary) : vocabulary_(std::move(vocabulary))
{
}

XmlTable::~XmlTable() = default;

XmlLoad XmlTable::load(const std::wstring& path)
{
    return load([&] { return InputFile::open(path); });
}

XmlLoad XmlTable::load(const Open& open)
{
    struct ClearUnlessLoaded {
        ~ClearUnlessLoaded()
        {
            if (load.status != XmlStatus::kLoaded) {
                XmlTableBuilder::clear(table);
            }
        }

        XmlTable& table;
        XmlLoad load;
    } guard{*this, {}};
    guard.load = Reading(open).run(*this);
    return guard.load;
}

XmlTable::Range XmlTable::descendants(std::uint32_t element, int name) const
{
    const auto& all = elementsByName_[static_cast<std::size_t>(name)];
    const auto first = std::upper_bound(all.begin(), all.end(), element);
    const auto last = std::lower_bound(first, all.end(), elements_[element].end);
    return {static_cast<std::size_t>(first - all.begin()), static_cast<std::size_t>(last - all.begin())};
}

}  // namespace platform
