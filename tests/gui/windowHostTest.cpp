// The plug-in's window inside a host's, as tolm-window-host opens it.

#include "gui/Image.h"
#include "tests/gui/XServer.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

namespace tolm::gui {

namespace {

int hostRuns(const std::string& arguments)
{
    return std::system((TOLM_WINDOW_HOST " " + arguments + " >/dev/null 2>&1").c_str());
}

TEST(WindowHost, opensShootsAndClosesInEveryOrder)
{
    if (!XServer::isInstalled())
        GTEST_SKIP() << "Xvfb is not installed: windows are not tested";
    const XServer server;
    ASSERT_TRUE(server.runs());
    const auto folder =
        std::filesystem::path(testing::TempDir()) / ("tolm-window-" + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    setenv("XDG_CONFIG_HOME", folder.c_str(), 1); // not the settings of whoever tests
    setenv("XDG_DATA_HOME", folder.c_str(), 1);
    const std::string plugin = TOLM_PLUGIN;
    EXPECT_EQ(hostRuns(plugin + " --seconds 0.3 --shot " + (folder / "shot.png").string()), 0);
    std::ifstream file(folder / "shot.png", std::ios::binary);
    const std::vector<std::uint8_t> bytes(std::istreambuf_iterator<char>(file), {});
    const Image shown = decodePng(bytes);
    ASSERT_EQ(shown.width(), 1120);
    ASSERT_EQ(shown.height(), 720);
    EXPECT_EQ(shown.row(360)[4], 0xFF14171Cu) << "the window's ground, beside the tabs";

    EXPECT_EQ(hostRuns(plugin + " --cycles 20 --seconds 0 --instances 2 --depth 32"), 0);
    EXPECT_EQ(hostRuns(plugin + " --cycles 5 --seconds 0.05 --parent-first"), 0);
    EXPECT_NE(hostRuns("/nothing.so"), 0);
    setenv("DISPLAY", ":32111", 1);
    EXPECT_NE(hostRuns(plugin + " --seconds 0"), 0);
    std::filesystem::remove_all(folder);
}

} // namespace

} // namespace tolm::gui
