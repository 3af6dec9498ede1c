// Settings as files, and where Linux keeps them.

#include "plugin/platform.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tolm {

namespace {

namespace fs = std::filesystem;

// An open file that closes itself.
class File {
public:
    explicit File(int descriptor) : descriptor_(descriptor) {}
    ~File()
    {
        if (descriptor_ >= 0)
            ::close(descriptor_);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool isOpen() const { return descriptor_ >= 0; }
    int descriptor() const { return descriptor_; }

    // As many bytes as the file has, at most out.size().
    std::optional<std::size_t> read(std::span<std::uint8_t> out) const
    {
        std::size_t done = 0;
        while (done < out.size()) {
            const ssize_t got = ::read(descriptor_, out.data() + done, out.size() - done);
            if (got < 0 && errno == EINTR)
                continue;
            if (got < 0)
                return std::nullopt;
            if (got == 0)
                break;
            done += static_cast<std::size_t>(got);
        }
        return done;
    }

    // Everything, safe on the disk, and readable for all users as settings are.
    bool writeAll(std::span<const std::uint8_t> bytes) const
    {
        std::size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t put = ::write(descriptor_, bytes.data() + done, bytes.size() - done);
            if (put < 0 && errno == EINTR)
                continue;
            if (put <= 0)
                return false;
            done += static_cast<std::size_t>(put);
        }
        return ::fchmod(descriptor_, 0644) == 0 && ::fsync(descriptor_) == 0;
    }

private:
    int descriptor_;
};

// A file beside the one to be replaced, under one name and locked by its writer. What a killed
// writer leaves is taken over by the next one, so nothing piles up.
class Draft {
public:
    explicit Draft(std::string path) : path_(std::move(path))
    {
        Claim claim = tryClaim();
        for (int i = 0; claim == Claim::taken && i < kRetries; ++i) {
            std::this_thread::sleep_for(kNap);
            claim = tryClaim();
        }
        ready_ = claim == Claim::done;
    }
    ~Draft()
    {
        if (ready_)
            ::unlink(path_.c_str());
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    bool write(std::span<const std::uint8_t> bytes) const
    {
        return ready_ && ::ftruncate(file_->descriptor(), 0) == 0 && file_->writeAll(bytes);
    }
    bool renameTo(const char* target)
    {
        const bool renamed = ::rename(path_.c_str(), target) == 0;
        ready_ = !renamed;
        return renamed;
    }

private:
    static constexpr int kRetries = 500; // a second
    static constexpr std::chrono::milliseconds kNap{2};

    enum class Claim : std::uint8_t { done, taken, impossible };

    // Not through a link, and not blocking in case that somebody put a pipe there.
    Claim tryClaim()
    {
        constexpr int kFlags = O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
        file_.emplace(::open(path_.c_str(), kFlags, 0644));
        if (!file_->isOpen())
            return Claim::impossible;
        if (::flock(file_->descriptor(), LOCK_EX | LOCK_NB) != 0)
            return errno == EWOULDBLOCK ? Claim::taken : Claim::impossible;
        return isNamed() ? Claim::done : Claim::taken;
    }
    // False when the writer before has renamed or removed what was opened here.
    bool isNamed() const
    {
        struct stat opened {};
        struct stat named {};
        return ::fstat(file_->descriptor(), &opened) == 0 && ::lstat(path_.c_str(), &named) == 0 &&
               S_ISREG(opened.st_mode) && opened.st_dev == named.st_dev &&
               opened.st_ino == named.st_ino;
    }

    std::string path_;
    std::optional<File> file_;
    bool ready_ = false;
};

// A reader sees the old bytes or the new ones, and two writers do not mix.
void replaceFile(const fs::path& path, std::span<const std::uint8_t> bytes)
{
    std::error_code failure;
    fs::create_directories(path.parent_path(), failure);
    if (failure)
        return;
    Draft draft(path.string() + ".new");
    if (draft.write(bytes))
        draft.renameTo(path.c_str());
}

class FileSettingsStore final : public SettingsStore {
public:
    FileSettingsStore(std::string machineFolder, std::string userFolder)
        : machineFolder_(std::move(machineFolder)), userFolder_(std::move(userFolder))
    {
    }

    std::optional<std::size_t> read(Scope scope, std::string_view key, std::string_view name,
                                    std::span<std::uint8_t> out) override
    {
        const std::string& folder = folderOf(scope);
        if (folder.empty())
            return std::nullopt;
        // Not blocking, in case that somebody put a pipe there.
        const File file(
            ::open(pathIn(folder, key, name).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
        return file.isOpen() ? file.read(out) : std::nullopt;
    }

    void write(Scope scope, std::string_view key, std::string_view name,
               std::span<const std::uint8_t> bytes) override
    {
        const std::string& folder = folderOf(scope);
        if (!folder.empty())
            replaceFile(pathIn(folder, key, name), bytes);
    }

private:
    const std::string& folderOf(Scope scope) const
    {
        return scope == Scope::machine ? machineFolder_ : userFolder_;
    }
    static fs::path pathIn(const std::string& folder, std::string_view key, std::string_view name)
    {
        return fs::path(folder) / fs::path(key) / fs::path(name);
    }

    std::string machineFolder_;
    std::string userFolder_;
};

// A path made of names only could leave the folder.
bool isPlainName(std::string_view name)
{
    return !name.empty() && name.front() != '.' && name.find('/') == std::string_view::npos &&
           name.find('\0') == std::string_view::npos;
}

class FolderUserFiles final : public UserFiles {
public:
    explicit FolderUserFiles(std::string folder) : folder_(std::move(folder)) {}

    std::optional<std::string> read(std::string_view name) override
    {
        constexpr std::size_t kLargest = std::size_t{1} << 20;
        if (folder_.empty() || !isPlainName(name))
            return std::nullopt;
        const File file(
            ::open((fs::path(folder_) / name).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
        if (!file.isOpen())
            return std::nullopt;
        std::vector<std::uint8_t> bytes(kLargest + 1);
        const std::optional<std::size_t> size = file.read(bytes);
        if (!size || *size > kLargest)
            return std::nullopt;
        return std::string(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(*size));
    }

    void write(std::string_view name, std::string_view text) override
    {
        if (folder_.empty() || !isPlainName(name))
            return;
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
        replaceFile(fs::path(folder_) / name, {bytes, text.size()});
    }

private:
    std::string folder_;
};

std::string environment(const char* name)
{
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

// The variable counts only when absolute; without a home there is no user folder.
std::string userFolder(const char* variable, const char* inHome)
{
    const std::string configured = environment(variable);
    if (configured.starts_with('/'))
        return configured;
    const std::string home = environment("HOME");
    return home.starts_with('/') ? home + inHome : std::string();
}

class ErrorStreamMessages final : public MessageBox {
public:
    void show(std::string_view title, std::string_view text) override
    {
        std::fprintf(stderr, "Tolm: %.*s: %.*s\n", static_cast<int>(title.size()), title.data(),
                     static_cast<int>(text.size()), text.data());
    }
};

} // namespace

std::unique_ptr<SettingsStore> fileSettingsStore(std::string machineFolder, std::string userFolder)
{
    return std::make_unique<FileSettingsStore>(std::move(machineFolder), std::move(userFolder));
}

std::unique_ptr<SettingsStore> systemSettingsStore()
{
    return fileSettingsStore("/etc", userFolder("XDG_CONFIG_HOME", "/.config"));
}

std::unique_ptr<UserFiles> folderUserFiles(std::string folder)
{
    return std::make_unique<FolderUserFiles>(std::move(folder));
}

std::unique_ptr<UserFiles> systemUserFiles()
{
    const std::string folder = userFolder("XDG_DATA_HOME", "/.local/share");
    return folderUserFiles(folder.empty() ? folder : folder + "/Tolm");
}

std::unique_ptr<MessageBox> systemMessageBox()
{
    return std::make_unique<ErrorStreamMessages>();
}

} // namespace tolm
