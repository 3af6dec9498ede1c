#include "gui/FolderListing.h"

#include "gui/asciiText.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <system_error>

namespace tolm::gui {

namespace {

namespace fs = std::filesystem;

bool comesBefore(const FolderItem& a, const FolderItem& b)
{
    if (a.isFolder != b.isFolder)
        return a.isFolder;
    const std::string left = lowered(a.name);
    const std::string right = lowered(b.name);
    return left != right ? left < right : a.name < b.name;
}

// Nothing for what is neither a folder nor a wanted file.
bool describe(const fs::directory_entry& entry, const std::string& extension, FolderItem& item)
{
    std::error_code error;
    item.name = entry.path().filename().string();
    if (item.name.empty() || item.name.front() == '.')
        return false;
    item.isFolder = entry.is_directory(error);
    if (item.isFolder)
        return true;
    if (!extension.empty() && lowered(entry.path().extension().string()) != lowered(extension))
        return false;
    if (!entry.is_regular_file(error))
        return false;
    const std::uintmax_t size = entry.file_size(error);
    item.bytes = error ? 0 : size;
    return true;
}

} // namespace

FolderListing listFolder(const fs::path& folder, const std::string& extension)
{
    FolderListing listing;
    std::error_code error;
    fs::directory_iterator at(folder, error);
    if (error) {
        listing.error = "This folder cannot be read: " + error.message();
        return listing;
    }
    std::size_t visited = 0;
    for (const fs::directory_iterator end; at != end; at.increment(error)) {
        if (error)
            break;
        if (++visited > FolderListing::kMaxVisited ||
            listing.items.size() == FolderListing::kMaxItems) {
            listing.truncated = true;
            break;
        }
        FolderItem item;
        if (describe(*at, extension, item))
            listing.items.push_back(std::move(item));
    }
    listing.truncated = listing.truncated || error;
    std::sort(listing.items.begin(), listing.items.end(), comesBefore);
    return listing;
}

fs::path nearestFolder(const fs::path& folder)
{
    std::error_code error;
    fs::path at = fs::absolute(folder, error).lexically_normal();
    if (!at.has_filename())
        at = at.parent_path();
    while (!at.empty() && at != at.root_path()) {
        const fs::directory_iterator readable(at, error);
        if (!error)
            return at;
        at = at.parent_path();
    }
    return "/";
}

std::string fileSizeText(std::uintmax_t bytes)
{
    constexpr std::array kUnits = {"B", "kB", "MB", "GB", "TB"};
    double value = static_cast<double>(bytes);
    std::size_t unit = 0;
    while (value >= 999.5 && unit + 1 < kUnits.size()) {
        value /= 1000.0;
        ++unit;
    }
    std::array<char, 32> text{};
    const int digits = unit > 0 && value < 9.95 ? 1 : 0;
    std::snprintf(text.data(), text.size(), "%.*f %s", digits, value, kUnits[unit]);
    return text.data();
}

} // namespace tolm::gui
