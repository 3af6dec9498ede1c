#include "gui/Image.h"

#include <algorithm>
#include <cmath>

namespace tolm::gui {

namespace {

// Which source pixels make one new pixel along an axis, and how much each counts.
struct Tap {
    int first = 0;
    std::vector<float> weights; // sum 1
};

std::vector<Tap> tapsFor(int from, int to)
{
    std::vector<Tap> taps(static_cast<std::size_t>(to));
    const double ratio = static_cast<double>(from) / to;
    // A box as wide as a new pixel, or a tent as wide as two old ones.
    for (int i = 0; i < to; ++i) {
        Tap& tap = taps[static_cast<std::size_t>(i)];
        if (ratio >= 1.0) {
            const double begin = i * ratio;
            const double end = std::min<double>((i + 1) * ratio, from);
            tap.first = std::min(static_cast<int>(begin), from - 1);
            for (int k = tap.first; k < from && k < end; ++k)
                tap.weights.push_back(static_cast<float>(
                    (std::min<double>(end, k + 1) - std::max<double>(begin, k)) / (end - begin)));
        } else {
            const double centre = std::clamp((i + 0.5) * ratio - 0.5, 0.0, from - 1.0);
            tap.first = std::min(static_cast<int>(centre), std::max(from - 2, 0));
            const auto second = static_cast<float>(centre - tap.first);
            tap.weights = {1.0f - second};
            if (from > 1)
                tap.weights.push_back(second);
        }
    }
    return taps;
}

struct Lanes {
    float lane[4] = {};

    void add(std::uint32_t pixel, float weight)
    {
        for (int i = 0; i < 4; ++i)
            lane[i] += static_cast<float>(pixel >> 8 * i & 255) * weight;
    }
    void add(const Lanes& other, float weight)
    {
        for (int i = 0; i < 4; ++i)
            lane[i] += other.lane[i] * weight;
    }
    std::uint32_t pixel() const
    {
        std::uint32_t value = 0;
        for (int i = 0; i < 4; ++i)
            value |= static_cast<std::uint32_t>(std::min(lane[i] + 0.5f, 255.0f)) << 8 * i;
        return value;
    }
};

} // namespace

Image::Image(int width, int height)
    : width_(std::clamp(width, 0, kMaxSide)),
      height_(std::clamp(height, 0, kMaxSide)),
      pixels_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_))
{
}

std::span<std::uint32_t> Image::row(int y)
{
    const auto width = static_cast<std::size_t>(width_);
    return std::span(pixels_).subspan(static_cast<std::size_t>(y) * width, width);
}

std::span<const std::uint32_t> Image::row(int y) const
{
    const auto width = static_cast<std::size_t>(width_);
    return std::span(pixels_).subspan(static_cast<std::size_t>(y) * width, width);
}

Image scaleImage(const Image& source, int width, int height)
{
    Image target(width, height);
    if (source.isEmpty() || target.isEmpty())
        return target;
    const std::vector<Tap> columns = tapsFor(source.width(), target.width());
    const std::vector<Tap> rows = tapsFor(source.height(), target.height());
    std::vector<Lanes> sums(static_cast<std::size_t>(source.width()));
    for (int y = 0; y < target.height(); ++y) {
        std::fill(sums.begin(), sums.end(), Lanes{});
        const Tap& rowTap = rows[static_cast<std::size_t>(y)];
        for (std::size_t k = 0; k < rowTap.weights.size(); ++k) {
            const auto from = source.row(rowTap.first + static_cast<int>(k));
            for (std::size_t x = 0; x < sums.size(); ++x)
                sums[x].add(from[x], rowTap.weights[k]);
        }
        for (int x = 0; x < target.width(); ++x) {
            Lanes lanes;
            const Tap& tap = columns[static_cast<std::size_t>(x)];
            for (std::size_t k = 0; k < tap.weights.size(); ++k)
                lanes.add(sums[static_cast<std::size_t>(tap.first) + k], tap.weights[k]);
            target.row(y)[static_cast<std::size_t>(x)] = lanes.pixel();
        }
    }
    return target;
}

} // namespace tolm::gui
