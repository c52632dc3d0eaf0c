// The files that a STEP file names for its products.
#pragma once

#include <XSControl_WorkSession.hxx>
#include <string>

namespace ovdl::step {

/// Takes the names out of a loaded model that the library must not follow: anything but a relative name of
/// a file inside the model's own folder, links followed, files that for their part name such a file, and
/// files that by way of others name themselves. The products behind them stay without shapes. `path` has no
/// links in it. Raises Refusal if one cannot be taken out, or when a file that is followed has fails in its
/// load check.
void dropForeignFiles(const Handle(XSControl_WorkSession) & session, const std::string& path);

}  // namespace ovdl::step
