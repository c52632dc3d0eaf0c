// Documents written: what a reader handed out, or what a host made itself.
#pragma once

#include <string>

#include "raylume/platform/Export.h"
#include "reader/PreparedDocuments.h"

namespace ovdl {

/// Writes a document as an .ovdl file, or as JSON in the same schema when `path` ends in ".json". All of
/// it is kept: every configuration, both levels of appearance, decals, lights, scene and view. A file that
/// is there already is replaced when the new one is complete; the settings that an add-in stored in it are
/// not kept. After a failure it is what it was.
///
/// Of the virtual operations only isRejected() is asked. The others (getModelVizProp() and its like) are
/// not: what is written are the members that they answer from by default.
///
/// Errors: false, with one line of UTF-8 in `reason`; also for objects that no document can hold, such
///   as strips that need more vertices than the arrays have, and for a path with a zero character.
///   std::bad_alloc, and what an isRejected() of the host's own raises, goes through; the file is then what
///   it was.
OVDL_API bool writeDocument(const std::wstring& path, const PreparedDocument& document,
                            std::string& reason);

/// Reads any document that this reader opens, all its configurations included, and writes it as above.
/// Settings that an add-in stored in a compound file are carried over into an .ovdl file. A document that
/// says itself that it is rejected is converted with its reason; one that cannot be read is not.
///
/// `configuration`, unless empty, becomes the one that the written assembly opens with.
/// The handlers for progress and cancellation are asked as in any read (HostHandlers.h).
/// Errors: false, with the reason; a document that was cancelled writes nothing and has an empty reason.
///   std::bad_alloc, and what a handler or callback of the host raises, goes through; nothing is written.
OVDL_API bool convertDocument(const std::wstring& source, const std::wstring& target,
                              const std::wstring& configuration, std::string& reason);

}  // namespace ovdl
