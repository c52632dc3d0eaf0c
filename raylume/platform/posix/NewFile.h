// A new file that takes the place of another when it is complete.
#pragma once

#include <sys/stat.h>

#include <csignal>
#include <string>

#include "raylume/platform/CompoundFile.h"
#include "raylume/platform/posix/CompoundFileDescriptor.h"

namespace platform {

/// A write past the size limit of the process raises a signal, which ends a host that does not expect it.
/// While an object of this kind lives, the error alone has to be enough.
class QuietSizeLimit {
public:
    QuietSizeLimit();
    QuietSizeLimit(const QuietSizeLimit&) = delete;
    QuietSizeLimit& operator=(const QuietSizeLimit&) = delete;
    ~QuietSizeLimit();

private:
    sigset_t limit_;
    sigset_t before_;
    bool wasPending_ = false;
};

/// Goes without a trace when it does not take its place.
class NewFile {
public:
    /// `target` is a native path that no symbolic link is part of.
    explicit NewFile(std::string target);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile();

    /// A new file gets what the process gives to new files. One that takes the place of another is nobody
    /// else's until it has that one's permissions.
    HResult open();
    int number() const { return file_.number(); }
    /// Flushes the file to the disk and renames it.
    HResult replaceTarget();

private:
    void openNameless(mode_t mode);
    void openNamed(mode_t mode);
    bool giveName();
    template <class Take>
    bool takeFreeName(Take take);
    std::string hiddenName() const;
    HResult takePermissions(const struct stat& old);

    std::string target_;
    std::string folder_;
    compound::Descriptor file_;
    std::string name_;
};

}  // namespace platform
