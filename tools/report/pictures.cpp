#include "tools/report/pictures.h"

#include "tools/audition/spectrum.h"
#include "tools/soundFiles.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

namespace tolm {
namespace {

constexpr double kLowestHz = 30.0;
constexpr double kHighestHz = 16000.0;
constexpr double kRangeDb = 90.0;
constexpr std::size_t kFrame = 4096;

using Colour = std::array<double, 3>;

// Dark to bright: night blue, violet, orange, cream.
constexpr Colour kScale[] = {
    {20, 22, 30}, {58, 40, 112}, {160, 58, 120}, {240, 140, 60}, {255, 244, 200}};

void putColour(double level, png_byte* pixel)
{
    constexpr double kLast = static_cast<double>(std::size(kScale)) - 1.0;
    const double place = std::clamp(level, 0.0, 1.0) * kLast;
    const auto below = static_cast<std::size_t>(std::min(std::floor(place), kLast - 1.0));
    const double share = place - static_cast<double>(below);
    for (std::size_t c = 0; c < 3; ++c)
        pixel[c] =
            static_cast<png_byte>(kScale[below][c] * (1.0 - share) + kScale[below + 1][c] * share);
}

// The loudest bin of a row's band, or the nearest one where bands are narrower than bins.
double levelOfRow(const std::vector<double>& power, int row)
{
    const auto binAt = [](double place) {
        const double hz = kLowestHz * std::pow(kHighestHz / kLowestHz, place);
        return static_cast<std::size_t>(std::lround(hz * kFrame / kAuditionRateHz));
    };
    const std::size_t low = binAt(static_cast<double>(row) / kPictureHeight);
    const std::size_t high = binAt(static_cast<double>(row + 1) / kPictureHeight);
    return *std::max_element(power.begin() + static_cast<std::ptrdiff_t>(low),
                             power.begin() + static_cast<std::ptrdiff_t>(std::max(high, low + 1)));
}

// Rows from the highest frequency down, in RGB.
std::vector<png_byte> spectrogramOf(const Rendering& r)
{
    std::vector<double> levels(static_cast<std::size_t>(kPictureWidth * kPictureHeight));
    double top = 1e-12;
    for (int x = 0; x < kPictureWidth; ++x) {
        const std::size_t begin = r.left.size() * static_cast<std::size_t>(x) / kPictureWidth;
        const Spectra spectra =
            spectraOf(r, begin, std::min(begin + kFrame, r.left.size()), kFrame);
        for (int row = 0; row < kPictureHeight; ++row) {
            const double power = levelOfRow(spectra.mid, row) + levelOfRow(spectra.side, row);
            levels[static_cast<std::size_t>((kPictureHeight - 1 - row) * kPictureWidth + x)] =
                power;
            top = std::max(top, power);
        }
    }
    std::vector<png_byte> pixels(3 * levels.size());
    for (std::size_t i = 0; i < levels.size(); ++i)
        putColour(1.0 + 10.0 * std::log10(levels[i] / top + 1e-12) / kRangeDb, &pixels[3 * i]);
    return pixels;
}

} // namespace

std::string waveformSvg(const Rendering& r)
{
    constexpr double kMiddle = kPictureHeight / 2.0;
    float peak = 1e-6f;
    for (std::size_t i = 0; i < r.left.size(); ++i)
        peak = std::max({peak, std::fabs(r.left[i]), std::fabs(r.right[i])});
    std::string upper;
    std::string lower;
    for (int x = 0; x < kPictureWidth; ++x) {
        const auto at = [&](int column) {
            return r.left.size() * static_cast<std::size_t>(column) / kPictureWidth;
        };
        float high = 0.0f;
        float low = 0.0f;
        for (std::size_t i = at(x); i < at(x + 1); ++i) {
            high = std::max({high, r.left[i], r.right[i]});
            low = std::min({low, r.left[i], r.right[i]});
        }
        const auto point = [&](float value) {
            char text[32];
            std::snprintf(text, sizeof text, "%d,%.1f ", x,
                          kMiddle - static_cast<double>(value / peak) * (kMiddle - 1.0));
            return std::string(text);
        };
        upper += point(high);
        lower.insert(0, point(low));
    }
    const auto keyUp =
        static_cast<int>(r.keyUpFrame * kPictureWidth / std::max(r.left.size(), {1}));
    char line[64];
    std::snprintf(line, sizeof line, "<path d=\"M%d 0V%d\"/>", keyUp, kPictureHeight);
    return "<svg viewBox=\"0 0 " + std::to_string(kPictureWidth) + " " +
           std::to_string(kPictureHeight) + "\"><polygon points=\"" + upper + lower + "\"/>" +
           line + "</svg>";
}

void writeSpectrogram(const Rendering& rendering, const std::filesystem::path& path)
{
    const std::vector<png_byte> pixels = spectrogramOf(rendering);
    png_image image;
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    image.width = kPictureWidth;
    image.height = kPictureHeight;
    image.format = PNG_FORMAT_RGB;
    if (png_image_write_to_file(&image, path.c_str(), 0, pixels.data(), 0, nullptr) == 0)
        throw Failure(path.string() + ": cannot be written");
}

} // namespace tolm
