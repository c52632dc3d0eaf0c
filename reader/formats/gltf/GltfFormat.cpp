#include <algorithm>
#include <cstring>

#include "raylume/platform/Files.h"
#include "raylume/platform/Text.h"
#include "reader/DocumentFormat.h"
#include "reader/formats/gltf/JsonReading.h"
#include "reader/formats/gltf/Meshes.h"
#include "reader/formats/gltf/NodeNames.h"
#include "reader/formats/gltf/References.h"
#include "reader/formats/gltf/Refusal.h"
#include "reader/formats/gltf/Scene.h"
#include "reader/formats/gltf/Uris.h"

namespace ovdl {
namespace gltf {
namespace {

constexpr std::wstring_view kTextEnding = L".gltf";

bool hasTextEnding(const std::wstring& path)
{
    return path.size() >= kTextEnding.size() &&
           platform::compareIgnoringCase(std::wstring_view(path).substr(path.size() - kTextEnding.size()),
                                         kTextEnding) == 0;
}

bool isBlank(unsigned char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Reads on behind blanks. An open file can be read once only, so what was read is kept.
class Start {
public:
    explicit Start(platform::InputFile& file) : file_(file) { more(); }

    Bytes bytes() const { return {buffer_, size_}; }
    /// The next character behind blanks; -1 at the end of the file.
    int next()
    {
        for (;;) {
            const int c = take();
            if (c < 0 || !isBlank(static_cast<unsigned char>(c)))
                return c;
        }
    }
    /// The next character, blank or not.
    int take()
    {
        if (position_ == size_ && !more())
            return -1;
        return buffer_[position_++];
    }
    void skipMark()
    {
        if (size_ >= 3 && std::memcmp(buffer_, "\xEF\xBB\xBF", 3) == 0)
            position_ = 3;
    }

private:
    bool more()
    {
        position_ = 0;
        size_ = file_.read(buffer_, sizeof(buffer_));
        return size_ != 0;
    }

    platform::InputFile& file_;
    unsigned char buffer_[4096];
    std::size_t size_ = 0;
    std::size_t position_ = 0;
};

// The full-fidelity documents of this reader can be written as JSON too, and begin with this key.
bool beginsWithOwnKey(Start& start)
{
    if (start.next() != '"')
        return false;
    for (const char c : std::string_view("ovdl\""))
        if (start.take() != c)
            return false;
    return true;
}

bool isText(Start& start)
{
    start.skipMark();
    return start.next() == '{' && !beginsWithOwnKey(start);
}

std::string oneLine(std::string text)
{
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
    return text;
}

std::unique_ptr<GltfDocument> readMapped(const platform::MappedFile& file, const DocumentPath& path,
                                         ReadContext& context)
{
    const Bytes bytes{file.data(), file.size()};
    const GlbChunks chunks = hasBinaryMagic(bytes) ? openGlb(bytes) : GlbChunks{bytes, {}, false};
    Budget budget;
    budget.addBytes(file.size());
    JsonDocument json(chunks.json, bytes);
    if (!context.acceptVersion(kForeignDocumentVersion))
        refuse("the host refuses documents of foreign formats");
    Records& records = json.records();
    checkReferences(records);
    const Buffers buffers(records, chunks, path, budget);
    Accessors accessors(records, buffers, budget);
    const NodeTree tree(records);
    const NodeNames names(records);
    auto document = std::make_unique<GltfDocument>();
    Steps steps(context, records.nodes.size() + workOfParts(records, tree));
    steps.advance(0);
    makeParts(records, tree, budget, *document);
    SceneWalk(records, tree, budget, steps, *document).run(cleanName(path.stem));
    fillParts(records, accessors, path, budget, steps, *document);
    return document;
}

std::vector<unsigned char> imageOf(const platform::MappedFile& file, const DocumentPath& path, int index)
{
    const Bytes bytes{file.data(), file.size()};
    const GlbChunks chunks = hasBinaryMagic(bytes) ? openGlb(bytes) : GlbChunks{bytes, {}, false};
    JsonDocument json(chunks.json, bytes);
    const Records& records = json.records();
    checkReferences(records);
    if (static_cast<std::size_t>(index) >= records.images.size())
        return {};
    const ImageRecord& image = records.images[static_cast<std::size_t>(index)];
    if (image.hasUri)
        return isDataUri(image.uri) ? dataUriBytes(image.uri).value_or(std::vector<unsigned char>())
                                    : std::vector<unsigned char>();
    Budget budget;
    budget.addBytes(file.size());
    if (image.view == kNone)
        return {};
    const Buffers buffers(records, chunks, path, budget);
    const Bytes view = buffers.view(image.view);
    return {view.begin(), view.end()};
}

class GltfFormat : public DocumentFormat {
public:
    const char* name() const override { return "glTF 2.0"; }
    bool recognises(const std::wstring& path, std::string& reason) override;
    ReadOutcome read(const std::wstring& path, ReadContext& context) override;
    std::vector<unsigned char> image(const std::wstring& path, int index) override;
};

bool GltfFormat::recognises(const std::wstring& path, std::string&)
{
    const auto file = platform::InputFile::open(path);
    if (!file)
        return false;
    Start start(*file);
    return hasBinaryMagic(start.bytes()) || (hasTextEnding(path) && isText(start));
}

ReadOutcome GltfFormat::read(const std::wstring& path, ReadContext& context)
{
    ReadOutcome outcome;
    try {
        const auto file = platform::MappedFile::open(path);
        if (!file)
            refuse("the file cannot be opened");
        outcome.document = readMapped(*file, DocumentPath(path), context);
    } catch (const Refusal& refusal) {
        outcome.kind = ReadOutcome::kRejected;
        outcome.reason = oneLine(refusal.reason);
    } catch (const Cancellation&) {
        outcome.kind = ReadOutcome::kCancelled;
    }
    return outcome;
}

std::vector<unsigned char> GltfFormat::image(const std::wstring& path, int index)
{
    try {
        const auto file = platform::MappedFile::open(path);
        return file ? imageOf(*file, DocumentPath(path), index) : std::vector<unsigned char>();
    } catch (const Refusal&) {
        return {};
    }
}

}  // namespace
}  // namespace gltf

std::unique_ptr<DocumentFormat> makeGltfFormat()
{
    return std::make_unique<gltf::GltfFormat>();
}

}  // namespace ovdl
