// The library's tables for Shift_JIS rotate three controls; other systems take these bytes as themselves.
#pragma once

namespace platform {

/// The control that a byte stands for, from the one that the library's table gives for it.
template <class Character>
Character controlAsByteHasIt(Character control)
{
    switch (control) {
    case 0x1C:
        return 0x1A;
    case 0x7F:
        return 0x1C;
    case 0x1A:
        return 0x7F;
    default:
        return control;
    }
}

}  // namespace platform
