// The window on real X servers, with and without shared memory.

#include "gui/WindowXcb.h"
#include "gui/Menu.h"
#include "gui/TextEdit.h"
#include "host/window/ParentWindow.h"
#include "tests/gui/XServer.h"
#include "tests/gui/frameRig.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>
#include <thread>

namespace tolm::gui {

namespace {

constexpr Point kSize{300.0f, 200.0f};

// Four corners of different colours and a field that changes when it is pressed.
class Picture final : public View {
public:
    using View::View;
    Color middle = Color::rgb(0x123456);

    void draw(Canvas& canvas) override
    {
        const Rect box = localBounds();
        canvas.fillRect(box, middle);
        canvas.fillRect({0.0f, 0.0f, 40.0f, 40.0f}, Color::rgb(0xFF0000));
        canvas.fillRect({box.width - 40.0f, box.height - 40.0f, 40.0f, 40.0f},
                        Color::rgb(0x0000FF));
    }
    void change(Color color)
    {
        middle = color;
        invalidate();
    }
};

struct Setup {
    bool shared;
    int depth;
    float scale;
};

class WindowsXcb : public testing::TestWithParam<Setup> {
protected:
    std::optional<XServer> server;
    std::optional<ParentWindow> parent;
    std::unique_ptr<WindowXcb> window;

    void SetUp() override
    {
        if (!XServer::isInstalled())
            GTEST_SKIP() << "Xvfb is not installed: windows are not tested";
        server.emplace(GetParam().shared ? "" : "-extension MIT-SHM");
        ASSERT_TRUE(server->runs());
        parent.emplace(800, 600, GetParam().depth);
        reopen();
    }
    void reopen()
    {
        window.reset();
        window = WindowXcb::open(parent->id(), kSize, GetParam().scale, "Test");
        ASSERT_NE(window, nullptr);
    }
    // As long as the server needs: its answers come when they come.
    bool pumpUntil(const std::function<bool()>& done)
    {
        for (int i = 0; i < 1000; ++i) {
            window->pump();
            parent->sync();
            if (done())
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        return false;
    }
    void pumpAWhile()
    {
        for (int i = 0; i < 10; ++i) {
            parent->sync();
            window->pump();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    void click(float x, float y)
    {
        parent->press(device(x), device(y));
        parent->release(device(x), device(y));
        pumpAWhile();
    }
    bool takesKeys() const { return (parent->childEventMask() & XCB_EVENT_MASK_KEY_PRESS) != 0; }
    void showMenu()
    {
        Menu::show(window->frame(), {{{1, "Entry", {}, false, true, {}, {}}}, {}, {}, {}});
    }
    int device(float logical) const { return static_cast<int>(logical * GetParam().scale); }
    std::uint32_t onScreen(float x, float y) const
    {
        const Screenshot shot = parent->shot();
        if (shot.pixels.empty())
            return 0;
        const auto at = static_cast<std::size_t>(device(y) * shot.width + device(x));
        return shot.pixels[at] & 0xFFFFFF;
    }
    bool shows(float x, float y, std::uint32_t color)
    {
        return pumpUntil([&] { return onScreen(x, y) == color; });
    }
    template <class T>
    T& fill()
    {
        return window->frame().content().emplace<T>(Rect{0.0f, 0.0f, kSize.x, kSize.y});
    }
};

TEST_P(WindowsXcb, showsItsPictureInTheParentsDepthAndAfterEveryExposure)
{
    auto& view = fill<Picture>();
    EXPECT_EQ(window->sharesMemory(), GetParam().shared);
    EXPECT_EQ(parent->childDepth(), GetParam().depth);
    EXPECT_TRUE(shows(20.0f, 20.0f, 0xFF0000));
    EXPECT_TRUE(shows(kSize.x - 5.0f, kSize.y - 5.0f, 0x0000FF));
    EXPECT_TRUE(shows(100.0f, 100.0f, 0x123456));
    view.change(Color::rgb(0x00FF00));
    EXPECT_TRUE(shows(100.0f, 100.0f, 0x00FF00));
    parent->unmapAndMap();
    EXPECT_TRUE(shows(100.0f, 100.0f, 0x00FF00)) << "copied again without painting";

    window->setScale(GetParam().scale * 1.25f);
    const float right = (kSize.x - 5.0f) * 1.25f;
    const float bottom = (kSize.y - 5.0f) * 1.25f;
    EXPECT_TRUE(shows(right, bottom, 0x0000FF));
    for (const std::uint32_t pixel : parent->shot().pixels)
        if (GetParam().depth == 32 && pixel >> 24 != 0xFF)
            FAIL() << "a window of depth 32 must not be translucent";
}

TEST_P(WindowsXcb, theMouseReachesViewsInLogicalCoordinates)
{
    auto& view = fill<Recorder>();
    const int y = device(20.0f);
    parent->press(device(40.0f), y, 1, 0xFFFFFF00u);
    pumpAWhile();
    EXPECT_EQ(view.take(), "entered, down 40,20");
    for (const float x : {50.0f, 60.0f, 72.0f})
        parent->move(device(x), y);
    parent->release(device(72.0f), y);
    pumpAWhile();
    EXPECT_EQ(view.take(), "drag 72,20, up") << "moves are merged";
    // Wheel turns of one pump are one, and releases are none.
    for (int i = 0; i < 3; ++i) {
        parent->press(device(40.0f), y, 4);
        parent->release(device(40.0f), y, 4);
    }
    pumpAWhile();
    EXPECT_EQ(view.take(), "wheel");
}

TEST_P(WindowsXcb, keysAreTakenFromTheHostOnlyWhileSomebodyTypes)
{
    auto& edit = window->frame().content().emplace<TextEdit>(Rect{10.0f, 10.0f, 200.0f, 24.0f},
                                                             TextEdit::Options{});
    pumpAWhile();
    parent->setFocus(parent->id());
    EXPECT_FALSE(takesKeys());
    click(30.0f, 20.0f);
    EXPECT_TRUE(takesKeys());
    EXPECT_EQ(parent->focus(), window->id());
    parent->key(parent->codeOf('o'), XCB_MOD_MASK_SHIFT);
    parent->key(parent->codeOf('h'));
    parent->key(parent->codeOf(' '));
    parent->key(parent->codeOf('1'), XCB_MOD_MASK_SHIFT);
    pumpAWhile();
    EXPECT_EQ(edit.text(), "Oh !");
    // The user goes elsewhere and comes back with a press.
    parent->setFocus(parent->id());
    pumpAWhile();
    click(30.0f, 20.0f);
    EXPECT_EQ(parent->focus(), window->id());
    parent->key(parent->codeOf(0xFF0D));
    pumpAWhile();
    EXPECT_FALSE(takesKeys());
    EXPECT_EQ(parent->focus(), parent->id()) << "given back";
}

TEST_P(WindowsXcb, theParentMayGoFirst)
{
    auto& view = fill<Picture>();
    pumpAWhile();
    showMenu();
    parent->destroy();
    EXPECT_TRUE(pumpUntil([this] { return !window->isAlive(); }));
    view.change(Color::rgb(0xFFFFFF));
    window->setScale(2.0f);
    window->frame().host().copyToClipboard("text");
    window->frame().dismissAllOverlays();
    window->pump();
    window.reset();
}

TEST_P(WindowsXcb, closesInMidDragAndWithAMenuOpen)
{
    auto& view = fill<Recorder>();
    pumpAWhile();
    parent->press(device(40.0f), device(20.0f));
    pumpAWhile();
    EXPECT_EQ(window->frame().captured(), &view);
    window.reset();
    parent->sync();
    EXPECT_EQ(parent->child(), 0u);
    reopen();
    showMenu();
    pumpAWhile();
    EXPECT_EQ(parent->focus(), window->id());
    window.reset();
    parent->sync();
    EXPECT_NE(parent->child(), parent->focus());
}

TEST_P(WindowsXcb, theServerGoingDoesNotTakeUsAlong)
{
    fill<Picture>();
    pumpAWhile();
    server.reset();
    for (int i = 0; i < 100 && window->isAlive(); ++i) {
        window->pump();
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    EXPECT_FALSE(window->isAlive());
    window.reset();
    EXPECT_EQ(openWindow(parent->handle(), kSize, 1.0f, "Test"), nullptr);
}

TEST_P(WindowsXcb, textGoesFromWindowToWindow)
{
    auto other = WindowXcb::open(parent->id(), kSize, 1.0f, "Other");
    ASSERT_NE(other, nullptr);
    window->frame().host().copyToClipboard("\u00C4ther");
    window->pump();
    parent->sync();
    std::string received;
    other->frame().host().pasteFromClipboard([&](const std::string& text) { received = text; });
    EXPECT_TRUE(pumpUntil([&] {
        other->pump();
        return !received.empty();
    }));
    EXPECT_EQ(received, "\u00C4ther");
    // More than is taken over: nobody is answered, nobody waits.
    received.clear();
    window->frame().host().copyToClipboard(std::string(100'000, 'x'));
    other->frame().host().pasteFromClipboard([&](const std::string& text) { received = text; });
    for (int i = 0; i < 8; ++i) {
        pumpAWhile();
        other->pump();
    }
    EXPECT_EQ(received, "");
}

std::size_t openFiles()
{
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

TEST_P(WindowsXcb, twoHundredOpeningsLeaveNothingBehind)
{
    window.reset();
    const std::size_t before = openFiles();
    for (int i = 0; i < 200; ++i) {
        reopen();
        fill<Picture>();
        window->pump();
        if (i % 2 == 0)
            pumpAWhile();
    }
    window.reset();
    parent->sync();
    EXPECT_EQ(parent->child(), 0u);
    EXPECT_EQ(openFiles(), before);
    std::size_t segments = 0;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        segments += line.find("/SYSV") != std::string::npos ? 1 : 0;
    EXPECT_EQ(segments, 0u) << "shared memory is let go";
}

INSTANTIATE_TEST_SUITE_P(Setups, WindowsXcb,
                         testing::Values(Setup{true, 24, 1.0f}, Setup{true, 32, 1.5f},
                                         Setup{false, 24, 2.0f}, Setup{false, 32, 1.0f}));

TEST(WindowXcb, opensNothingWithoutADisplayOrInWhatIsNoWindow)
{
    if (!XServer::isInstalled())
        GTEST_SKIP() << "Xvfb is not installed: windows are not tested";
    const XServer server;
    EXPECT_EQ(WindowXcb::open(0x7654321, kSize, 1.0f, "Test"), nullptr);
    EXPECT_EQ(WindowXcb::open(1, {}, 1.0f, "Test"), nullptr);
    EXPECT_NE(openWindow(nullptr, kSize, 1.0f, "Alone"), nullptr);

    ParentWindow parent(100, 100, 24);
    parent.setResources("Xcursor.size:\t24\nXft.dpi:\t144\n");
    EXPECT_FLOAT_EQ(displayScale(kSize), 1.5f);
    EXPECT_FLOAT_EQ(displayScale({1120.0f, 720.0f}), 1.0f) << "90 % of 1280 pixels";
    setenv("TOLM_SCALE", "1.8", 1);
    EXPECT_FLOAT_EQ(displayScale(kSize), 1.75f);
    unsetenv("TOLM_SCALE");
    setenv("DISPLAY", ":32111", 1);
    EXPECT_EQ(WindowXcb::open(0, kSize, 1.0f, "Test"), nullptr);
    EXPECT_FLOAT_EQ(displayScale(kSize), 1.0f);
}

} // namespace

} // namespace tolm::gui
