#include "editor/shapes.h"

#include "editor/theme.h"

#include <array>
#include <span>

namespace tolm {

namespace {

constexpr float kLineWidth = 1.4f;

// Corners and curves in a box of 1 by 1; y grows downwards.
constexpr std::array<gui::Point, 4> kSaw = {{{0, 1}, {0.5f, 0}, {0.5f, 1}, {1, 0}}};
constexpr std::array<gui::Point, 6> kPulse = {
    {{0, 1}, {0, 0}, {0.5f, 0}, {0.5f, 1}, {1, 1}, {1, 0}}};
constexpr std::array<gui::Point, 4> kTriangle = {{{0, 0.5f}, {0.25f, 0}, {0.75f, 1}, {1, 0.5f}}};
constexpr std::array<gui::Point, 8> kSteps = {{{0, 0.7f},
                                               {0.25f, 0.7f},
                                               {0.25f, 0.1f},
                                               {0.5f, 0.1f},
                                               {0.5f, 1},
                                               {0.75f, 1},
                                               {0.75f, 0.35f},
                                               {1, 0.35f}}};

gui::Point placed(gui::Point p, const gui::Rect& box)
{
    return {box.x + p.x * box.width, box.y + p.y * box.height};
}

gui::Path outline(std::span<const gui::Point> corners, const gui::Rect& box)
{
    gui::Path path;
    path.moveTo(placed(corners[0], box));
    for (const gui::Point& corner : corners.subspan(1))
        path.lineTo(placed(corner, box));
    return path;
}

gui::Path sine(const gui::Rect& box)
{
    gui::Path path;
    path.moveTo(placed({0, 0.5f}, box));
    path.cubicTo(placed({0.18f, -0.16f}, box), placed({0.32f, -0.16f}, box),
                 placed({0.5f, 0.5f}, box));
    path.cubicTo(placed({0.68f, 1.16f}, box), placed({0.82f, 1.16f}, box), placed({1, 0.5f}, box));
    return path;
}

// Two humps of different height: some wave that is none of the others.
gui::Path table(const gui::Rect& box)
{
    gui::Path path;
    path.moveTo(placed({0, 0.6f}, box));
    path.cubicTo(placed({0.1f, -0.3f}, box), placed({0.2f, -0.1f}, box), placed({0.3f, 0.5f}, box));
    path.cubicTo(placed({0.36f, 0.85f}, box), placed({0.42f, 0.2f}, box),
                 placed({0.52f, 0.3f}, box));
    path.cubicTo(placed({0.66f, 0.45f}, box), placed({0.7f, 1.3f}, box),
                 placed({0.84f, 0.95f}, box));
    path.lineTo(placed({1, 0.55f}, box));
    return path;
}

} // namespace

Shape shapeNamed(std::string_view text)
{
    struct Row {
        std::string_view text;
        Shape shape;
    };
    constexpr Row kRows[] = {
        {"Saw", Shape::saw},           {"Pulse", Shape::pulse},   {"Sine", Shape::sine},
        {"Triangle", Shape::triangle}, {"Wavetbl", Shape::table}, {"S+H", Shape::steps},
    };
    for (const Row& row : kRows)
        if (row.text == text)
            return row.shape;
    return Shape::table;
}

void drawShape(gui::Canvas& canvas, Shape shape, const gui::Rect& box, gui::Color color)
{
    const gui::Stroke stroke{kLineWidth, gui::LineCap::round};
    switch (shape) {
    case Shape::saw:
        canvas.stroke(outline(kSaw, box), stroke, color);
        break;
    case Shape::pulse:
        canvas.stroke(outline(kPulse, box), stroke, color);
        break;
    case Shape::sine:
        canvas.stroke(sine(box), stroke, color);
        break;
    case Shape::triangle:
        canvas.stroke(outline(kTriangle, box), stroke, color);
        break;
    case Shape::table:
        canvas.stroke(table(box), stroke, color);
        break;
    case Shape::steps:
        canvas.stroke(outline(kSteps, box), stroke, color);
        break;
    }
}

void drawField(gui::Canvas& canvas, const gui::Rect& bounds, float lit)
{
    canvas.fillRoundRect(bounds, theme::kControlRadius, theme::kWell);
    canvas.strokeRoundRect(bounds, theme::kControlRadius, 1.0f,
                           gui::mix(theme::kEdge, theme::kTrack, lit));
}

void drawArrow(gui::Canvas& canvas, gui::Point centre, float dx, float dy, gui::Color color)
{
    gui::Path arrow;
    arrow.moveTo({centre.x - dx - dy, centre.y - dy - dx})
        .lineTo({centre.x + dx, centre.y + dy})
        .lineTo({centre.x - dx + dy, centre.y - dy + dx});
    canvas.stroke(arrow, {1.4f, gui::LineCap::round}, color);
}

} // namespace tolm
