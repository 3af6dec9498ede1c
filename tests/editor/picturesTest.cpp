// The window as it looked when somebody last looked at it. Pages at scale 1 are compared with the
// manual's pictures, pixel by pixel; larger scales by a sum over all pixels. After a change that is
// meant, this stores the pictures anew, for review:
//     TOLM_STORE_PICTURES=1 build/release/tests/editor/editor_tests --gtest_filter='Pictures.*'

#include "editor/ADEditor.h"
#include "editor/OfflinePort.h"
#include "editor/arpPattern.h"
#include "gui/Image.h"
#include "patch/factoryPatterns.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>

namespace tolm::test {
namespace {

struct Picture {
    std::string name;
    std::string program;
    Page page;
    bool browser = false;
};
const Picture kPictures[] = {
    {"window", "Amber Tines", Page::modulation},        {"matrix", "Bowed Aurora", Page::matrix},
    {"arp", "Clockwork Minor", Page::arpeggiator},      {"effects", "Bowed Aurora", Page::effects},
    {"browser", "Amber Tines", Page::modulation, true},
};

const std::filesystem::path kSource = TOLM_SOURCE_DIR;
const bool kStores = std::getenv("TOLM_STORE_PICTURES") != nullptr;

gui::Image drawn(const Picture& picture, float scale)
{
    OfflinePort port;
    for (int program = 0; program < kProgramCount; ++program)
        if (port.record(program).name.data() == picture.program)
            port.setProgram(program);
    const RecordPatternTable patterns(factoryPatterns());
    ADEditor editor(port, patterns);
    editor.setScale(scale);
    editor.showPage(picture.page);
    editor.openIn(std::make_unique<gui::HeadlessWindow>(kWindowSize, scale));
    if (picture.browser)
        editor.context().toggleBrowser();
    editor.idle();
    return editor.window()->picture();
}

// FNV-1a over all pixels.
std::uint64_t sumOf(const gui::Image& image)
{
    std::uint64_t sum = 0xcbf29ce484222325ull;
    for (const std::uint32_t pixel : image.pixels())
        for (int shift = 0; shift < 32; shift += 8)
            sum = (sum ^ ((pixel >> shift) & 0xFFu)) * 0x100000001b3ull;
    return sum;
}

} // namespace

TEST(Pictures, showTheWindowAsItWasLastSeen)
{
    for (const Picture& picture : kPictures) {
        const auto path = kSource / "docs/pictures" / (picture.name + ".png");
        const gui::Image now = drawn(picture, 1.0f);
        if (kStores) {
            ASSERT_TRUE(gui::writePng(now, path));
        }
        std::ifstream in(path, std::ios::binary);
        const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(in), {}};
        EXPECT_TRUE(gui::decodePng(bytes) == now) << picture.name;
    }
}

TEST(Pictures, areTheSameAtLargerScales)
{
    const auto path = kSource / "tests/editor/pictureSums.txt";
    std::map<std::string, std::uint64_t> sums;
    for (const Picture& picture : kPictures) {
        sums[picture.name + "@1.5"] = sumOf(drawn(picture, 1.5f));
        sums[picture.name + "@2.0"] = sumOf(drawn(picture, 2.0f));
    }
    if (kStores) {
        std::ofstream out(path);
        for (const auto& [name, sum] : sums)
            out << name << ' ' << sum << '\n';
    }
    std::ifstream in(path);
    std::map<std::string, std::uint64_t> then;
    std::string name;
    for (std::uint64_t sum = 0; in >> name >> sum;)
        then[name] = sum;
    EXPECT_EQ(sums, then);
}

} // namespace tolm::test
