#include "reader/formats/ovdl/Refusal.h"

#include "reader/HostState.h"

namespace ovdl {

Refusal::Refusal(const std::string& reason) : std::runtime_error(oneLine(reason))
{
}

}  // namespace ovdl
