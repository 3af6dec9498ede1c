#include "tools/audition/figures.h"

#include "patch/soundTextRules.h"
#include "plugin/menus.h"
#include "tools/audition/descriptors.h"
#include "tools/audition/exceptions.h"
#include "tools/audition/parallel.h"
#include "tools/audition/ranges.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>

namespace tolm {
namespace {

constexpr int kNameWidth = 24;
constexpr int kColumnWidth = 9;

struct Row {
    std::string name;
    int category = 0;
    Descriptors descriptors;
};

template <class Print>
void forShown(int category, Print&& print)
{
    for (std::size_t i = 0; i < kDescriptorCount; ++i)
        if (isTelling(category, static_cast<Descriptor>(i)))
            print(static_cast<Descriptor>(i), kDescriptorColumns[i]);
}

void printHeading(int category)
{
    std::printf("\n%-*s", kNameWidth, kCategoryNames[category]);
    forShown(category, [](Descriptor, const DescriptorColumn& column) {
        std::printf("%*s ", kColumnWidth - 1, column.heading);
    });
    std::printf("%*s", kColumnWidth - 1, "cpu ns");
    std::printf("\n%-*s", kNameWidth, "  accepted");
    forShown(category, [&](Descriptor descriptor, const DescriptorColumn&) {
        std::printf("%*s ", kColumnWidth - 1, rangeText(category, descriptor).c_str());
    });
    std::printf("\n");
}

// The row, and whether nothing in it is wrong.
bool printRow(const Row& row, const std::vector<RangeException>& exceptions)
{
    const std::vector<Descriptor> outside = outsideOf(row.category, row.descriptors);
    bool fine = true;
    std::printf("%-*s", kNameWidth, row.name.c_str());
    forShown(row.category, [&](Descriptor descriptor, const DescriptorColumn& column) {
        char mark = ' ';
        if (std::find(outside.begin(), outside.end(), descriptor) != outside.end())
            mark = excuse(exceptions, row.name, descriptor) ? '~' : '!';
        fine = fine && mark != '!';
        const double value = row.descriptors[descriptor];
        if (std::isinf(value))
            std::printf("%*s%c", kColumnWidth - 1, value > 0.0 ? "never" : "silent", mark);
        else
            std::printf("%*.*f%c", kColumnWidth - 1, column.decimals, value, mark);
    });
    std::printf("%*.0f\n", kColumnWidth - 1, row.descriptors.cpuNsPerFrame);
    return fine;
}

} // namespace

void printFigures(const std::filesystem::path& directory, const SoundChoice& choice)
{
    const std::vector<RangeException> exceptions = readExceptions(directory);
    const std::vector<Sound> sounds = chosenSounds(directory, choice);
    std::vector<Row> rows(sounds.size());
    forAll(
        sounds.size(),
        [&](std::size_t i) {
            const ProgramRecord& record = sounds[i].record;
            rows[i] = {std::string(withoutMark(nameOf(record))), categoryOf(record),
                       describe(record)};
        },
        [&](std::size_t done) { showProgress("measuring", done, sounds.size()); });
    std::stable_sort(rows.begin(), rows.end(),
                     [](const Row& a, const Row& b) { return a.category < b.category; });
    std::size_t wrong = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (i == 0 || rows[i].category != rows[i - 1].category)
            printHeading(rows[i].category);
        wrong += printRow(rows[i], exceptions) ? 0 : 1;
    }
    std::printf("\n%zu of %zu programs are outside their category's ranges (!)\n", wrong,
                rows.size());
}

} // namespace tolm
