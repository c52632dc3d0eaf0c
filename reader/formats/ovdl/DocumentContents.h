// Everything that a document can hold, as objects of the reader interface.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "raylume/load/ReaderInterface.h"
#include "reader/DocumentHeader.h"

namespace ovdl {

/// What is written as a document. Nothing is owned; the objects stay as they are. Objects that several
/// others point at are written once.
struct DocumentContents {
    std::uint32_t documentVersion = 12000;
    std::uint32_t displayListVersion = 0;
    OVDLPartDocument* part = nullptr;
    OVDLAssemblyDocument* assembly = nullptr;
    std::map<std::wstring, uoTempAssemblySHDDataArray_c*> configurations;
    /// Why the document is rejected, where part or assembly say that it is. UTF-8.
    std::string reason;
};

}  // namespace ovdl
