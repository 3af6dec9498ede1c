// tolm-compile-bank: what the build runs to make the embedded bank and pattern images. It stands
// apart from tolm-bank, which plays the sounds and so needs the plug-in that embeds them.

#include "tools/soundFiles.h"

#include <cstdio>
#include <cstring>
#include <span>

namespace tolm {
namespace {

std::string_view bytesOf(std::span<const ProgramRecord> records)
{
    return {reinterpret_cast<const char*>(records.data()), records.size_bytes()};
}

// False when the words are none of its forms.
bool compile(std::span<char*> words)
{
    if (words.size() == 3 && std::strcmp(words[0], "bank") == 0)
        writeFile(words[2], bytesOf(*compileDirectory(words[1])));
    else if (words.size() == 4 && std::strcmp(words[0], "patterns") == 0)
        writeFile(words[3], bytesOf(compilePatterns(words[1], words[2])));
    else
        return false;
    return true;
}

} // namespace
} // namespace tolm

int main(int argc, char** argv)
{
    try {
        if (tolm::compile({argv + 1, argv + argc}))
            return 0;
        std::fputs("usage: tolm-compile-bank bank DIR FILE\n"
                   "       tolm-compile-bank patterns TEXT DIR FILE\n",
                   stderr);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tolm-compile-bank: %s\n", error.what());
    }
    return 1;
}
