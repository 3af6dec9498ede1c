// The window host with a plug-in that shows stripes.

#include "gui/Image.h"
#include "tests/gui/XServer.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace tolm::gui {

namespace {

int hostRuns(const std::string& arguments)
{
    const std::string command =
        std::string(TOLM_WINDOW_HOST) + " " + arguments + " >/dev/null 2>&1";
    return std::system(command.c_str());
}

TEST(WindowHost, opensShootsAndClosesInEveryOrder)
{
    const XServer server;
    if (!server.isInstalled())
        GTEST_SKIP() << "Xvfb is not installed: windows are not tested";
    ASSERT_TRUE(server.runs());
    const auto picture = std::filesystem::path(testing::TempDir()) /
                         ("tolm-window-" + std::to_string(getpid()) + ".png");
    const std::string plugin = TOLM_WINDOW_PLUGIN;
    EXPECT_EQ(hostRuns(plugin + " --seconds 0.3 --shot " + picture.string()), 0);
    std::ifstream file(picture, std::ios::binary);
    const std::vector<std::uint8_t> bytes(std::istreambuf_iterator<char>(file), {});
    const Image shown = decodePng(bytes);
    ASSERT_EQ(shown.width(), 240);
    ASSERT_EQ(shown.height(), 160);
    EXPECT_EQ(shown.row(5)[5], 0xFF204060u);
    EXPECT_EQ(shown.row(80)[120], 0xFFFFB454u);
    std::filesystem::remove(picture);

    EXPECT_EQ(hostRuns(plugin + " --cycles 20 --seconds 0 --instances 2 --depth 32"), 0);
    EXPECT_EQ(hostRuns(plugin + " --cycles 5 --seconds 0.05 --parent-first"), 0);
    EXPECT_NE(hostRuns("/nothing.so"), 0);
    setenv("DISPLAY", ":32111", 1);
    EXPECT_NE(hostRuns(plugin + " --seconds 0"), 0);
}

} // namespace

} // namespace tolm::gui
