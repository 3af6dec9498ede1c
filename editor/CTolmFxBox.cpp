#include "editor/CTolmFxBox.h"

#include "editor/layout.h"
#include "editor/programActions.h"
#include "gui/Frame.h"
#include "gui/Menu.h"

#include <algorithm>
#include <cmath>

namespace tolm {

namespace {

constexpr float kSettled = 0.5f;

const EffectRow& rowOf(int kind)
{
    return kEffectRows[static_cast<std::size_t>(kind)];
}

} // namespace

CTolmFxBox::CTolmFxBox(EditorContext& context) : View(pagePlace(Page::effects)), context_(context)
{
    context.listen(*this, kEffectOrder1, kSlots);
    fill();
}

CTolmFxBox::~CTolmFxBox()
{
    context_.forget(*this);
}

int CTolmFxBox::kindAt(int slot) const
{
    const float stored = std::floor(context_.value(kEffectOrder1 + slot) + 0.1f);
    return stored >= 0.0f && stored < kEffectKinds ? static_cast<int>(stored) : -1;
}

gui::Rect CTolmFxBox::slotPlace(int slot) const
{
    const float step = (bounds().width - kEffectCardWidth) / (kSlots - 1);
    return {std::round(step * static_cast<float>(slot)), 0.0f, kEffectCardWidth, bounds().height};
}

int CTolmFxBox::slotAt(float x) const
{
    const float step = (bounds().width - kEffectCardWidth) / (kSlots - 1);
    return std::clamp(static_cast<int>(x / step), 0, kSlots - 1);
}

// Cards are kept for their kinds; only what is missing is made anew.
void CTolmFxBox::fill()
{
    std::array<CTolmFxCard*, kSlots> before = cards_;
    for (int slot = 0; slot < kSlots; ++slot) {
        const int kind = kindAt(slot);
        const auto kept =
            std::find_if(before.begin(), before.end(), [kind](const CTolmFxCard* card) {
                return card != nullptr && card->kind() == kind;
            });
        CTolmFxCard*& card = cards_[static_cast<std::size_t>(slot)];
        if (kept != before.end()) {
            card = *kept;
            *kept = nullptr;
        } else {
            card = &emplace<CTolmFxCard>(context_, *this, kind);
        }
        card->slot = slot;
    }
    for (CTolmFxCard* left : before)
        if (left != nullptr) {
            auto gone = remove(*left);
            if (frame() != nullptr)
                frame()->discard(std::move(gone));
        }
    place(true);
}

int CTolmFxBox::previewSlot(int slot) const
{
    if (dragged_ < 0 || slot == dragged_)
        return slot;
    if (slot > dragged_ && slot <= target_)
        return slot - 1;
    return slot < dragged_ && slot >= target_ ? slot + 1 : slot;
}

// Glides towards the places unless at once; the dragged card follows the pointer instead.
void CTolmFxBox::place(bool atOnce)
{
    for (int slot = 0; slot < kSlots; ++slot) {
        if (slot == dragged_)
            continue;
        CTolmFxCard& card = *cards_[static_cast<std::size_t>(slot)];
        gui::Rect wanted = slotPlace(previewSlot(slot));
        const float distance = wanted.x - card.bounds().x;
        if (!atOnce && std::abs(distance) > kSettled)
            wanted.x = card.bounds().x + distance * 0.35f;
        if (wanted.x != card.bounds().x)
            card.setBounds(wanted);
    }
}

bool CTolmFxBox::animate(double)
{
    place(false);
    for (int slot = 0; slot < kSlots; ++slot)
        if (slot != dragged_ &&
            cards_[static_cast<std::size_t>(slot)]->bounds().x != slotPlace(previewSlot(slot)).x)
            return true;
    return false;
}

void CTolmFxBox::draw(gui::Canvas& canvas)
{
    // The way of the signal, seen between the cards.
    for (int slot = 1; slot < kSlots; ++slot) {
        const gui::Point tip{slotPlace(slot).x - 2.6f, CTolmFxCard::kTitleHeight / 2 + 1.0f};
        gui::Path arrow;
        arrow.moveTo({tip.x - 3.0f, tip.y - 3.6f}).lineTo(tip).lineTo({tip.x - 3.0f, tip.y + 3.6f});
        canvas.stroke(arrow, {1.4f, gui::LineCap::round}, theme::kFaint);
    }
}

bool CTolmFxBox::mouseDown(const gui::MouseEvent& event)
{
    const int slot = slotAt(event.position.x);
    if (!slotPlace(slot).contains(event.position))
        return false;
    if (event.button == gui::MouseButton::right) {
        openOrderMenu(slot, toFrame(event.position));
        return true;
    }
    if (event.button != gui::MouseButton::left || event.position.y > CTolmFxCard::kTitleHeight)
        return false;
    dragged_ = target_ = slot;
    grip_ = event.position.x - slotPlace(slot).x;
    CTolmFxCard& card = *cards_[static_cast<std::size_t>(slot)];
    add(remove(card)); // above the others
    card.setLifted(true);
    return true;
}

void CTolmFxBox::mouseDragged(const gui::MouseEvent& event)
{
    if (dragged_ < 0)
        return;
    CTolmFxCard& card = *cards_[static_cast<std::size_t>(dragged_)];
    gui::Rect place = card.bounds();
    place.x = std::clamp(event.position.x - grip_, 0.0f, bounds().width - place.width);
    card.setBounds(place);
    target_ = slotAt(place.centre().x);
    if (frame() != nullptr)
        frame()->animate(*this);
}

void CTolmFxBox::drop(bool keep)
{
    if (dragged_ < 0)
        return;
    const int from = dragged_;
    const int to = target_;
    cards_[static_cast<std::size_t>(from)]->setLifted(false);
    dragged_ = target_ = -1;
    if (keep)
        moveCard(from, to);
    fill();
}

void CTolmFxBox::moveCard(int from, int to)
{
    moveEffect(context_.port(), context_.history(), from, to);
    fill();
}

void CTolmFxBox::valueChanged(int)
{
    // A preview of the user's own order is not disturbed.
    if (dragged_ < 0)
        fill();
}

void CTolmFxBox::replaceKind(int slot, int kind)
{
    context_.actions().controlChanged(kEffectOrder1 + slot, static_cast<float>(kind));
    fill();
}

// For keyboards and for programs whose order holds an effect twice.
void CTolmFxBox::openOrderMenu(int slot, gui::Point inFrame)
{
    enum Command : int { left = 100, right };
    gui::MenuRequest request;
    request.anchor = {inFrame.x, inFrame.y, 0.0f, 0.0f};
    request.entries.push_back(gui::MenuEntry::heading("Effect " + std::to_string(slot + 1)));
    request.entries.push_back({left, "Move left", {}, false, slot > 0, {}, {}});
    request.entries.push_back({right, "Move right", {}, false, slot < kSlots - 1, {}, {}});
    std::vector<gui::MenuEntry> missing;
    for (int kind = 0; kind < kEffectKinds; ++kind) {
        bool present = false;
        for (int other = 0; other < kSlots; ++other)
            present = present || kindAt(other) == kind;
        if (!present)
            missing.push_back({kind, rowOf(kind).title, {}, false, true, {}, {}});
    }
    if (!missing.empty())
        request.entries.push_back(gui::MenuEntry::group("Replace by", std::move(missing)));
    request.chosen = [this, slot](int command) {
        if (command == left)
            moveCard(slot, slot - 1);
        else if (command == right)
            moveCard(slot, slot + 1);
        else
            replaceKind(slot, command);
    };
    gui::Menu::show(*frame(), std::move(request));
}

} // namespace tolm
