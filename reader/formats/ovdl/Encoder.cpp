#include "reader/formats/ovdl/Encoder.h"

#include "reader/formats/ovdl/CompoundStreams.h"
#include "reader/formats/ovdl/DocumentBuffer.h"
#include "reader/formats/ovdl/Inventory.h"
#include "reader/formats/ovdl/TessellationBuffer.h"

namespace ovdl {
namespace {

void encodeHead(const DocumentContents& contents, const Inventory& inventory, StreamSink& sink)
{
    BufferBuilder builder(1u << 16, kLargestBuffer);
    const Bytes bytes = buildDocument(contents, inventory, builder);
    sink.document({kFormatVersion, contents.documentVersion, contents.displayListVersion}, bytes);
}

void encodeTessellation(const Inventory& inventory, std::uint32_t number, std::uint64_t largestPiece,
                        StreamSink& sink)
{
    const uoTempPartTessData_c& tessData = *inventory.tessellations.objects()[number];
    const TessellationLayout layout =
        layOut(tessData, tessellationName(static_cast<std::int32_t>(number)), largestPiece);
    const auto pieces = static_cast<std::uint32_t>(layout.pieces.size());
    for (std::uint32_t piece = 0; piece < pieces; ++piece) {
        // Set aside at once: growing would copy the piece again and again.
        BufferBuilder builder(layout.pieces[piece].bytes, kLargestBuffer);
        sink.tessellation(number, piece, pieces, buildPiece(tessData, layout, piece, inventory, builder));
    }
}

}  // namespace

void encodeDocument(const DocumentContents& contents, StreamSink& sink, std::uint64_t largestPiece)
{
    const Inventory inventory(contents, largestPiece);
    encodeHead(contents, inventory, sink);
    const auto count = static_cast<std::uint32_t>(inventory.tessellations.objects().size());
    for (std::uint32_t number = 0; number < count; ++number)
        encodeTessellation(inventory, number, largestPiece, sink);
}

}  // namespace ovdl
