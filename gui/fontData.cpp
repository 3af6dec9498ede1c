#include "gui/fontData.h"

#include <algorithm>
#include <cstring>
#include <optional>

extern "C" {
extern const std::uint8_t tolmFont[];
extern const std::uint8_t tolmFontEnd[];
}

namespace tolm::gui {

namespace {

using Bytes = FontFace::Bytes;

constexpr std::size_t kBlockHeader = 12;
constexpr std::size_t kGlyphRow = 10;
constexpr std::size_t kPairRow = 6;
constexpr char kMagic[] = {'T', 'o', 'l', 'm', 'F', 'o', 'n', 't'};

int u16(const std::uint8_t* p)
{
    return p[0] | p[1] << 8;
}
int i16(const std::uint8_t* p)
{
    return static_cast<std::int16_t>(u16(p));
}
std::uint32_t u32(const std::uint8_t* p)
{
    return static_cast<std::uint32_t>(u16(p)) | static_cast<std::uint32_t>(u16(p + 2)) << 16;
}

// Walks an outline; `use` gets each verb with its points in font units. False when it is damaged.
class OutlineReader {
public:
    explicit OutlineReader(Bytes bytes) : bytes_(bytes) {}

    template <class Use>
    bool read(Use use)
    {
        bool begun = false;
        while (const std::optional<int> head = byte()) {
            if (*head == 0)
                return true;
            const int verb = *head >> 6;
            begun = begun || verb == 1;
            if (verb == 0 || !begun)
                return false;
            for (int i = *head & 63; i > 0; --i) {
                int points[3][2];
                for (int k = 0; k < (verb == 3 ? 3 : 1); ++k)
                    for (int axis = 0; axis < 2; ++axis) {
                        if (!step(at_[axis]))
                            return false;
                        points[k][axis] = at_[axis];
                    }
                use(verb, points);
            }
        }
        return false;
    }

private:
    std::optional<int> byte()
    {
        if (position_ == bytes_.size())
            return std::nullopt;
        return bytes_[position_++];
    }
    bool step(int& coordinate)
    {
        unsigned zigzag = 0;
        for (unsigned shift = 0; shift < 21; shift += 7) {
            const std::optional<int> next = byte();
            if (!next)
                return false;
            zigzag |= static_cast<unsigned>(*next & 0x7F) << shift;
            if (*next < 0x80) {
                const int half = static_cast<int>(zigzag >> 1);
                coordinate += zigzag & 1 ? -half - 1 : half;
                return std::abs(coordinate) < 32768;
            }
        }
        return false;
    }

    Bytes bytes_;
    std::size_t position_ = 0;
    int at_[2] = {0, 0};
};

} // namespace

FontFace::FontFace(Bytes block, int unitsPerEm)
{
    if (block.size() < kBlockHeader || unitsPerEm <= 0)
        return;
    glyphCount_ = u16(&block[8]);
    pairCount_ = u16(&block[10]);
    const std::size_t tables = kBlockHeader + static_cast<std::size_t>(glyphCount_) * kGlyphRow +
                               static_cast<std::size_t>(pairCount_) * kPairRow;
    if (block.size() < tables) {
        *this = {};
        return;
    }
    block_ = block;
    outlines_ = block.subspan(tables);
    em_ = 1.0f / static_cast<float>(unitsPerEm);
    const auto ems = [&](std::size_t at) { return static_cast<float>(i16(&block[at])) * em_; };
    metrics_ = {ems(0), ems(2), ems(4), ems(6)};
    if (!isSound())
        *this = {};
    else
        box_ = find(kBox);
}

bool FontFace::isSound() const
{
    for (int i = 0; i < glyphCount_; ++i) {
        if (i > 0 && u16(glyphRow(i - 1)) >= u16(glyphRow(i)))
            return false;
        const std::uint32_t offset = u32(glyphRow(i) + 6);
        if (offset >= outlines_.size())
            return false;
        if (!OutlineReader(outlines_.subspan(offset)).read([](int, const int(&)[3][2]) {}))
            return false;
    }
    return glyphCount_ > 0;
}

const std::uint8_t* FontFace::glyphRow(int glyph) const
{
    return block_.data() + kBlockHeader + static_cast<std::size_t>(glyph) * kGlyphRow;
}

int FontFace::find(char32_t character) const
{
    int low = 0;
    int high = glyphCount_;
    while (low < high) {
        const int middle = (low + high) / 2;
        if (static_cast<char32_t>(u16(glyphRow(middle))) < character)
            low = middle + 1;
        else
            high = middle;
    }
    const bool found = low < glyphCount_ && static_cast<char32_t>(u16(glyphRow(low))) == character;
    return found ? low : box_;
}

float FontFace::advance(int glyph) const
{
    return static_cast<float>(u16(glyphRow(glyph) + 2)) * em_;
}

float FontFace::kerning(int left, int right) const
{
    const auto wantedLeft = static_cast<std::uint32_t>(u16(glyphRow(left) + 4));
    const auto wantedRight = static_cast<std::uint32_t>(u16(glyphRow(right) + 4));
    if (wantedLeft == 0 || wantedRight == 0)
        return 0.0f;
    const std::uint32_t wanted = wantedLeft << 16 | wantedRight;
    const std::uint8_t* pairs = glyphRow(glyphCount_);
    int low = 0;
    int high = pairCount_;
    while (low < high) {
        const int middle = (low + high) / 2;
        const std::uint8_t* row = pairs + static_cast<std::size_t>(middle) * kPairRow;
        const std::uint32_t key =
            static_cast<std::uint32_t>(u16(row)) << 16 | static_cast<std::uint32_t>(u16(row + 2));
        if (key == wanted)
            return static_cast<float>(i16(row + 4)) * em_;
        if (key < wanted)
            low = middle + 1;
        else
            high = middle;
    }
    return 0.0f;
}

Path FontFace::outline(int glyph) const
{
    Path path;
    OutlineReader reader(outlines_.subspan(u32(glyphRow(glyph) + 6)));
    reader.read([&](int verb, const int(&points)[3][2]) {
        const auto point = [&](int k) {
            return Point{static_cast<float>(points[k][0]) * em_,
                         static_cast<float>(-points[k][1]) * em_};
        };
        if (verb == 1)
            path.close().moveTo(point(0));
        else if (verb == 2)
            path.lineTo(point(0));
        else
            path.cubicTo(point(0), point(1), point(2));
    });
    return std::move(path.close());
}

FontFile::FontFile(Bytes file)
{
    constexpr std::size_t kHeader = 20;
    if (file.size() < kHeader || std::memcmp(file.data(), kMagic, sizeof kMagic) != 0 ||
        u16(&file[10]) != 2)
        return;
    const int unitsPerEm = u16(&file[8]);
    const std::size_t first = u32(&file[12]);
    const std::size_t second = u32(&file[16]);
    if (first > file.size() - kHeader || second > file.size() - kHeader - first)
        return;
    medium = FontFace(file.subspan(kHeader, first), unitsPerEm);
    semiBold = FontFace(file.subspan(kHeader + first, second), unitsPerEm);
}

const FontFace& fontFace(FontWeight weight)
{
    // Nothing but pointers into constant data: needs no destructor and is the same for all.
    static const FontFile file(Bytes(tolmFont, static_cast<std::size_t>(tolmFontEnd - tolmFont)));
    return weight == FontWeight::semiBold ? file.semiBold : file.medium;
}

} // namespace tolm::gui
