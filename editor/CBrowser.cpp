#include "editor/CBrowser.h"

#include "editor/CHeaderParts.h"
#include "editor/pages.h"
#include "gui/Frame.h"
#include "plugin/menus.h"

namespace tolm {

namespace {

constexpr gui::Rect kPlace{12.0f, 60.0f, 1096.0f, 572.0f};
constexpr float kListX = 184.0f;
constexpr float kListWidth = 640.0f;
constexpr float kSideX = kListX + kListWidth + 16.0f;
constexpr float kSideWidth = kPlace.width - kSideX - 16.0f;
constexpr float kListY = 44.0f;
constexpr float kListHeight = 520.0f;
constexpr gui::TextStyle kBigName{17.0f, gui::FontWeight::semiBold, 0.0f, false};

} // namespace

CBrowser::CBrowser(EditorShell& shell) : View(kPlace), shell_(shell), model_(shell)
{
    setVisible(false);
    const auto changed = [this] { update(); };
    banks_ = &emplace<CBankSwitch>(shell.context, model_, gui::Rect{12.0f, 10.0f, 160.0f, 24.0f});
    banks_->changed = changed;
    addFields();
    categories_ = &emplace<CBrowserCategories>(
        model_, gui::Rect{12.0f, kListY, 160.0f, CBrowserCategories::kRowHeight * 15.0f + 12.0f});
    categories_->changed = changed;
    names_ = &emplace<CBrowserNames>(model_, gui::Rect{kListX, kListY, kListWidth, kListHeight});
    names_->activated = [this] { close(); };
    shell.listen(*this);
}

void CBrowser::addFields()
{
    gui::TextEdit::Options searching;
    searching.maxBytes = 80;
    searching.keepsFocus = true;
    searching.placeholder = "Search names, categories and descriptions of all banks";
    searching.spokenName = "Search";
    search_ = &emplace<gui::TextEdit>(gui::Rect{kListX, 10.0f, kListWidth, 24.0f}, searching);
    search_->edited = [this](const std::string& text) {
        model_.search(text);
        update();
    };
    search_->otherKey = [this](const gui::KeyEvent& event) { return moveKey(event); };

    gui::TextEdit::Options describing;
    describing.multiLine = true;
    describing.maxBytes = sizeof(ProgramRecord::description) - 1;
    describing.placeholder = "No description yet";
    describing.spokenName = "Description";
    description_ =
        &emplace<gui::TextEdit>(gui::Rect{kSideX, 128.0f, kSideWidth, 236.0f}, describing);
    description_->committed = [this](const std::string& text) {
        shell_.context.actions().descriptionChanged(text);
        shell_.tellProgram();
    };

    CIconButton::Options closing;
    closing.word = "Close";
    closing.spoken = "Close the browser";
    closing.pressed = [this](gui::View&) { close(); };
    emplace<CIconButton>(gui::Rect{kPlace.width - 16.0f - 64.0f, 10.0f, 64.0f, 24.0f},
                         std::move(closing));
}

void CBrowser::show(bool visible)
{
    if (visible == isVisible())
        return;
    setVisible(visible);
    if (frame() == nullptr)
        return;
    frame()->requestKeys(*this, visible);
    if (!visible)
        return;
    search_->setText("");
    model_.search("");
    model_.read();
    update();
    showDescription();
    frame()->setFocus(search_);
    frame()->animate(*this);
}

void CBrowser::close()
{
    shell_.context.actions().controlChanged(kTagTwoViews, 0.0f);
}

// A press on the keys below takes the focus away; the browser's keys go on.
bool CBrowser::animate(double)
{
    if (isVisible() && frame()->focus() == nullptr && !frame()->hasOverlay())
        frame()->setFocus(this);
    return isVisible();
}

void CBrowser::update()
{
    names_->update();
    invalidate();
}

void CBrowser::programChanged()
{
    if (!isVisible())
        return;
    model_.read();
    update();
    showDescription();
}

void CBrowser::showDescription()
{
    EditorPort& port = shell_.context.port();
    const std::string text = port.record(port.currentProgram()).description.data();
    if (text != description_->text() && !description_->hasFocus())
        description_->setText(text);
}

bool CBrowser::moveKey(const gui::KeyEvent& event)
{
    switch (event.key) {
    case gui::Key::up:
        names_->move(-1);
        return true;
    case gui::Key::down:
        names_->move(1);
        return true;
    case gui::Key::pageUp:
        names_->move(-names_->rowsPerColumn());
        return true;
    case gui::Key::pageDown:
        names_->move(names_->rowsPerColumn());
        return true;
    default:
        return false;
    }
}

bool CBrowser::keyDown(const gui::KeyEvent& event)
{
    if (event.key == gui::Key::escape || event.key == gui::Key::enter) {
        close();
        return true;
    }
    if (event.key == gui::Key::left || event.key == gui::Key::right) {
        names_->move(event.key == gui::Key::right ? names_->rowsPerColumn()
                                                  : -names_->rowsPerColumn());
        return true;
    }
    return moveKey(event);
}

void CBrowser::draw(gui::Canvas& canvas)
{
    drawPanel(canvas, localBounds(), "", Accent::value);
    EditorPort& port = shell_.context.port();
    const ProgramRecord record = port.record(port.currentProgram());
    canvas.textIn(record.name.data(), {kSideX, kListY, kSideWidth, 28.0f}, kBigName, theme::kText);
    const auto category = static_cast<int>(record.values[kPatchCategory]);
    const bool known = category > 0 && category < kCategoryCount;
    const std::string where =
        std::string("Bank ") + static_cast<char>('A' + port.currentProgram() / kPresetListSize) +
        ", program " + std::to_string(port.currentProgram() % kPresetListSize + 1);
    canvas.textIn(where + (known ? std::string("  \u2022  ") + kCategoryNames[category] : ""),
                  {kSideX, kListY + 28.0f, kSideWidth, 18.0f}, theme::kField, theme::kSecondary);
    canvas.textIn("DESCRIPTION", {kSideX, 106.0f, kSideWidth, 18.0f}, theme::kSmallTitle,
                  theme::kSecondary);
    const std::string count = std::to_string(model_.rows().size()) + " programs";
    canvas.textIn(count, {kSideX, kListY + kListHeight - 20.0f, kSideWidth, 18.0f}, theme::kLabel,
                  theme::kSecondary);
    constexpr const char* kHints[] = {"Up and down play the next program.",
                                      "Typing searches all banks.",
                                      "Enter and Escape close the browser."};
    for (int i = 0; i < 3; ++i)
        canvas.textIn(kHints[i],
                      {kSideX, kListY + kListHeight - 80.0f + 16.0f * static_cast<float>(i),
                       kSideWidth, 16.0f},
                      theme::kLabel, theme::kSecondary);
}

} // namespace tolm
