#include "raylume/platform/posix/CompoundWriter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <iterator>
#include <string>
#include <utility>

#include "raylume/platform/Text.h"
#include "raylume/platform/posix/CompoundFileDescriptor.h"
#include "raylume/platform/posix/CompoundGsf.h"

namespace platform::compound {

namespace {

std::string folderOf(const std::string& path)
{
    const std::size_t cut = path.rfind('/');
    if (cut == std::string::npos)
        return ".";
    return cut == 0 ? "/" : path.substr(0, cut);
}

// A write past the size limit of the process raises a signal, which ends a host that does not expect
// it. The error alone is enough.
class QuietSizeLimit {
public:
    QuietSizeLimit()
    {
        sigemptyset(&limit_);
        sigaddset(&limit_, SIGXFSZ);
        sigset_t pending;
        sigpending(&pending);
        wasPending_ = sigismember(&pending, SIGXFSZ) == 1;
        pthread_sigmask(SIG_BLOCK, &limit_, &before_);
    }
    QuietSizeLimit(const QuietSizeLimit&) = delete;
    QuietSizeLimit& operator=(const QuietSizeLimit&) = delete;
    ~QuietSizeLimit()
    {
        const timespec now = {0, 0};
        while (!wasPending_ && sigtimedwait(&limit_, nullptr, &now) > 0) {
        }
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }

private:
    sigset_t limit_;
    sigset_t before_;
    bool wasPending_ = false;
};

// The new file until it has taken its place; goes without a trace when it does not.
class NewFile {
public:
    explicit NewFile(std::string target) : target_(std::move(target)), folder_(folderOf(target_)) {}
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile()
    {
        if (!name_.empty())
            unlink(name_.c_str());
    }

    // A new file gets what the process gives to new files. One that takes the place of another is
    // nobody else's until it has that one's permissions.
    HResult open()
    {
        struct stat old;
        const bool replaces = stat(target_.c_str(), &old) == 0;
        const mode_t mode = replaces ? 0600 : 0666;
        openNameless(mode);
        if (!file_.isOpen())
            openNamed(mode);
        if (!file_.isOpen())
            return failure(errno);
        return replaces ? takePermissions(old) : kStorageOk;
    }

    int number() const { return file_.number(); }

    HResult replaceTarget()
    {
        if (fsync(file_.number()) != 0 || (name_.empty() && !giveName()) ||
            rename(name_.c_str(), target_.c_str()) != 0)
            return failure(errno);
        name_.clear();
        // The rename is done; that it lasts is all that is left to ask for.
        const Descriptor folder(::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (folder.isOpen())
            fsync(folder.number());
        return kStorageOk;
    }

private:
    // The new file is not there anyway: what is missing is its folder.
    static HResult failure(int error)
    {
        return error == ENOENT ? kStoragePathNotFound : resultOfErrno(error);
    }

    // A file without a name leaves nothing behind when the process is killed. It gets its name by way
    // of the process's folder of open files.
    void openNameless(mode_t mode)
    {
        if (access("/proc/self/fd", X_OK) == 0)
            file_ = Descriptor(::open(folder_.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, mode));
    }

    void openNamed(mode_t mode)
    {
        constexpr int kFlags = O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC | O_NOFOLLOW;
        takeFreeName([&](const char* name) {
            file_ = Descriptor(::open(name, kFlags, mode));
            return file_.isOpen();
        });
    }

    bool giveName()
    {
        const std::string opened = "/proc/self/fd/" + std::to_string(file_.number());
        return takeFreeName([&](const char* name) {
            return linkat(AT_FDCWD, opened.c_str(), AT_FDCWD, name, AT_SYMLINK_FOLLOW) == 0;
        });
    }

    // Tries hidden names until `take` gets one that nobody has.
    template <class Take>
    bool takeFreeName(Take take)
    {
        for (int attempt = 0; attempt < 100; ++attempt) {
            const std::string name = hiddenName();
            if (take(name.c_str())) {
                name_ = name;
                return true;
            }
            if (errno != EEXIST)
                return false;
        }
        return false;
    }

    std::string hiddenName() const
    {
        static constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyz234567";
        unsigned char random[12];
        if (getentropy(random, sizeof(random)) != 0)
            std::fill(std::begin(random), std::end(random), std::uint8_t{0});
        std::string name = folder_ + "/.raylume-";
        for (const unsigned char byte : random)
            name += kLetters[byte % 32];
        return name;
    }

    HResult takePermissions(const struct stat& old)
    {
        // Only root may give files away; whoever else writes becomes the owner.
        [[maybe_unused]] const int owned = fchown(file_.number(), old.st_uid, old.st_gid);
        return fchmod(file_.number(), old.st_mode & 07777) == 0 ? kStorageOk : resultOfErrno(errno);
    }

    std::string target_;
    std::string folder_;
    Descriptor file_;
    std::string name_;
};

// What libgsf writes to. It keeps the first error, since libgsf drops some, and gathers the many small
// writes of tables and directories.
class BufferedSink final : public FileSink {
public:
    explicit BufferedSink(int number) : number_(number) {}

    void write(std::uint64_t offset, const void* bytes, std::size_t count) override
    {
        if (offset != start_ + buffer_.size() || buffer_.size() + count > kMost)
            flush();
        if (buffer_.empty())
            start_ = offset;
        if (count >= kMost)
            writeOut(offset, static_cast<const char*>(bytes), count);
        else
            buffer_.append(static_cast<const char*>(bytes), count);
    }

    bool failed() const override { return error_ != 0; }

    HResult finish()
    {
        flush();
        return error_ == 0 ? kStorageOk : resultOfErrno(error_);
    }

private:
    static constexpr std::size_t kMost = 65536;

    void flush()
    {
        writeOut(start_, buffer_.data(), buffer_.size());
        buffer_.clear();
    }

    void writeOut(std::uint64_t offset, const char* bytes, std::size_t count)
    {
        while (count > 0 && error_ == 0) {
            const ssize_t written = pwrite(number_, bytes, count, static_cast<off_t>(offset));
            if (written < 0 && errno == EINTR)
                continue;
            if (written <= 0) {
                error_ = written < 0 ? errno : EIO;
                return;
            }
            bytes += written;
            offset += static_cast<std::uint64_t>(written);
            count -= static_cast<std::size_t>(written);
        }
    }

    int number_;
    std::string buffer_;
    std::uint64_t start_ = 0;
    int error_ = 0;
};

// Whether a tree can be written at all, asked before anything is.
class Inspection {
public:
    HResult inspect(const Element& storage)
    {
        if (!census_.add(storage.children().size()))
            return kStorageTooLarge;
        for (const ElementPtr& child : storage.children()) {
            const HResult result = inspectChild(*child);
            if (result < 0)
                return result;
        }
        return kStorageOk;
    }

private:
    // A file of another program may have names that nobody may give; they stay as they are if libgsf
    // can write them.
    static bool canBeWritten(const std::wstring& name)
    {
        return !name.empty() && utf16Length(name) <= 31 && fromUtf8(toUtf8(name)) == name;
    }

    HResult inspectChild(const Element& child)
    {
        if (!canBeWritten(child.name()))
            return kStorageInvalidName;
        return child.kind() == Kind::kStorage ? inspect(child) : kStorageOk;
    }

    Census census_;
};

class GsfTreeWriter {
public:
    explicit GsfTreeWriter(FileSink& sink) : sink_(sink) {}

    HResult write(Element& root, std::size_t sectorSize)
    {
        const Object<GsfOutput> output = makeGsfOutput(sink_);
        const Object<GsfOutfile> outfile(
            gsf_outfile_msole_new_full(output.get(), static_cast<guint>(sectorSize), 64));
        const HResult result = fill(outfile.get(), root);
        // Closed in any case: libgsf complains of an end without.
        const bool closed = gsf_output_close(GSF_OUTPUT(outfile.get()));
        return result < 0 ? result : closed ? kStorageOk : kStorageWriteFault;
    }

private:
    // As deep as storages nest, which is limited.
    HResult fill(GsfOutfile* outfile, Element& storage)
    {
        gsf_outfile_msole_set_class_id(GSF_OUTFILE_MSOLE(outfile), storage.classId.data());
        for (const ElementPtr& child : storage.children()) {
            const HResult result = writeChild(outfile, *child);
            if (result < 0)
                return result;
        }
        return kStorageOk;
    }

    HResult writeChild(GsfOutfile* outfile, Element& child)
    {
        const bool isStorage = child.kind() == Kind::kStorage;
        const Object<GsfOutput> made(newChild(outfile, child, isStorage));
        if (!made)
            return kStorageWriteFault;
        const HResult result =
            isStorage ? fill(GSF_OUTFILE(made.get()), child) : writeStream(made.get(), child);
        const bool closed = gsf_output_close(made.get());
        return result < 0 ? result : closed ? kStorageOk : kStorageWriteFault;
    }

    static GsfOutput* newChild(GsfOutfile* outfile, const Element& child, bool isStorage)
    {
        const std::string name = toUtf8(child.name());
        if (!isStorage || !child.modified)
            return gsf_outfile_new_child(outfile, name.c_str(), isStorage);
        GDateTime* seconds = g_date_time_new_from_unix_utc(*child.modified / 1000000);
        GDateTime* time = seconds ? g_date_time_add(seconds, *child.modified % 1000000) : nullptr;
        GsfOutput* made = gsf_outfile_new_child_full(outfile, name.c_str(), TRUE, "modtime", time, nullptr);
        for (GDateTime* used : {seconds, time})
            if (used)
                g_date_time_unref(used);
        return made;
    }

    HResult writeStream(GsfOutput* output, Element& stream) const
    {
        return copyBytes(stream, [&](const void* piece, std::size_t count) {
            return gsf_output_write(output, count, static_cast<const guint8*>(piece)) && !sink_.failed();
        });
    }

    FileSink& sink_;
};

HResult writeTree(int number, Element& root, std::size_t sectorSize)
{
    BufferedSink sink(number);
    const HResult result = GsfTreeWriter(sink).write(root, sectorSize);
    // What the system said of the file tells more than what libgsf made of it.
    const HResult finished = sink.finish();
    return finished < 0 ? finished : result;
}

class HandleWriter final : public TreeWriter {
public:
    HandleWriter(int number, std::size_t sectorSize) : number_(number), sectorSize_(sectorSize) {}

    HResult write(Element& root) override
    {
        const HResult result = Inspection().inspect(root);
        if (result < 0)
            return result;
        const QuietSizeLimit quiet;
        if (ftruncate(number_, 0) != 0)
            return resultOfErrno(errno);
        return writeTree(number_, root, sectorSize_);
    }

private:
    int number_;
    std::size_t sectorSize_;
};

class FileWriter final : public TreeWriter {
public:
    FileWriter(std::string path, std::size_t sectorSize) : path_(std::move(path)), sectorSize_(sectorSize)
    {
    }

    HResult write(Element& root) override
    {
        const HResult result = Inspection().inspect(root);
        if (result < 0)
            return result;
        const QuietSizeLimit quiet;
        NewFile file(path_);
        const HResult opened = file.open();
        return opened < 0 ? opened : writeInto(file, root);
    }

private:
    HResult writeInto(NewFile& file, Element& root) const
    {
        const HResult result = writeTree(file.number(), root, sectorSize_);
        return result < 0 ? result : file.replaceTarget();
    }

    std::string path_;
    std::size_t sectorSize_;
};

}  // namespace

std::unique_ptr<TreeWriter> makeFileWriter(std::string path, std::size_t sectorSize)
{
    return std::make_unique<FileWriter>(std::move(path), sectorSize);
}

std::unique_ptr<TreeWriter> makeHandleWriter(int number, std::size_t sectorSize)
{
    return std::make_unique<HandleWriter>(number, sectorSize);
}

}  // namespace platform::compound
