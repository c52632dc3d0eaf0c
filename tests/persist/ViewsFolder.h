// A user of a test's own, with a folder of custom views in it.
#pragma once

#include <string>

#include "raylume/platform/Text.h"
#include "tests/platform/ScopedEnvironment.h"
#include "tests/platform/TemporaryFolder.h"

namespace persist_tests {

class ViewsFolder {
public:
    /// The user's data folder alone: whoever asks for the folder of views makes it.
    ViewsFolder() : data_("XDG_DATA_HOME", user_.path()) {}

    const TemporaryFolder& user() const { return user_; }
    /// The native path, whether or not it is there.
    std::string path() const { return user_ / "Lumenforge/Presets/Views"; }
    std::string operator/(const std::string& name) const { return path() + "/" + name; }
    /// The text that the library builds, with a trailing separator.
    std::wstring text() const { return user_.wide() + L"\\Lumenforge\\Presets\\Views\\"; }
    std::string narrowText() const { return platform::narrow(text()); }
    void make() const { user_.makeFolder("Lumenforge/Presets/Views"); }
    void write(const std::string& name, const std::string& content) const
    {
        make();
        user_.write("Lumenforge/Presets/Views/" + name, content);
    }

private:
    TemporaryFolder user_;
    ScopedVariable data_;
};

}  // namespace persist_tests
