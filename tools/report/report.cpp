#include "tools/report/report.h"

#include "patch/soundTextRules.h"
#include "plugin/menus.h"
#include "tools/audition/bankStudy.h"
#include "tools/audition/exceptions.h"
#include "tools/audition/parallel.h"
#include "tools/audition/ranges.h"
#include "tools/report/audioClip.h"
#include "tools/report/page.h"
#include "tools/report/pictures.h"
#include "tools/soundFiles.h"

#include <cctype>
#include <cstdio>

namespace tolm {
namespace {

namespace fs = std::filesystem;

constexpr double kTailSeconds = 6.0;

// "Glass Petals" -> "017-glass-petals"
std::string stemOf(std::size_t index, std::string_view name)
{
    char number[32];
    std::snprintf(number, sizeof number, "%03zu-", index);
    std::string stem = number;
    for (const char c : name)
        stem += std::isalnum(static_cast<unsigned char>(c)) != 0
                    ? static_cast<char>(std::tolower(static_cast<unsigned char>(c)))
                    : '-';
    return stem;
}

Illustration illustrate(const Sound& sound, const fs::path& output, std::size_t index)
{
    const Rendering rendering =
        play(sound.record, categoryPhrase(categoryOf(sound.record)), kTailSeconds);
    const std::string stem = stemOf(index, withoutMark(nameOf(sound.record)));
    writeSpectrogram(rendering, output / (stem + ".png"));
    writeClip(rendering, output / (stem + ".flac"));
    return {stem + ".png", stem + ".flac", waveformSvg(rendering)};
}

} // namespace

void writeReport(const fs::path& directory, const SoundChoice& choice, const fs::path& output)
{
    const std::vector<Sound> sounds = chosenSounds(directory, choice);
    const std::vector<RangeException> exceptions = readExceptions(directory);
    std::error_code error;
    fs::create_directories(output, error);
    if (error)
        throw Failure(output.string() + ": cannot be made");
    std::vector<Illustration> illustrations(sounds.size());
    forAll(
        sounds.size(), [&](std::size_t i) { illustrations[i] = illustrate(sounds[i], output, i); },
        [&](std::size_t done) { showProgress("drawing", done, sounds.size()); });
    const BankStudy study = studyBank(
        sounds, [&](std::size_t done) { showProgress("measuring", done, sounds.size()); });
    writeFile(output / "index.html", reportPage(sounds, study, illustrations, exceptions));
    std::printf("%s: %zu programs\n", (output / "index.html").c_str(), sounds.size());
}

} // namespace tolm
