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
    const char* name;
    const char* program;
    Page page;
    bool browser = false;
};
constexpr Picture kPictures[] = {
    {"window", "Amber Tines", Page::modulation},        {"matrix", "Bowed Aurora", Page::matrix},
    {"arp", "Clockwork Minor", Page::arpeggiator},      {"effects", "Bowed Aurora", Page::effects},
    {"browser", "Amber Tines", Page::modulation, true},
};
constexpr float kLargerScales[] = {1.5f, 2.0f};

const std::filesystem::path kFolder = std::filesystem::path(TOLM_SOURCE_DIR) / "docs/pictures";
const std::filesystem::path kSums =
    std::filesystem::path(TOLM_SOURCE_DIR) / "tests/editor/pictureSums.txt";

bool stores()
{
    return std::getenv("TOLM_STORE_PICTURES") != nullptr;
}

gui::Image drawn(const Picture& picture, float scale)
{
    OfflinePort port;
    for (int program = 0; program < kProgramCount; ++program)
        if (std::string(port.record(program).name.data()) == picture.program)
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

gui::Image stored(const Picture& picture)
{
    std::ifstream in(kFolder / (std::string(picture.name) + ".png"), std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
    return gui::decodePng({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
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

std::size_t differingPixels(const gui::Image& a, const gui::Image& b)
{
    std::size_t count = 0;
    for (std::size_t i = 0; i < a.pixels().size(); ++i)
        count += a.pixels()[i] != b.pixels()[i] ? 1 : 0;
    return count;
}

} // namespace

TEST(Pictures, showTheWindowAsItWasLastSeen)
{
    for (const Picture& picture : kPictures) {
        SCOPED_TRACE(picture.name);
        const gui::Image now = drawn(picture, 1.0f);
        if (stores()) {
            std::filesystem::create_directories(kFolder);
            ASSERT_TRUE(gui::writePng(now, kFolder / (std::string(picture.name) + ".png")));
            continue;
        }
        const gui::Image then = stored(picture);
        ASSERT_EQ(now.width(), then.width());
        ASSERT_EQ(now.height(), then.height());
        EXPECT_EQ(differingPixels(now, then), 0u);
    }
}

TEST(Pictures, areTheSameAtLargerScales)
{
    std::map<std::string, std::uint64_t> sums;
    for (const Picture& picture : kPictures)
        for (const float scale : kLargerScales)
            sums[std::string(picture.name) + '@' + std::to_string(scale).substr(0, 3)] =
                sumOf(drawn(picture, scale));
    if (stores()) {
        std::ofstream out(kSums);
        for (const auto& [name, sum] : sums)
            out << name << ' ' << sum << '\n';
        GTEST_SKIP() << "stored " << kSums;
    }
    std::ifstream in(kSums);
    std::map<std::string, std::uint64_t> then;
    std::string name;
    for (std::uint64_t sum = 0; in >> name >> sum;)
        then[name] = sum;
    EXPECT_EQ(sums, then);
}

} // namespace tolm::test
