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
#include "raylume/platform/Files.h"
#include "reader/formats/ovdl/DocumentStreams.h"

namespace ovdl {

inline constexpr wchar_t kDocumentName[] = L"Document";
inline constexpr wchar_t kTessellationName[] = L"Tessellation";
inline constexpr std::uint32_t kGroupedFrom = 4096;
inline constexpr std::uint32_t kGroup = 1024;

/// The version of the format that this reader writes, and the last one that it reads.
inline constexpr std::uint32_t kFormatVersion = 1;

/// Opens the streams of a document in a compound file. They are used where they lie in the file, which stays
/// mapped as long as the result lives.
///
/// Errors: raises Refusal for a file that is no compound file, or a damaged one.
std::unique_ptr<DocumentStreams> openCompoundStreams(std::shared_ptr<const platform::MappedFile> file);

/// Writes into a storage, in the place of what it has of a document; everything else stays. The caller
/// commits. The storage is borrowed.
std::unique_ptr<StreamSink> makeCompoundSink(IStorage& root);

}  // namespace ovdl
