#include "tools/audition/bankStudy.h"

#include "patch/soundTextRules.h"
#include "tools/audition/parallel.h"

#include <algorithm>

namespace tolm {
namespace {

double medianOf(std::vector<double> values)
{
    if (values.empty())
        return 0.0;
    const auto middle = values.begin() + std::ssize(values) / 2;
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

} // namespace

BankStudy studyBank(const std::vector<Sound>& sounds,
                    const std::function<void(std::size_t done)>& progress)
{
    BankStudy study;
    study.sounds.resize(sounds.size());
    std::vector<Features> features(sounds.size());
    std::vector<std::pair<Features, Features>> touches(sounds.size());
    forAll(
        sounds.size(),
        [&](std::size_t i) {
            const ProgramRecord& record = sounds[i].record;
            StudiedSound& sound = study.sounds[i];
            sound.name = withoutMark(nameOf(record));
            sound.category = categoryOf(record);
            sound.descriptors = describe(record);
            features[i] = featuresOf(record, sound.descriptors);
            touches[i] = {featuresOf(record, sound.descriptors, kSofterTouch),
                          featuresOf(record, sound.descriptors, kHarderTouch)};
        },
        progress);
    study.likeness = Likeness(std::move(features));
    study.likeness.setUnit(touches);
    std::vector<double> costs;
    for (std::size_t i = 0; i < sounds.size(); ++i) {
        study.sounds[i].nearest = study.likeness.nearest(i);
        costs.push_back(study.sounds[i].descriptors.cpuNsPerFrame);
    }
    study.medianCpuNsPerFrame = medianOf(std::move(costs));
    return study;
}

} // namespace tolm
