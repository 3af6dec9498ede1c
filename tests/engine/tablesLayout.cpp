// The embedded block of constant tables is the one that the code was compiled for.

#include "engine/tables.h"

#include <gtest/gtest.h>

extern "C" const char tolmConstantTablesEnd[];

namespace tolm {

TEST(ConstantTables, embeddedBlockHasTheSizeOfTheStruct)
{
    const char* begin = reinterpret_cast<const char*>(&tolmConstantTables);
    EXPECT_EQ(tolmConstantTablesEnd - begin, static_cast<std::ptrdiff_t>(sizeof(ConstantTables)));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(begin) % alignof(ConstantTables), 0u);
}

} // namespace tolm
