#include "gui/Menu.h"

#include "gui/MenuPanel.h"
#include "tests/gui/frameRig.h"

namespace tolm::gui {

namespace {

MenuEntry entry(int id, std::string label, bool isChecked = false, bool isEnabled = true)
{
    return {id, std::move(label), {}, isChecked, isEnabled, {}, {}};
}

std::vector<MenuEntry> numbered(int count, const std::string& name)
{
    std::vector<MenuEntry> entries;
    for (int i = 0; i < count; ++i)
        entries.push_back(entry(i, name + " " + std::to_string(i)));
    return entries;
}

std::vector<MenuEntry> mixed()
{
    return {MenuEntry::heading("Shape"), entry(1, "Saw", false, false),
            entry(2, "Pulse"),           MenuEntry::separator(),
            entry(3, "Sine", true),      MenuEntry::group("Waves", numbered(3, "Wave"))};
}

class Menus : public FrameTest {
protected:
    Menus() : FrameTest({800.0f, 500.0f}) {}

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
};

TEST_F(Menus, keysWalkOverWhatCanBeChosenAndIntoGroups)
{
    Menu& menu = show(mixed());
    EXPECT_TRUE(window.keysWanted());
    EXPECT_EQ(menu.panel(0).lit(), 4) << "begins at the checked entry";
    hands.keys("Up");
    EXPECT_EQ(menu.panel(0).lit(), 2);
    hands.keys("Up");
    EXPECT_EQ(menu.panel(0).lit(), 5) << "around the end, past heading and disabled entry";
    hands.keys("Right");
    ASSERT_EQ(menu.depth(), 2u);
    hands.keys("Left");
    EXPECT_EQ(menu.depth(), 1u);
    hands.keys("Enter Down Enter");
    EXPECT_EQ(chosen, 1);
    hands.wait(0.0);
    EXPECT_FALSE(window.keysWanted());
    EXPECT_EQ(dismissals, 0);
}

TEST_F(Menus, escapeStepsBackAndThenGivesUp)
{
    Menu& menu = show(mixed());
    hands.keys("End Right w a v e");
    EXPECT_EQ(menu.query(), "wave");
    hands.keys("Escape");
    EXPECT_EQ(menu.query(), "");
    EXPECT_EQ(dismissals, 0);
    hands.keys("Escape");
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
    hands.keys("Backspace");
    EXPECT_EQ(menu.panel(0).rowCount(), 3);
    hands.keys("Down Enter");
    EXPECT_EQ(chosen, 1);
    hands.wait(0.0);

    Menu& again = show(mixed());
    hands.type("saw");
    EXPECT_EQ(again.panel(0).rowCount(), 0) << "what is disabled cannot be found";
    hands.keys("Enter");
    EXPECT_TRUE(frame.hasOverlay());
    // Those that begin with the words come before those that hold them.
    EXPECT_EQ(findEntries({entry(1, "Env Amount"), entry(2, "Amount")}, "AMO")[0].id, 2);
}

TEST_F(Menus, theMouseChoosesAndOpensGroupsAfterARest)
{
    Menu& menu = show(mixed());
    hands.move(menu.panel(0).rowInFrame(5).centre());
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
}

// Down on the control, drag, release on an entry. A quick release stays open.
TEST_F(Menus, onePressIsEnough)
{
    auto& control = frame.content().emplace<Recorder>(Rect{100.0f, 100.0f, 60.0f, 20.0f});
    Menu* menu = nullptr;
    control.onPress = [&] { menu = &show(mixed(), {100.0f, 100.0f, 0.0f, 0.0f}); };
    hands.press({110.0f, 110.0f});
    hands.release(menu->panel(0).rowInFrame(2).centre());
    EXPECT_TRUE(frame.hasOverlay());
    frame.dismissAllOverlays();
    hands.press({110.0f, 110.0f});
    hands.wait(0.4);
    hands.move(menu->panel(0).rowInFrame(2).centre());
    hands.release(menu->panel(0).rowInFrame(2).centre());
    EXPECT_EQ(chosen, 2);
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
    hands.keys("Enter");
    EXPECT_TRUE(frame.hasOverlay());
    hands.wait(0.0);
    frame.dismissAllOverlays();
    EXPECT_EQ(dismissals, 1);
}

TEST_F(Menus, longListsStayInsideTheWindowWhereverTheyOpen)
{
    const Rect bounds{0.0f, 0.0f, 800.0f, 500.0f};
    const Rect anchors[] = {
        {0.0f, 0.0f, 10.0f, 10.0f}, {780.0f, 480.0f, 20.0f, 20.0f}, {-50.0f, 700.0f, 0.0f, 0.0f}};
    for (const int count : {0, 1, 24, 95, 400, 3000})
        for (const Rect& anchor : anchors) {
            SCOPED_TRACE(count);
            const MenuPanel& panel = show(numbered(count, "Destination"), anchor).panel(0);
            const Rect place = panel.boundsInFrame();
            EXPECT_EQ(place.intersection(bounds), place);
            EXPECT_EQ(panel.layout().scrolls(), count > 150);
            hands.keys("End");
            if (count > 0) { // the last one can be reached and seen
                const Rect row = panel.rowInFrame(count - 1);
                EXPECT_EQ(row.intersection(place), row);
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
    hands.keys("Right");
    EXPECT_EQ(menu.panel(0).lit(), perColumn.front());
    hands.keys("Left");
    EXPECT_EQ(menu.panel(0).lit(), 0);
    // A heading is never the last of its column.
    std::vector<MenuRowSize> rows(10, {20.0f, 80.0f, false});
    rows[4].startsGroup = true;
    EXPECT_EQ(layOutMenu(rows, 10.0f, {400.0f, 100.0f}).rows[4].y, 0.0f);
}

TEST_F(Menus, subMenusFlipAtTheEdge)
{
    Menu& menu = show(mixed(), {790.0f, 100.0f, 0.0f, 0.0f});
    hands.keys("End Right");
    ASSERT_EQ(menu.depth(), 2u);
    EXPECT_LE(menu.panel(1).boundsInFrame().right(), menu.panel(0).boundsInFrame().x + 10.0f);
}

} // namespace

} // namespace tolm::gui
