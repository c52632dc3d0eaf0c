// The files that a STEP file names for its products.
#pragma once

#include <XSControl_WorkSession.hxx>
#include <string>

namespace ovdl::step {

/// Takes the names out of a loaded model that the library must not follow: anything but a relative name of
/// a file inside the model's own folder, links followed, and files that for their part name such a file.
/// The products behind them stay without shapes. Raises Refusal if one cannot be taken out.
void dropForeignFiles(const Handle(XSControl_WorkSession) & session, const std::string& path);

}  // namespace ovdl::step
