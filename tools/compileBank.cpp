// tolm-compile-bank DIR FILE: what the build runs to make the embedded bank image. It stands apart
// from tolm-bank, which plays the sounds and so needs the plug-in that embeds them.

#include "tools/soundFiles.h"

#include <cstdio>

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fputs("usage: tolm-compile-bank DIR FILE\n", stderr);
        return 1;
    }
    try {
        const auto image = tolm::compileDirectory(argv[1]);
        tolm::writeFile(argv[2],
                        {reinterpret_cast<const char*>(image->data()), sizeof(tolm::FactoryImage)});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tolm-compile-bank: %s\n", error.what());
        return 1;
    }
    return 0;
}
