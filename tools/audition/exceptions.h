#pragma once
// Programs that are meant to be outside their category's ranges: a file of names, figures and
// reasons beside the sounds.

#include "tools/audition/descriptors.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tolm {

struct RangeException {
    std::string program; // without "+"
    Descriptor descriptor;
    std::string reason;
};

// Of a directory of sounds; none when it has no such file. Throws Failure with file, line and key.
std::vector<RangeException> readExceptions(const std::filesystem::path& directory);
// Why a program's figure may be outside; null when nothing excuses it.
const std::string* excuse(const std::vector<RangeException>& exceptions, std::string_view program,
                          Descriptor descriptor);

} // namespace tolm
