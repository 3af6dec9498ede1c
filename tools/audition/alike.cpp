#include "tools/audition/alike.h"

#include "plugin/menus.h"
#include "tools/audition/bankStudy.h"

#include <algorithm>
#include <cstdio>

namespace tolm {
namespace {

constexpr double kWorthAttention = 5.0;

std::string placeOf(const StudiedSound& sound)
{
    return sound.name + " (" + kCategoryNames[sound.category] + ")";
}

} // namespace

void printAlike(const std::filesystem::path& directory, const SoundChoice& choice)
{
    const std::vector<Sound> sounds = chosenSounds(directory, choice);
    const BankStudy study = studyBank(
        sounds, [&](std::size_t done) { showProgress("comparing", done, sounds.size()); });
    std::vector<const StudiedSound*> close;
    for (const StudiedSound& sound : study.sounds)
        if (sound.nearest.distance < kWorthAttention)
            close.push_back(&sound);
    std::sort(close.begin(), close.end(), [](const StudiedSound* a, const StudiedSound* b) {
        return a->nearest.distance < b->nearest.distance;
    });
    for (const StudiedSound* sound : close)
        std::printf("%5.2f  %-38s %s\n", sound->nearest.distance, placeOf(*sound).c_str(),
                    placeOf(study.sounds[sound->nearest.index]).c_str());
    std::printf("%zu of %zu programs are within %g units of another\n", close.size(), sounds.size(),
                kWorthAttention);
}

} // namespace tolm
