// Preset files on disk.

#include "patch/presetFileTransfer.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <new>
#include <vector>

#if __has_include(<unistd.h>)
#include <unistd.h>
#endif

namespace tolm {

namespace {

namespace fs = std::filesystem;

// No chunk of this plug-in comes near: 384 programs take 0.7 MB.
constexpr std::uintmax_t kMaxFileBytes = 16u << 20;
constexpr int kTemporaryNames = 100;

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// Devices and pipes could block or swallow the data.
bool isRegularFile(const fs::path& path)
{
    std::error_code error;
    return fs::is_regular_file(path, error);
}

std::vector<std::uint8_t> readWholeFile(const fs::path& path)
{
    std::error_code error;
    const std::uintmax_t size = isRegularFile(path) ? fs::file_size(path, error) : 0;
    if (error || size == 0 || size > kMaxFileBytes)
        return {};
    const File file(std::fopen(path.string().c_str(), "rb"));
    if (!file)
        return {};
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));
    return bytes;
}

// Until the data has reached the disk the old file must keep its name, or a power cut could leave
// an empty one. File systems that cannot tell answer EINVAL.
bool flushToDisk(std::FILE* file)
{
    if (std::fflush(file) != 0)
        return false;
#if __has_include(<unistd.h>)
    return fsync(fileno(file)) == 0 || errno == EINVAL;
#else
    return true;
#endif
}

// A new file that takes the place of another when it is complete, and else vanishes.
class ReplacingFile {
public:
    explicit ReplacingFile(const fs::path& path) : target_(resolved(path))
    {
        std::error_code error;
        if (fs::exists(target_, error) && !isRegularFile(target_))
            return;
        for (int i = 0; i < kTemporaryNames && !file_; ++i) {
            temporary_ = target_;
            temporary_ += ".tmp" + std::to_string(i);
            file_.reset(std::fopen(temporary_.string().c_str(), "wbx")); // never another's file
        }
    }

    ~ReplacingFile()
    {
        if (!file_)
            return;
        file_.reset();
        discard();
    }

    ReplacingFile(const ReplacingFile&) = delete;
    ReplacingFile& operator=(const ReplacingFile&) = delete;

    bool isOpen() const { return file_ != nullptr; }

    void write(std::span<const std::uint8_t> bytes)
    {
        complete_ =
            complete_ && std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) == bytes.size();
    }

    // Closing may be what finds the disk full.
    bool commit()
    {
        complete_ = complete_ && flushToDisk(file_.get());
        complete_ = std::fclose(file_.release()) == 0 && complete_;
        std::error_code error;
        if (complete_) {
            keepPermissions();
            fs::rename(temporary_, target_, error);
        }
        if (!complete_ || error)
            discard();
        return complete_ && !error;
    }

private:
    // A link keeps pointing where it does; its target is replaced.
    static fs::path resolved(const fs::path& path)
    {
        std::error_code error;
        fs::path real = fs::canonical(path, error);
        return error ? path : real;
    }

    void keepPermissions()
    {
        std::error_code error;
        const fs::file_status old = fs::status(target_, error);
        if (!error && fs::exists(old))
            fs::permissions(temporary_, old.permissions(), error);
    }

    void discard()
    {
        std::error_code error;
        fs::remove(temporary_, error);
    }

    fs::path target_;
    fs::path temporary_;
    File file_;
    bool complete_ = true;
};

bool load(const std::string& path, bool isBank, PresetFileHost& host)
{
    const std::vector<std::uint8_t> bytes = readWholeFile(path);
    const auto chunk = chunkOfPresetFile(bytes, isBank);
    if (!chunk)
        return false;
    const int current = host.currentProgram();
    if (!host.loadFileChunk(*chunk, !isBank))
        return false;
    if (isBank) { // the user stays on the slot where they were, whatever the file had selected
        host.setProgram(current);
        host.loadProgram(current);
    }
    return true;
}

bool save(const std::string& path, bool isBank, PresetFileHost& host)
{
    ReplacingFile file(path);
    if (!file.isOpen())
        return false;
    if (isBank) {
        file.write(bankFileHeader(path));
    } else {
        if (const auto name = programNameFromPath(path))
            host.setProgramName(*name);
        file.write(programFileHeader(host.currentProgramName()));
    }
    file.write(host.saveChunk());
    return file.commit();
}

} // namespace

bool transferFile(const std::string& path, FileMode mode, PresetFileHost& host)
{
    const FileModeRow& row = fileModeRow(mode);
    try {
        return row.saves ? save(path, row.isBank, host) : load(path, row.isBank, host);
    } catch (const std::exception&) { // out of memory, or a path that the system cannot hold
        return false;
    }
}

} // namespace tolm
