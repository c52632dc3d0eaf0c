// The streams of a document in a compound file.
//
//   Header                      see DocumentHeader.h
//   Document                    the FlatBuffer of the document
//   Tessellation/<n>            the FlatBuffer of tessellation n, when it has one piece
//   Tessellation/<n>/<k>        piece k of it, when it has several
//
// From kGroupedFrom tessellations on they lie in storages of kGroup each, Tessellation/g<n / kGroup>/<n>,
// since a storage cannot hold very many elements.
#pragma once

#include <memory>

#include "raylume/platform/CompoundFile.h"
#include "reader/formats/ovdl/DocumentStreams.h"

namespace ovdl {

inline constexpr wchar_t kDocumentName[] = L"Document";
inline constexpr wchar_t kTessellationName[] = L"Tessellation";
inline constexpr std::uint32_t kGroupedFrom = 4096;
inline constexpr std::uint32_t kGroup = 1024;

/// The version of the format that this reader writes, and the last one that it reads.
inline constexpr std::uint32_t kFormatVersion = 1;

/// Writes into a storage, in the place of what it has of a document; everything else stays. The caller
/// commits. The storage is borrowed.
std::unique_ptr<StreamSink> makeCompoundSink(IStorage& root);

}  // namespace ovdl
