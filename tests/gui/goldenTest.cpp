// The sheet of primitives, pixel by pixel against stored pictures. After a wanted change
//   TOLM_UPDATE_GOLDEN=1 build/release/tests/gui/tolm_gui_tests --gtest_filter='GuiGolden.*'
// stores the new ones. A failing sheet is left in the build folder.

#include "tests/gui/canvasRig.h"
#include "tests/gui/primitives.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace tolm::gui {

namespace {

namespace fs = std::filesystem;

Image stored(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(file), {}};
    return decodePng(bytes);
}

class GuiGolden : public ::testing::TestWithParam<int> {};

TEST_P(GuiGolden, primitivesLookAsStored)
{
    const float scale = static_cast<float>(GetParam()) / 100.0f;
    CanvasRig rig(static_cast<int>(kSheet.x * scale), static_cast<int>(kSheet.y * scale), scale);
    drawPrimitives(rig.canvas);

    const std::string name = "primitives" + std::to_string(GetParam()) + ".png";
    const fs::path golden = fs::path(TOLM_SOURCE_DIR) / "tests/gui/golden" / name;
    if (std::getenv("TOLM_UPDATE_GOLDEN") != nullptr) {
        ASSERT_TRUE(writePng(rig.image, golden));
        return;
    }
    const bool same = stored(golden) == rig.image;
    if (!same)
        writePng(rig.image, fs::path(TOLM_BUILD_DIR) / name);
    EXPECT_TRUE(same) << "compare " << golden << " with " << fs::path(TOLM_BUILD_DIR) / name;
}

INSTANTIATE_TEST_SUITE_P(Scales, GuiGolden, ::testing::Values(100, 150));

} // namespace

} // namespace tolm::gui
