#include "gui/Menu.h"

#include "gui/MenuPanel.h"
#include "tests/gui/frameRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tolm::gui {

namespace {

std::vector<MenuEntry> numbered(int count, const std::string& name)
{
    std::vector<MenuEntry> entries;
    for (int i = 0; i < count; ++i)
        entries.push_back({i, name + " " + std::to_string(i), {}, false, true, {}, {}});
    return entries;
}

class Menus : public testing::Test {
protected:
    HeadlessWindow window{{800.0f, 500.0f}, 1.0f};
    Frame& frame = window.frame();
    Hands hands{window};
    int chosen = -1;
    int dismissals = 0;

    Menu& show(std::vector<MenuEntry> entries, Rect anchor = {100.0f, 100.0f, 60.0f, 20.0f})
    {
        MenuRequest request;
        request.entries = std::move(entries);
        request.anchor = anchor;
        request.chosen = [this](int id) {
            EXPECT_FALSE(frame.hasOverlay());
            chosen = id;
        };
        request.dismissed = [this] { ++dismissals; };
        return Menu::show(frame, std::move(request));
    }
    std::vector<MenuEntry> mixed()
    {
        std::vector<MenuEntry> entries = {MenuEntry::heading("Shape")};
        entries.push_back({1, "Saw", {}, false, false, {}, {}});
        entries.push_back({2, "Pulse", "P", false, true, {}, {}});
        entries.push_back(MenuEntry::separator());
        entries.push_back({3, "Sine", {}, true, true, {}, {}});
        entries.push_back(MenuEntry::group("Waves", numbered(3, "Wave")));
        return entries;
    }
};

TEST_F(Menus, keysWalkOverWhatCanBeChosenAndIntoGroups)
{
    Menu& menu = show(mixed());
    EXPECT_TRUE(window.keysWanted());
    EXPECT_EQ(menu.panel(0).lit(), 4) << "begins at the checked entry";
    hands.key(Key::up);
    EXPECT_EQ(menu.panel(0).lit(), 2);
    hands.key(Key::up);
    EXPECT_EQ(menu.panel(0).lit(), 5) << "around the end, past heading and disabled entry";
    hands.key(Key::right);
    ASSERT_EQ(menu.depth(), 2u);
    hands.key(Key::left);
    EXPECT_EQ(menu.depth(), 1u);
    hands.key(Key::enter);
    hands.key(Key::down);
    hands.key(Key::enter);
    EXPECT_EQ(chosen, 1);
    hands.wait(0.0);
    EXPECT_FALSE(window.keysWanted());
    EXPECT_EQ(dismissals, 0);
}

TEST_F(Menus, escapeStepsBackAndThenGivesUp)
{
    Menu& menu = show(mixed());
    hands.key(Key::end);
    hands.key(Key::right);
    hands.type("wave");
    EXPECT_EQ(menu.query(), "wave");
    hands.key(Key::escape);
    EXPECT_EQ(menu.query(), "");
    EXPECT_EQ(dismissals, 0);
    hands.key(Key::escape);
    EXPECT_EQ(dismissals, 1);
    EXPECT_FALSE(frame.hasOverlay());
    hands.wait(0.0);
    EXPECT_EQ(chosen, -1);
}

TEST_F(Menus, typingFindsEntriesOfAllGroups)
{
    Menu& menu = show(mixed());
    hands.type("wave 2");
    ASSERT_EQ(menu.panel(0).rowCount(), 1);
    EXPECT_EQ(menu.panel(0).entries()[0].label, "Waves > Wave 2");
    hands.key(Key::backspace);
    EXPECT_EQ(menu.panel(0).rowCount(), 3);
    hands.key(Key::down);
    hands.key(Key::enter);
    EXPECT_EQ(chosen, 1);
    hands.wait(0.0);

    Menu& again = show(mixed());
    hands.type("saw");
    EXPECT_EQ(again.panel(0).rowCount(), 0) << "what is disabled cannot be found";
    hands.key(Key::enter);
    EXPECT_TRUE(frame.hasOverlay());
    // Those that begin with the words come before those that hold them.
    EXPECT_EQ(findEntries({{1, "Env Amount", {}, false, true, {}, {}},
                           {2, "Amount", {}, false, true, {}, {}}},
                          "AMO")[0]
                  .id,
              2);
}

TEST_F(Menus, theMouseChoosesOpensGroupsAfterARestAndDragsThrough)
{
    Menu& menu = show(mixed());
    const Rect group = menu.panel(0).rowInFrame(5);
    hands.move(group.centre());
    window.pump();
    EXPECT_EQ(menu.depth(), 1u);
    hands.wait(0.2);
    ASSERT_EQ(menu.depth(), 2u);
    // Across another row into the open group, faster than the rest takes.
    hands.move(menu.panel(0).rowInFrame(4).centre());
    hands.wait(0.05);
    hands.move(menu.panel(1).rowInFrame(1).centre());
    hands.wait(0.3);
    ASSERT_EQ(menu.depth(), 2u);
    hands.click(menu.panel(1).rowInFrame(2).centre());
    EXPECT_EQ(chosen, 2);
    hands.wait(0.0);

    // One press: down on the control, drag, release on an entry. A quick release stays open.
    auto& control = frame.content().emplace<Recorder>(Rect{100.0f, 100.0f, 60.0f, 20.0f});
    Menu* dragged = nullptr;
    control.onPress = [&] { dragged = &show(mixed(), {100.0f, 100.0f, 0.0f, 0.0f}); };
    hands.press({110.0f, 110.0f});
    hands.release(dragged->panel(0).rowInFrame(2).centre());
    EXPECT_TRUE(frame.hasOverlay());
    frame.dismissAllOverlays();
    chosen = -1;
    hands.press({110.0f, 110.0f});
    hands.wait(0.4);
    hands.move(dragged->panel(0).rowInFrame(2).centre());
    hands.release(dragged->panel(0).rowInFrame(2).centre());
    EXPECT_EQ(chosen, 2);
    hands.wait(0.0);
}

TEST_F(Menus, aChoiceMayOpenTheNextMenuOrEndTheControl)
{
    MenuRequest request;
    request.entries = mixed();
    request.chosen = [this](int) {
        frame.dismissAllOverlays();
        show(mixed());
    };
    Menu::show(frame, std::move(request));
    hands.key(Key::enter);
    EXPECT_TRUE(frame.hasOverlay());
    hands.wait(0.0);
    frame.dismissAllOverlays();
    EXPECT_EQ(dismissals, 1);
    hands.wait(0.0);
}

TEST_F(Menus, longListsStayInsideTheWindowWhereverTheyOpen)
{
    const Rect bounds{0.0f, 0.0f, 800.0f, 500.0f};
    for (const int count : {0, 1, 24, 95, 400, 3000})
        for (const Rect anchor :
             {Rect{0.0f, 0.0f, 10.0f, 10.0f}, Rect{780.0f, 480.0f, 20.0f, 20.0f},
              Rect{-50.0f, 700.0f, 0.0f, 0.0f}}) {
            Menu& menu = show(numbered(count, "Destination"), anchor);
            const Rect panel = menu.panel(0).boundsInFrame();
            EXPECT_EQ(panel.intersection(bounds), panel) << count;
            const MenuLayout& layout = menu.panel(0).layout();
            EXPECT_EQ(layout.scrolls(), count > 150) << count;
            // The last one can be reached and seen.
            hands.key(Key::end);
            if (count > 0) {
                const Rect row = menu.panel(0).rowInFrame(count - 1);
                EXPECT_EQ(row.intersection(panel), row) << count;
                hands.click(row.centre());
                EXPECT_EQ(chosen, count - 1);
            }
            frame.dismissAllOverlays();
            hands.wait(0.0);
        }
}

TEST_F(Menus, columnsAreEvenAndArrowsCrossThem)
{
    Menu& menu = show(numbered(95, "Destination"));
    const MenuLayout& layout = menu.panel(0).layout();
    ASSERT_GT(layout.columns, 2);
    std::vector<int> perColumn(static_cast<std::size_t>(layout.columns));
    for (const Rect& row : layout.rows)
        ++perColumn[static_cast<std::size_t>(row.x / row.width + 0.5f)];
    EXPECT_GE(perColumn.back(), perColumn.front() / 2);
    hands.key(Key::right);
    EXPECT_EQ(menu.panel(0).lit(), perColumn.front());
    hands.key(Key::left);
    EXPECT_EQ(menu.panel(0).lit(), 0);
}

TEST_F(Menus, subMenusFlipAtTheEdge)
{
    Menu& menu = show(mixed(), {790.0f, 100.0f, 0.0f, 0.0f});
    hands.key(Key::end);
    hands.key(Key::right);
    ASSERT_EQ(menu.depth(), 2u);
    EXPECT_LE(menu.panel(1).boundsInFrame().right(), menu.panel(0).boundsInFrame().x + 10.0f);
    // A heading is never the last of its column.
    std::vector<MenuRowSize> rows(10, {20.0f, 80.0f, false});
    rows[4].startsGroup = true;
    const MenuLayout layout = layOutMenu(rows, 10.0f, {400.0f, 100.0f});
    EXPECT_EQ(layout.rows[4].y, 0.0f);
}

} // namespace

} // namespace tolm::gui
