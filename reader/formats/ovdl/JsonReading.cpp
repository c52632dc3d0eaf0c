#include <ovdl_schema/document_generated.h>

#include <optional>

#include "reader/formats/ovdl/CompoundStreams.h"
#include "reader/formats/ovdl/JsonBuffer.h"
#include "reader/formats/ovdl/JsonText.h"
#include "reader/formats/ovdl/Refusal.h"

namespace ovdl {
namespace json {
namespace {

using Buffer = std::vector<unsigned char>;

struct Pieces {
    std::size_t first;
    std::uint32_t count;
};

// What a text holds, as buffers.
class Streams : public DocumentStreams {
public:
    explicit Streams(std::uint64_t textSize) : size_(textSize) {}

    DocumentHeader header() override { return header_; }
    Bytes document() override { return document_; }
    Bytes tessellation(std::uint32_t number, std::uint32_t piece, std::uint32_t pieces) override
    {
        if (number >= tessellations_.size() || pieces != tessellations_[number].count || piece >= pieces)
            refuse("a tessellation is missing");
        return pieces_[tessellations_[number].first + piece];
    }
    /// Of the text, not of the buffers, which may be larger: it is the text that somebody sent.
    std::uint64_t size() const override { return size_; }

    DocumentHeader header_;
    Buffer document_;
    std::vector<Buffer> pieces_;
    std::vector<Pieces> tessellations_;

private:
    std::uint64_t size_;
};

// Reads the object that holds all the others.
class TextReading {
public:
    TextReading(std::string_view text, const std::function<void()>& ask, Streams& streams)
        : tokens_(text, ask), streams_(streams)
    {
    }

    void read()
    {
        tokens_.expect('{');
        std::string key;
        tokens_.key(key);
        if (key != "ovdl")
            tokens_.fail("the first key must be \"ovdl\"");
        streams_.header_.documentVersion = 12000;
        readFormat();
        while (tokens_.take(',')) {
            tokens_.key(key);
            readMember(key);
        }
        tokens_.expect('}');
        tokens_.end();
        finish();
    }

private:
    void readFormat()
    {
        const auto version = readWhole<std::uint32_t>(tokens_, "ovdl");
        if (version == 0 || version > kFormatVersion)
            tokens_.fail("version " + std::to_string(version) + " of the format is unknown here");
        streams_.header_.formatVersion = version;
    }

    void readMember(const std::string& key)
    {
        if (key == "documentVersion")
            readOnce(key, hasVersion_, streams_.header_.documentVersion);
        else if (key == "displayListVersion")
            readOnce(key, hasDisplayListVersion_, streams_.header_.displayListVersion);
        else if (key == "document")
            readDocument(key);
        else if (key == "tessellations")
            readTessellations(key);
        else
            tokens_.fail("there is no key " + quoted(key) + " here");
    }

    void requireFirst(const std::string& key, bool& seen)
    {
        if (seen)
            tokens_.fail("the key " + quoted(key) + " stands here twice");
        seen = true;
    }
    void readOnce(const std::string& key, bool& seen, std::uint32_t& target)
    {
        requireFirst(key, seen);
        target = readWhole<std::uint32_t>(tokens_, key);
    }

    void readDocument(const std::string& key)
    {
        bool seen = document_.has_value();
        requireFirst(key, seen);
        document_.emplace(tokens_, roots().document, texts_);
        document_->read();
    }

    void readTessellations(const std::string& key)
    {
        requireFirst(key, hasTessellations_);
        tokens_.expect('[');
        if (tokens_.take(']'))
            return;
        do
            readTessellation();
        while (tokens_.take(','));
        tokens_.expect(']');
    }
    void readTessellation()
    {
        const std::size_t first = streams_.pieces_.size();
        if (tokens_.take('[')) {
            if (!tokens_.take(']')) {
                do
                    readPiece();
                while (tokens_.take(','));
                tokens_.expect(']');
            }
        } else {
            readPiece();
        }
        streams_.tessellations_.push_back(
            {first, static_cast<std::uint32_t>(streams_.pieces_.size() - first)});
    }
    void readPiece()
    {
        BufferReading reading(tokens_, roots().tessellation, texts_);
        reading.read();
        streams_.pieces_.push_back(reading.finish(kTessellationIdentifier));
    }

    void finish()
    {
        if (!document_)
            tokens_.fail("the key \"document\" is missing");
        document_->addTexts();
        std::vector<fb::TessellationEntry> entries;
        for (const Pieces& pieces : streams_.tessellations_)
            entries.emplace_back(pieces.count);
        if (hasTessellations_)
            document_->addStructs("tessellations", entries.data(), entries.size());
        streams_.document_ = document_->finish(kDocumentIdentifier);
    }

    Tokens tokens_;
    Streams& streams_;
    TextPool texts_;
    std::optional<BufferReading> document_;
    bool hasVersion_ = false;
    bool hasDisplayListVersion_ = false;
    bool hasTessellations_ = false;
};

std::size_t behindBlanks(std::string_view text, std::size_t at)
{
    return std::min(text.find_first_not_of(" \t\r\n", at), text.size());
}

}  // namespace
}  // namespace json

bool startsLikeOurJson(std::string_view start)
{
    if (start.substr(0, 3) == "\xEF\xBB\xBF")
        start.remove_prefix(3);
    start.remove_prefix(json::behindBlanks(start, 0));
    if (start.substr(0, 1) != "{")
        return false;
    start.remove_prefix(json::behindBlanks(start, 1));
    return start.substr(0, 6) == "\"ovdl\"";
}

std::unique_ptr<DocumentStreams> readJsonStreams(std::string_view text, const std::function<void()>& ask)
{
    auto streams = std::make_unique<json::Streams>(text.size());
    json::TextReading(text, ask, *streams).read();
    return streams;
}

}  // namespace ovdl
