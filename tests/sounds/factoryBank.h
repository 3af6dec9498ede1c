#pragma once
// The factory sounds as the tests need them: read and measured once for all.

#include "tools/audition/bankStudy.h"

#include <filesystem>
#include <vector>

namespace tolm {

inline std::filesystem::path factoryDirectory()
{
    return std::filesystem::path(TOLM_SOURCE_DIR) / "data" / "factory";
}

const std::vector<Sound>& factorySounds();
const BankStudy& factoryStudy();

} // namespace tolm
