#include "gui/Menu.h"

#include "gui/Frame.h"
#include "gui/MenuPanel.h"
#include "gui/asciiText.h"

#include <algorithm>

namespace tolm::gui {

namespace {

constexpr double kSubMenuRestSeconds = 0.15;
constexpr double kOpeningSeconds = 0.25;
constexpr std::size_t kMaxQueryBytes = 40;

void collectChoices(const std::vector<MenuEntry>& entries, const std::string& path,
                    std::string_view query, std::vector<MenuEntry>& begin,
                    std::vector<MenuEntry>& rest)
{
    for (const MenuEntry& entry : entries) {
        if (!entry.children.empty() && entry.enabled) {
            collectChoices(entry.children, path + entry.label + " > ", query, begin, rest);
            continue;
        }
        if (!isChoice(entry) || !holdsWords(path + entry.label, query))
            continue;
        MenuEntry found = entry;
        found.label = path + entry.label;
        const bool begins = lowered(entry.label).starts_with(lowered(query));
        (begins ? begin : rest).push_back(std::move(found));
    }
}

} // namespace

std::vector<MenuEntry> findEntries(const std::vector<MenuEntry>& entries, std::string_view query)
{
    std::vector<MenuEntry> found;
    std::vector<MenuEntry> rest;
    collectChoices(entries, {}, query, found, rest);
    found.insert(found.end(), std::make_move_iterator(rest.begin()),
                 std::make_move_iterator(rest.end()));
    return found;
}

Menu::Menu(MenuRequest request) : request_(std::move(request)) {}
Menu::~Menu() = default;

Menu& Menu::show(Frame& frame, MenuRequest request)
{
    Frame::OverlayOptions options;
    options.dismissed = request.dismissed;
    std::unique_ptr<Menu> made(new Menu(std::move(request)));
    made->setBounds({0.0f, 0.0f, frame.size().x, frame.size().y});
    Menu& menu = *made;
    frame.showOverlay(std::move(made), std::move(options));
    menu.start();
    return menu;
}

void Menu::start()
{
    openedAt_ = frame()->host().now();
    frame()->requestKeys(*this, true);
    openRoot();
    panels_.back()->fadeIn();
}

bool Menu::isOpening() const
{
    return !pressed_ && frame() != nullptr && frame()->host().now() - openedAt_ < kOpeningSeconds;
}

View* Menu::hitTest(Point local)
{
    for (auto panel = panels_.rbegin(); panel != panels_.rend(); ++panel)
        if (View* hit = (*panel)->hitTest(local - (*panel)->bounds().origin()))
            return hit;
    return nullptr;
}

bool Menu::mouseDown(const MouseEvent&)
{
    return true;
}

// --- panels ----------------------------------------------------------------------------------

void Menu::openRoot()
{
    closeBeyond(0);
    const Style& style = frame()->style();
    const Rect usable = localBounds().inset(style.grid);
    if (!query_.empty())
        found_ = findEntries(request_.entries, query_);
    const auto& entries = query_.empty() ? request_.entries : found_;
    auto panel = std::make_unique<MenuPanel>(*this, entries, style, query_, usable);
    panel->setBounds(placeMenu(panel->wantedSize(), request_.anchor, usable));
    panels_.push_back(&add(std::move(panel)));
    if (query_.empty())
        panels_.back()->lightFirstOrChecked();
    else
        panels_.back()->lightNext(1);
}

void Menu::openChild(MenuPanel& parent, int index, bool byKey)
{
    const auto at = std::find(panels_.begin(), panels_.end(), &parent);
    if (at == panels_.end())
        return;
    const MenuEntry& entry = parent.entries()[static_cast<std::size_t>(index)];
    closeBeyond(static_cast<std::size_t>(at - panels_.begin()) + 1);
    parent.light(index);
    const Rect usable = localBounds().inset(frame()->style().grid);
    auto panel =
        std::make_unique<MenuPanel>(*this, entry.children, frame()->style(), std::string{}, usable);
    panel->setBounds(placeSubMenu(panel->wantedSize(), parent.rowInFrame(index), usable));
    panels_.push_back(&add(std::move(panel)));
    panels_.back()->fadeIn();
    if (byKey)
        panels_.back()->lightFirstOrChecked();
}

// Keeps the first `level` panels. The others may be the ones whose handler runs.
void Menu::closeBeyond(std::size_t level)
{
    openChildAt_ = 0.0;
    while (panels_.size() > level) {
        MenuPanel* const last = panels_.back();
        panels_.pop_back();
        frame()->discard(remove(*last));
    }
}

void Menu::pointAt(MenuPanel& panel, int index)
{
    const auto at = std::find(panels_.begin(), panels_.end(), &panel);
    if (at == panels_.end())
        return;
    const auto level = static_cast<std::size_t>(at - panels_.begin());
    if (index < 0 || (level == pointedLevel_ && index == pointedIndex_))
        return;
    pointedLevel_ = level;
    pointedIndex_ = index;
    openChildAt_ = frame()->host().now() + kSubMenuRestSeconds;
    frame()->animate(*this);
}

// A sub-menu opens, or gives way, when the pointer has rested: crossing other rows on the way into
// an open one does not close it.
bool Menu::animate(double now)
{
    if (frame() == nullptr || openChildAt_ == 0.0)
        return false;
    if (now < openChildAt_)
        return true;
    openChildAt_ = 0.0;
    if (pointedLevel_ >= panels_.size() || pointedIndex_ < 0)
        return false;
    MenuPanel& panel = *panels_[pointedLevel_];
    if (panel.lit() != pointedIndex_)
        return false;
    const auto& entry = panel.entries()[static_cast<std::size_t>(pointedIndex_)];
    if (entry.children.empty())
        closeBeyond(pointedLevel_ + 1);
    else
        openChild(panel, pointedIndex_, false);
    return false;
}

void Menu::activate(MenuPanel& panel, int index, bool byKey)
{
    const MenuEntry& entry = panel.entries()[static_cast<std::size_t>(index)];
    if (isChoice(entry))
        choose(entry.id);
    else if (entry.enabled && !entry.children.empty())
        openChild(panel, index, byKey);
}

void Menu::choose(int id)
{
    const auto chosen = std::move(request_.chosen);
    frame()->dismissOverlay(*this);
    if (chosen)
        chosen(id);
}

void Menu::giveUp()
{
    const auto dismissed = std::move(request_.dismissed);
    frame()->dismissOverlay(*this);
    if (dismissed)
        dismissed();
}

// --- keys ------------------------------------------------------------------------------------

bool Menu::keyDown(const KeyEvent& event)
{
    if (panels_.empty())
        return false;
    pointedIndex_ = -1;
    return navigate(event) || type(event);
}

bool Menu::navigate(const KeyEvent& event)
{
    MenuPanel& panel = *panels_.back();
    switch (event.key) {
    case Key::up:
        panel.lightNext(-1);
        return true;
    case Key::down:
        panel.lightNext(1);
        return true;
    case Key::home:
        panel.light(-1);
        panel.lightNext(1);
        return true;
    case Key::end:
        panel.light(-1);
        panel.lightNext(-1);
        return true;
    case Key::left:
        if (!panel.lightBeside(-1) && panels_.size() > 1)
            closeBeyond(panels_.size() - 1);
        return true;
    case Key::right:
        if (panel.lit() >= 0 &&
            !panel.entries()[static_cast<std::size_t>(panel.lit())].children.empty())
            activate(panel, panel.lit(), true);
        else
            panel.lightBeside(1);
        return true;
    case Key::enter:
        if (panel.lit() >= 0)
            activate(panel, panel.lit(), true);
        return true;
    case Key::escape:
        if (!query_.empty())
            search({});
        else if (panels_.size() > 1)
            closeBeyond(panels_.size() - 1);
        else
            giveUp();
        return true;
    default:
        return false;
    }
}

bool Menu::type(const KeyEvent& event)
{
    if (event.key == Key::backspace) {
        std::string shorter = query_;
        // A whole character: bytes that continue one go with the one that begins it.
        while (!shorter.empty() && (static_cast<unsigned char>(shorter.back()) & 0xC0) == 0x80)
            shorter.pop_back();
        if (!shorter.empty())
            shorter.pop_back();
        search(std::move(shorter));
        return true;
    }
    if (event.key == Key::space && query_.empty()) {
        KeyEvent enter;
        enter.key = Key::enter;
        return navigate(enter);
    }
    const bool typed = event.key == Key::character || event.key == Key::space;
    if (!typed || event.modifiers.control || event.modifiers.alt || event.text.empty())
        return true; // nothing below the menu shall act while it is open
    if (query_.size() + event.text.size() <= kMaxQueryBytes)
        search(query_ + event.text);
    return true;
}

void Menu::search(std::string query)
{
    if (query == query_)
        return;
    query_ = std::move(query);
    openRoot();
}

} // namespace tolm::gui
