#pragma once
// What the plug-in asks of the operating system, as interfaces: each system has one implementation
// and tests have theirs.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tolm {

// Small named values that outlive the process, under a key whose levels are parted by "/".
class SettingsStore {
public:
    enum class Scope : std::uint8_t { machine, user };

    virtual ~SettingsStore() = default;

    // Fills `out` from the value's beginning. Answers the bytes read, nothing when there is no such
    // value.
    virtual std::optional<std::size_t> read(Scope scope, std::string_view key,
                                            std::string_view name, std::span<std::uint8_t> out) = 0;
    // Replaces the whole value or leaves the old one; a failure is not reported.
    virtual void write(Scope scope, std::string_view key, std::string_view name,
                       std::span<const std::uint8_t> bytes) = 0;
};

// The store of this system.
std::unique_ptr<SettingsStore> systemSettingsStore();

// A file per value: `<folder>/<key>/<name>`. A scope whose folder is empty holds nothing.
std::unique_ptr<SettingsStore> fileSettingsStore(std::string machineFolder, std::string userFolder);

// Notes to the user. Never waits: hosts call from inside their own loops.
class MessageBox {
public:
    virtual ~MessageBox() = default;
    virtual void show(std::string_view title, std::string_view text) = 0;
};

// Writes to standard error.
std::unique_ptr<MessageBox> systemMessageBox();

// What a file selector shows and offers.
struct FileRequest {
    std::string title;
    std::string extension; // without the dot; the only kind of file that is offered
    std::string description;
    std::string suggestedName;
    bool saves = false;
};

class FileSelector {
public:
    virtual ~FileSelector() = default;
    // Calls `chosen` at once or later, on the caller's thread; never when the user cancels.
    virtual void choose(const FileRequest& request,
                        std::function<void(const std::string& path)> chosen) = 0;
};

} // namespace tolm
