// tolm-tables FILE: writes the constant tables as the raw bytes that the engine embeds.

#include "tools/tableGen/generators.h"

#include <cstdio>
#include <memory>
#include <type_traits>

namespace {

// The file is the memory image of the block, so the block may hold nothing but plain numbers.
static_assert(std::is_trivially_copyable_v<tolm::ConstantTables>);
static_assert(std::is_standard_layout_v<tolm::ConstantTables>);

bool write(const char* path, const tolm::ConstantTables& tables)
{
    std::FILE* file = std::fopen(path, "wb");
    if (file == nullptr)
        return false;
    const bool complete = std::fwrite(&tables, sizeof tables, 1, file) == 1;
    return std::fclose(file) == 0 && complete;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: tolm-tables FILE\n");
        return 2;
    }
    const auto tables = std::make_unique<tolm::ConstantTables>(); // zeroed, padding included
    tolm::fillSine(*tables);
    tolm::fillSaws(*tables);
    tolm::fillSquareAndTriangle(*tables);
    tolm::fillStepResidual(*tables);
    tolm::fillWaves(*tables);
    tolm::fillSaturation(*tables);
    if (!write(argv[1], *tables)) {
        std::fprintf(stderr, "tolm-tables: cannot write %s\n", argv[1]);
        return 1;
    }
    return 0;
}
