// Programs are what their category says, and no two are the same.

#include "tools/audition/ranges.h"
#include "factoryBank.h"
#include "plugin/menus.h"
#include "tools/audition/exceptions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <string_view>

namespace tolm {
namespace {

// Three are meant; a busy machine adds to what a thread needs.
constexpr double kMostCostInMedians = 4.0;
// In changes of velocity from 90 to 110.
constexpr double kLeastDistance = 3.0;
constexpr double kUsualDistance = 5.0;
constexpr double kUsualShare = 0.9;
constexpr int kLeastDifferentParameters = 12;

int categoryCalled(std::string_view name)
{
    const auto found = std::find(std::begin(kCategoryNames), std::end(kCategoryNames), name);
    return static_cast<int>(found - std::begin(kCategoryNames));
}

std::vector<double> figuresOfCategory(std::string_view name, Descriptor descriptor)
{
    std::vector<double> values;
    for (const StudiedSound& sound : factoryStudy().sounds)
        if (sound.category == categoryCalled(name))
            values.push_back(sound.descriptors[descriptor]);
    return values;
}

double medianOf(std::vector<double> values)
{
    if (values.empty())
        return std::nan("");
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

TEST(FactoryRanges, everyProgramIsWithinItsCategoryOrExcused)
{
    const std::vector<RangeException> exceptions = readExceptions(factoryDirectory());
    for (const StudiedSound& sound : factoryStudy().sounds)
        for (const Descriptor descriptor : outsideOf(sound.category, sound.descriptors)) {
            const DescriptorColumn& column =
                kDescriptorColumns[static_cast<std::size_t>(descriptor)];
            EXPECT_TRUE(excuse(exceptions, sound.name, descriptor))
                << sound.name << ": " << column.key << " is " << sound.descriptors[descriptor]
                << ", accepted is " << rangeText(sound.category, descriptor);
        }
}

TEST(FactoryRanges, everyExcuseIsNeeded)
{
    for (const RangeException& exception : readExceptions(factoryDirectory())) {
        const auto& sounds = factoryStudy().sounds;
        const auto sound = std::find_if(sounds.begin(), sounds.end(), [&](const StudiedSound& s) {
            return s.name == exception.program;
        });
        ASSERT_NE(sound, sounds.end()) << exception.program << " is no program";
        const auto outside = outsideOf(sound->category, sound->descriptors);
        EXPECT_TRUE(std::find(outside.begin(), outside.end(), exception.descriptor) !=
                    outside.end())
            << exception.program << " needs no excuse for its "
            << kDescriptorColumns[static_cast<std::size_t>(exception.descriptor)].key;
    }
}

TEST(FactoryRanges, categoriesDifferInBrightnessAndAttack)
{
    const auto centroid = [](const char* name) {
        return medianOf(figuresOfCategory(name, Descriptor::centroid));
    };
    EXPECT_LT(centroid("Bass"), centroid("Pads"));
    EXPECT_LT(centroid("Pads"), centroid("Leads"));
    const auto attack = [](const char* name) {
        return medianOf(figuresOfCategory(name, Descriptor::attack));
    };
    EXPECT_LE(attack("Drums"), attack("Plucked"));
    EXPECT_LE(attack("Plucked"), attack("Synths"));
    EXPECT_LT(attack("Synths"), attack("Pads"));
}

TEST(FactoryRanges, mostPadsMove)
{
    constexpr double kHeardPercent = 5.0;
    const std::vector<double> depths = figuresOfCategory("Pads", Descriptor::modulation);
    ASSERT_FALSE(depths.empty());
    const auto moving =
        std::count_if(depths.begin(), depths.end(), [](double d) { return d >= kHeardPercent; });
    EXPECT_GE(static_cast<double>(moving), 0.7 * static_cast<double>(depths.size()));
}

TEST(FactoryRanges, noProgramCostsFarMoreThanTheOthers)
{
    for (const StudiedSound& sound : factoryStudy().sounds)
        EXPECT_LE(sound.descriptors.cpuNsPerFrame,
                  kMostCostInMedians * factoryStudy().medianCpuNsPerFrame)
            << sound.name;
}

TEST(FactoryLikeness, noTwoProgramsSoundTheSame)
{
    const auto& sounds = factoryStudy().sounds;
    std::size_t distinct = 0;
    for (const StudiedSound& sound : sounds) {
        EXPECT_GE(sound.nearest.distance, kLeastDistance)
            << sound.name << " and " << sounds[sound.nearest.index].name;
        distinct += sound.nearest.distance >= kUsualDistance ? 1 : 0;
    }
    EXPECT_GE(static_cast<double>(distinct), kUsualShare * static_cast<double>(sounds.size()));
}

TEST(FactoryLikeness, noTwoProgramsAreSetTheSame)
{
    const auto& sounds = factorySounds();
    for (std::size_t a = 0; a < sounds.size(); ++a)
        for (std::size_t b = a + 1; b < sounds.size(); ++b) {
            int different = 0;
            for (std::size_t id = 0; id < sounds[a].record.values.size(); ++id)
                different +=
                    std::fabs(sounds[a].record.values[id] - sounds[b].record.values[id]) > 0.05f;
            EXPECT_GE(different, kLeastDifferentParameters)
                << sounds[a].record.name.data() << " and " << sounds[b].record.name.data();
        }
}

} // namespace
} // namespace tolm
