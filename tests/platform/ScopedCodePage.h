// The ANSI code page for the length of a test.
#pragma once

#include "raylume/platform/Text.h"

class ScopedCodePage {
public:
    explicit ScopedCodePage(int codePage)
        : old_(platform::ansiCodePage()), isSet_(platform::setAnsiCodePage(codePage))
    {
    }
    ScopedCodePage(const ScopedCodePage&) = delete;
    ScopedCodePage& operator=(const ScopedCodePage&) = delete;
    ~ScopedCodePage() { platform::setAnsiCodePage(old_); }

    bool isSet() const { return isSet_; }

private:
    int old_;
    bool isSet_;
};
