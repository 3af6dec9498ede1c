#include "editor/CKeyboardCtrl.h"

#include "editor/CWheel.h"
#include "editor/layout.h"
#include "editor/theme.h"
#include "gui/Frame.h"

#include <algorithm>
#include <array>

namespace tolm {

namespace {

constexpr int kOctave = 12;
constexpr int kWhiteKeys = 36; // of five octaves and a C
constexpr float kBlackHeight = 0.6f;
constexpr float kBlackWidth = 0.62f; // of a white key's
constexpr gui::Color kIvoryTop = gui::Color::rgb(0xC9CED7);
constexpr gui::Color kIvory = gui::Color::rgb(0xE9ECF1);
constexpr gui::Color kEbonyTop = gui::Color::rgb(0x14171C);
constexpr gui::Color kEbony = gui::Color::rgb(0x343B47);

// White keys below a semitone of the octave, and how far a black one's middle is moved from the
// gap, in white keys.
constexpr std::array<int, kOctave> kWhitesBelow = {0, 1, 1, 2, 2, 3, 4, 4, 5, 5, 6, 6};
constexpr std::array<bool, kOctave> kIsBlack = {false, true,  false, true,  false, false,
                                                true,  false, true,  false, true,  false};
constexpr std::array<float, kOctave> kBlackShift = {0,      -0.1f, 0, 0.1f, 0,     0,
                                                    -0.13f, 0,     0, 0,    0.13f, 0};

bool isBlack(int offset)
{
    return kIsBlack[static_cast<std::size_t>(offset % kOctave)];
}

std::string keyName(int key) // of a C; middle C is C4
{
    std::string name = "C";
    return name += std::to_string(key / kOctave - 1);
}

} // namespace

CKeyboardCtrl::CKeyboardCtrl(EditorContext& context, gui::Rect place)
    : View(place), context_(context)
{
    context.listenToMeters(*this);
}

CKeyboardCtrl::~CKeyboardCtrl()
{
    release();
    context_.forget(*this);
}

void CKeyboardCtrl::setFirstKey(int key)
{
    const int first = std::clamp(key / kOctave * kOctave, kLowestFirst, kHighestFirst);
    if (first == first_)
        return;
    release();
    first_ = first;
    invalidate();
}

gui::Rect CKeyboardCtrl::keyPlace(int key) const
{
    const int offset = key - first_;
    const auto semitone = static_cast<std::size_t>(offset % kOctave);
    const float width = bounds().width / kWhiteKeys;
    const float x = width * static_cast<float>(offset / kOctave * 7 + kWhitesBelow[semitone]);
    if (!isBlack(offset))
        return {x, 0.0f, width, bounds().height};
    const float black = width * kBlackWidth;
    return {x + width * kBlackShift[semitone] - black / 2, 0.0f, black,
            bounds().height * kBlackHeight};
}

std::optional<CKeyboardCtrl::Touch> CKeyboardCtrl::touchAt(gui::Point p) const
{
    if (!localBounds().contains(p))
        return std::nullopt;
    int found = -1;
    for (int key = first_; key < first_ + kKeys; ++key)
        if (keyPlace(key).contains(p) && (found < 0 || isBlack(key - first_)))
            found = key;
    if (found < 0)
        return std::nullopt;
    const float depth = p.y / keyPlace(found).height;
    return Touch{found, std::clamp(1 + static_cast<int>(depth * 127.0f), 1, 127)};
}

bool CKeyboardCtrl::isLit(int key) const
{
    return key == held_ || lit_[static_cast<std::size_t>(key)];
}

void CKeyboardCtrl::play(Touch touch)
{
    if (touch.key == held_)
        return;
    release();
    held_ = touch.key;
    context_.port().playKey(touch.key, touch.velocity);
    invalidate(keyPlace(held_));
}

void CKeyboardCtrl::release()
{
    if (held_ < 0)
        return;
    context_.port().releaseKey(held_);
    invalidate(keyPlace(held_));
    held_ = -1;
}

bool CKeyboardCtrl::mouseDown(const gui::MouseEvent& event)
{
    if (event.button != gui::MouseButton::left)
        return false;
    if (const auto touch = touchAt(event.position))
        play(*touch);
    return true;
}

void CKeyboardCtrl::mouseDragged(const gui::MouseEvent& event)
{
    if (const auto touch = touchAt(event.position))
        play(*touch);
    else
        release();
}

void CKeyboardCtrl::metersChanged(const EditorMeters& meters)
{
    for (int key = first_; key < first_ + kKeys; ++key) {
        const auto bit = static_cast<std::size_t>(key);
        if (meters.keys[bit] != lit_[bit])
            invalidate(keyPlace(key).inset(-1.0f));
    }
    lit_ = meters.keys;
}

void CKeyboardCtrl::drawWhite(gui::Canvas& canvas, int key) const
{
    gui::Rect place = canvas.snap(keyPlace(key));
    const float line = 1.0f / canvas.scale();
    place.width -= line;
    const gui::Color accent = theme::color(Accent::value);
    const bool lit = isLit(key);
    const gui::Color bottom = lit ? gui::mix(kIvory, accent, 0.75f) : kIvory;
    const gui::Color top = lit ? gui::mix(kIvoryTop, accent, 0.45f) : kIvoryTop;
    canvas.fillRoundRect({place.x, place.y - 4.0f, place.width, place.height + 4.0f}, 3.0f,
                         gui::Paint::linear({0, place.y}, {0, place.bottom()},
                                            {{0.0f, top}, {0.12f, bottom}, {1.0f, bottom}}));
    canvas.fillRect({place.x + 1.0f, place.bottom() - 3.0f, place.width - 2.0f, 1.0f},
                    theme::kBack.withAlpha(0.10f));
    if ((key - first_) % kOctave == 0)
        canvas.textIn(keyName(key), {place.x, place.bottom() - 17.0f, place.width, 12.0f},
                      theme::kLabel, gui::Color::rgb(0x5A6270), gui::Align::centre);
}

void CKeyboardCtrl::drawBlack(gui::Canvas& canvas, int key) const
{
    const gui::Rect place = canvas.snap(keyPlace(key));
    canvas.fillRoundRect({place.x - 1.0f, -4.0f, place.width + 2.0f, place.height + 6.0f}, 3.0f,
                         theme::kBack.withAlpha(0.35f));
    canvas.fillRoundRect({place.x, -4.0f, place.width, place.height + 4.0f}, 2.5f, kEbonyTop);
    const bool lit = isLit(key);
    const gui::Color face = lit ? theme::color(Accent::value) : kEbony;
    const gui::Rect top{place.x + 2.0f, -4.0f, place.width - 4.0f, place.height - 1.0f};
    canvas.fillRoundRect(top, 2.0f,
                         gui::Paint::linear({0, 0}, {0, top.bottom()},
                                            gui::mix(kEbonyTop, face, lit ? 0.6f : 0.35f), face));
}

void CKeyboardCtrl::draw(gui::Canvas& canvas)
{
    canvas.fillRect(canvas.snap(localBounds()), theme::kBack);
    const gui::Rect clip = canvas.clipBounds();
    for (const bool black : {false, true})
        for (int key = first_; key < first_ + kKeys; ++key) {
            if (isBlack(key - first_) != black || !keyPlace(key).inset(-2.0f).intersects(clip))
                continue;
            if (black)
                drawBlack(canvas, key);
            else
                drawWhite(canvas, key);
        }
}

// ---- Octaves ---------------------------------------------------------------------------------

void COctaveShift::draw(gui::Canvas& canvas)
{
    const gui::Rect box = canvas.snap(localBounds());
    canvas.fillRoundRect(box, theme::kControlRadius, theme::kWell);
    canvas.strokeRoundRect(box, theme::kControlRadius, 1.0f,
                           hasFocus() && frame()->keyboardMode()
                               ? theme::kText
                               : hoverColor(theme::kEdge, theme::kTrack));
    const auto arrow = [&](float y, float up, bool enabled) {
        const float x = box.centre().x;
        gui::Path path;
        path.moveTo({x - 3.6f, y + 1.8f * up})
            .lineTo({x, y - 1.8f * up})
            .lineTo({x + 3.6f, y + 1.8f * up});
        canvas.stroke(path, {1.4f, gui::LineCap::round},
                      enabled ? hoverColor(theme::kSecondary, theme::kText) : theme::kTrack);
    };
    arrow(box.y + 12.0f, 1.0f, keys_.firstKey() < CKeyboardCtrl::kHighestFirst);
    arrow(box.bottom() - 12.0f, -1.0f, keys_.firstKey() > CKeyboardCtrl::kLowestFirst);
    canvas.textIn(keyName(keys_.firstKey()), box, theme::kLabel, theme::kSecondary,
                  gui::Align::centre);
}

void COctaveShift::shift(int octaves)
{
    keys_.setFirstKey(keys_.firstKey() + octaves * kOctave);
    invalidate();
}

bool COctaveShift::mouseDown(const gui::MouseEvent& event)
{
    if (event.button != gui::MouseButton::left)
        return false;
    shift(event.position.y < bounds().height / 2 ? 1 : -1);
    return true;
}

bool COctaveShift::mouseWheel(const gui::WheelEvent& event)
{
    shift(event.steps > 0 ? 1 : -1);
    return true;
}

bool COctaveShift::keyDown(const gui::KeyEvent& event)
{
    if (event.key != gui::Key::up && event.key != gui::Key::down)
        return false;
    shift(event.key == gui::Key::up ? 1 : -1);
    return true;
}

// ---- The strip -------------------------------------------------------------------------------

std::unique_ptr<gui::View> makeKeyboardPage(EditorContext& context)
{
    const gui::Rect place = pagePlace(Page::keyboard);
    auto page = std::make_unique<gui::View>(place);
    page->emplace<CWheel>(context, kTagPitchWheel, gui::Rect{0.0f, 0.0f, 25.0f, place.height});
    page->emplace<CWheel>(context, kModWheel, gui::Rect{30.0f, 0.0f, 25.0f, place.height});
    constexpr float kKeysX = 92.0f;
    auto keys = std::make_unique<CKeyboardCtrl>(
        context, gui::Rect{kKeysX, 0.0f, place.width - kKeysX, place.height});
    page->emplace<COctaveShift>(*keys, gui::Rect{60.0f, 0.0f, 25.0f, place.height});
    page->add(std::move(keys));
    return page;
}

} // namespace tolm
