// Any bytes as a stream of settings; ends the process where a promise of the reading is broken. The first
// byte chooses the code page and whether the user has a folder of views.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "raylume/persist/RLByteEnds.h"
#include "raylume/persist/RLData.h"
#include "raylume/platform/Errors.h"
#include "raylume/platform/Text.h"

namespace {

namespace fs = std::filesystem;

void require(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

// A user of this process alone.
class User {
public:
    User()
    {
        unsetenv("HOME");
        std::string pattern = (fs::temp_directory_path() / "raylume-fuzz-XXXXXX").string();
        require(mkdtemp(pattern.data()) != nullptr);
        folder_ = pattern;
    }
    ~User()
    {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }

    void setHome(bool hasHome) const
    {
        if (hasHome) {
            setenv("XDG_DATA_HOME", folder_.c_str(), 1);
        } else {
            unsetenv("XDG_DATA_HOME");
        }
    }

    // Nothing but plain files in the folder of views, and they go.
    void empty() const
    {
        const fs::path views = folder_ / "Lumenforge" / "Presets" / "Views";
        for (const auto& entry : fs::recursive_directory_iterator(folder_)) {
            const bool isAbove = entry.is_directory() && views.string().starts_with(entry.path().string());
            require(isAbove || (entry.is_regular_file() && entry.path().parent_path() == views));
        }
        if (fs::exists(views)) {
            for (const auto& entry : fs::directory_iterator(views)) {
                fs::remove(entry.path());
            }
        }
    }

private:
    fs::path folder_;
};

bool load(RLData& data, const std::string& bytes)
{
    RLMemorySource source(bytes);
    RLByteStream stream(source, L"fuzz");
    RLArchive archive{&stream};
    try {
        data.serialize(archive);
        return true;
    } catch (const platform::ArchiveError& error) {
        require(error.cause() == platform::ArchiveError::kEndOfFile);
        return false;
    }
}

std::string store(RLData& data)
{
    RLMemorySink sink;
    RLByteStream stream(sink, L"fuzz");
    RLArchive archive{&stream};
    data.serialize(archive);
    stream.close();
    return sink.bytes();
}

// Text changes once at the most: what was stored is in the code page.
void checkRoundTrip(RLData& data)
{
    const std::string bytes = store(data);
    RLData again;
    require(load(again, bytes));
    require(store(again) == bytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const User user;
    if (size == 0) {
        return 0;
    }
    constexpr int kPages[] = {65001, 1252, 932, 65001};
    platform::setAnsiCodePage(kPages[data[0] & 3]);
    const bool hasHome = (data[0] & 4) != 0;
    user.setHome(hasHome);
    RLData settings;
    load(settings, std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
    if (hasHome) {
        user.empty();
    } else {
        checkRoundTrip(settings);
    }
    return 0;
}
