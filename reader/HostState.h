// The reader's side of what hosts set and ask (HostHandlers.h).
#pragma once

#include <string>
#include <string_view>

namespace ovdl {

/// Hands a share to the host's progress handler, if there is one.
void forwardProgress(float done);
/// What the host's cancel handler says; false without one.
bool forwardCancelQuestion();

/// Sets what lastReason() gives; an empty text clears it.
void setLastReason(std::string_view reason);

/// `text` as one line of valid UTF-8: control characters and line separators become spaces, spaces
/// at the ends go, and a text that a hostile file made long is cut.
std::string oneLine(std::string_view text);

}  // namespace ovdl
