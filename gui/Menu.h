#pragma once
// A menu inside the window: it opens below or above its anchor, uses columns or scrolls when it is
// long, opens sub-menus beside itself, and finds entries by what is typed.

#include "gui/View.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tolm::gui {

struct MenuEntry {
    enum class Kind : unsigned char { item, separator, heading };

    int id = 0;
    std::string label;
    std::string shortcut; // drawn at the right, no more
    bool checked = false;
    bool enabled = true;
    Kind kind = Kind::item;
    std::vector<MenuEntry> children; // a sub-menu; then the id means nothing

    static MenuEntry separator() { return {0, {}, {}, false, false, Kind::separator, {}}; }
    static MenuEntry heading(std::string label)
    {
        return {0, std::move(label), {}, false, false, Kind::heading, {}};
    }
    static MenuEntry group(std::string label, std::vector<MenuEntry> children)
    {
        return {0, std::move(label), {}, false, true, Kind::item, std::move(children)};
    }
};

// What can be chosen without anything below it.
inline bool isChoice(const MenuEntry& entry)
{
    return entry.kind == MenuEntry::Kind::item && entry.enabled && entry.children.empty();
}

// All choices, also of sub-menus, whose label holds the words of `query` in any order and without
// regard to upper and lower case; labels become "Group > Name". Those that begin with the query
// come first.
std::vector<MenuEntry> findEntries(const std::vector<MenuEntry>& entries, std::string_view query);

struct MenuRequest {
    std::vector<MenuEntry> entries;
    Rect anchor; // frame coordinates: the control, or an empty one at the pointer
    std::function<void(int id)> chosen; // the menu is gone by then
    std::function<void()> dismissed;    // nothing was chosen
};

class MenuPanel;

class Menu final : public View {
public:
    // A menu without entries can only be dismissed.
    static Menu& show(Frame& frame, MenuRequest request);
    ~Menu() override;

    // The chain of open panels, the root first; for tests and drawing.
    std::size_t depth() const { return panels_.size(); }
    MenuPanel& panel(std::size_t level) { return *panels_[level]; }
    const std::string& query() const { return query_; }

    View* hitTest(Point local) override;
    bool mouseDown(const MouseEvent& event) override;
    bool keyDown(const KeyEvent& event) override;
    bool animate(double nowSeconds) override;

private:
    friend class MenuPanel;
    explicit Menu(MenuRequest request);
    void start();
    // From panels: the entry under the pointer or the keys.
    void activate(MenuPanel& panel, int index, bool byKey);
    void pointAt(MenuPanel& panel, int index);
    // The press that opened the menu is still the last one, and recent.
    bool isOpening() const;
    void pressed() { pressed_ = true; }

    void openChild(MenuPanel& panel, int index, bool byKey);
    void closeBeyond(std::size_t level);
    void openRoot();
    void search(std::string query);
    void choose(int id);
    void giveUp();
    bool navigate(const KeyEvent& event);
    bool type(const KeyEvent& event);

    MenuRequest request_;
    std::vector<MenuEntry> found_;
    std::vector<MenuPanel*> panels_;
    std::string query_;
    double openedAt_ = 0.0;
    double openChildAt_ = 0.0; // when the pointer will have rested on a group, 0 for none
    std::size_t pointedLevel_ = 0;
    int pointedIndex_ = -1;
    bool pressed_ = false;
};

} // namespace tolm::gui
