#pragma once
// What a folder holds, as a file dialog shows it. Never throws: what cannot be read is said.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tolm::gui {

struct FolderItem {
    std::string name; // UTF-8 where the system's bytes are
    bool isFolder = false;
    std::uintmax_t bytes = 0;
};

struct FolderListing {
    static constexpr std::size_t kMaxItems = 5000;
    // Folders full of other files are read no further than this.
    static constexpr std::size_t kMaxVisited = 50'000;

    std::vector<FolderItem> items; // folders first, then by name without regard to case
    std::string error;             // why nothing could be read
    bool truncated = false;        // there is more than was read
};

// Hidden entries are left out, and files whose extension is not `extension` (".fxp", in any case;
// empty for all).
FolderListing listFolder(const std::filesystem::path& folder, const std::string& extension);

// The folder itself or the nearest one above it that can be read, else "/".
std::filesystem::path nearestFolder(const std::filesystem::path& folder);

// "1.8 kB"
std::string fileSizeText(std::uintmax_t bytes);

} // namespace tolm::gui
