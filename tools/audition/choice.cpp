#include "tools/audition/choice.h"

#include "patch/soundTextRules.h"
#include "plugin/menus.h"
#include "tools/audition/descriptors.h"
#include "tools/soundFiles.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace tolm {
namespace {

bool isIn(const std::vector<std::string>& list, std::string_view name)
{
    return std::find(list.begin(), list.end(), name) != list.end();
}

void requireCategory(const std::string& name)
{
    if (std::find(std::begin(kCategoryNames), std::end(kCategoryNames), name) !=
        std::end(kCategoryNames))
        return;
    std::string message = "there is no category called \"" + name + "\", only";
    for (const char* category : kCategoryNames)
        message.append(" \"").append(category).append("\"");
    throw Failure(message);
}

} // namespace

std::vector<Sound> chosenSounds(const std::filesystem::path& directory, const SoundChoice& choice)
{
    std::vector<Sound> sounds = readDirectory(directory);
    for (const std::string& category : choice.categories)
        requireCategory(category);
    for (const std::string& program : choice.programs)
        if (std::none_of(sounds.begin(), sounds.end(), [&](const Sound& sound) {
                return withoutMark(nameOf(sound.record)) == program;
            }))
            throw Failure("there is no program called \"" + program + "\"");
    std::erase_if(sounds, [&](const Sound& sound) {
        return (!choice.categories.empty() &&
                !isIn(choice.categories, kCategoryNames[categoryOf(sound.record)])) ||
               (!choice.programs.empty() &&
                !isIn(choice.programs, withoutMark(nameOf(sound.record))));
    });
    if (sounds.empty())
        throw Failure(directory.string() + ": no such sounds");
    return sounds;
}

void showProgress(const char* what, std::size_t done, std::size_t count)
{
    if (isatty(STDERR_FILENO) != 1)
        return;
    if (done == count)
        std::fputs("\r\033[K", stderr);
    else
        std::fprintf(stderr, "\r\033[K%s %zu of %zu", what, done, count);
}

} // namespace tolm
