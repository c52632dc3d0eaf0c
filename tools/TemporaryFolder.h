// The folder for temporary files, which the library takes from the environment alone.
#pragma once

#include <filesystem>
#include <string>

namespace tool {

/// Gives the library a folder for temporary files when the environment names none: TMPDIR, else the
/// system's own. An environment that names one stays as it is.
void provideTemporaryFolder();

/// Asks for one configuration of the next document. The library learns the name from a small file in
/// the folder for temporary files; so that no other program's file is touched, that folder is a
/// private one while an object of this kind lives. The destructor removes it, bitmaps of the library
/// included, unless it is to be kept.
class ConfigurationRequest {
public:
    /// `name` in UTF-8, one line. With `keepFolder` the destructor removes what was written here, and the
    /// folder when there is nothing else in it. Raises std::runtime_error when the folder or the file
    /// cannot be made.
    explicit ConfigurationRequest(const std::string& name, bool keepFolder = false);
    ConfigurationRequest(const ConfigurationRequest&) = delete;
    ConfigurationRequest& operator=(const ConfigurationRequest&) = delete;
    ~ConfigurationRequest();

private:
    std::filesystem::path folder_;
    std::string previousValue_;
    bool hadPreviousValue_;
    bool keepFolder_;
};

}  // namespace tool
