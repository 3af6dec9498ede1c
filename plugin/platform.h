#pragma once
// What the plug-in asks of the operating system, as interfaces: each system has one implementation
// and tests have theirs.

#include "plugin/FileSelector.h"

#include <cstddef>
#include <cstdint>
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

// Small text files of the user that outlive the process.
class UserFiles {
public:
    virtual ~UserFiles() = default;

    // The whole file, by plain name; nothing when there is none or it is unreasonably large.
    virtual std::optional<std::string> read(std::string_view name) = 0;
    // Replaces the whole file or leaves the old one; a failure is not reported.
    virtual void write(std::string_view name, std::string_view text) = 0;
};

std::unique_ptr<UserFiles> systemUserFiles();
// Files in one folder, made when needed. An empty folder holds nothing.
std::unique_ptr<UserFiles> folderUserFiles(std::string folder);

// Notes to the user. Never waits: hosts call from inside their own loops.
class MessageBox {
public:
    virtual ~MessageBox() = default;
    virtual void show(std::string_view title, std::string_view text) = 0;
};

// Writes to standard error.
std::unique_ptr<MessageBox> systemMessageBox();

} // namespace tolm
