#include "tools/report/page.h"

#include "patch/soundTextRules.h"
#include "plugin/menus.h"
#include "tools/audition/ranges.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>

namespace tolm {
namespace {

constexpr const char* kHead = R"(<!doctype html>
<html lang="en"><head><meta charset="utf-8"><title>Factory sounds</title>
<style>
:root { color-scheme: dark; }
body { background: #14161e; color: #d8dae2; font: 13px/1.35 system-ui, sans-serif; margin: 1.5em; }
h1 { font-size: 20px; font-weight: 600; }
p, td small, th small { color: #8b90a0; }
nav a { color: #f0a050; margin-right: 1em; text-decoration: none; white-space: nowrap; }
table { border-collapse: collapse; }
th { position: sticky; top: 0; background: #14161e; cursor: pointer; text-align: right;
     vertical-align: bottom; padding: 6px; border-bottom: 1px solid #3a3f50; font-weight: 500; }
th.name, td.name, tr.category th { text-align: left; }
tr.category th { position: static; font-size: 16px; padding-top: 1.4em; cursor: default; }
tr.accepted td { color: #8b90a0; font-size: 11px; }
td { padding: 4px 6px; text-align: right; border-bottom: 1px solid #232734; white-space: nowrap;
     font-variant-numeric: tabular-nums; }
td.name { min-width: 15em; max-width: 24em; white-space: normal; }
td.name b { font-weight: 600; font-size: 14px; }
td small { display: block; }
td.outside { color: #ff6b60; font-weight: 600; }
td.excused { color: #e0b040; text-decoration: underline dotted; }
svg, img { display: block; width: 225px; height: 54px; background: #1a1d28; border-radius: 3px; }
svg polygon { fill: #6fa8dc; } svg path { stroke: #f0a050; stroke-width: 1; opacity: .7; }
audio { width: 210px; height: 32px; }
</style></head><body>
<h1>Factory sounds</h1>
)";

// Sorts every category by itself; a second click turns the order.
constexpr const char* kScript = R"(<script>
document.querySelectorAll("thead th").forEach((head, column) => head.onclick = () => {
  const down = head.dataset.down = head.dataset.down === "1" ? "0" : "1";
  const key = row => row.cells[column].dataset.v ?? row.cells[column].textContent;
  const order = (a, b) => {
    const x = key(a), y = key(b), n = parseFloat(x) - parseFloat(y);
    return (Number.isNaN(n) ? x.localeCompare(y) : n) * (down === "1" ? 1 : -1);
  };
  document.querySelectorAll("tbody").forEach(body =>
    [...body.querySelectorAll("tr.sound")].sort(order).forEach(row => body.append(row)));
});
document.addEventListener("play", event => document.querySelectorAll("audio").forEach(
  other => { if (other !== event.target) other.pause(); }), true);
</script></body></html>
)";

std::string escaped(std::string_view text)
{
    std::string result;
    for (const char c : text)
        switch (c) {
        case '<':
            result += "&lt;";
            break;
        case '&':
            result += "&amp;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += c;
        }
    return result;
}

std::string numberText(double value, int decimals)
{
    if (std::isinf(value))
        return value > 0.0 ? "never" : "silent";
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

// A cell sorts by its value, as "never" is no number.
std::string cell(double value, const std::string& text, const std::string& attributes = {})
{
    char sortKey[32];
    std::snprintf(sortKey, sizeof sortKey, "%g", std::clamp(value, -1e9, 1e9));
    return "<td data-v=\"" + std::string(sortKey) + "\"" + attributes + ">" + text + "</td>";
}

class Page {
public:
    Page(const std::vector<Sound>& sounds, const BankStudy& study,
         const std::vector<Illustration>& illustrations,
         const std::vector<RangeException>& exceptions)
        : sounds_(sounds), study_(study), illustrations_(illustrations), exceptions_(exceptions)
    {
    }

    std::string text()
    {
        page_ = kHead;
        putSummary();
        putHeading();
        for (int category = 0; category < static_cast<int>(std::size(kCategoryNames)); ++category)
            putCategory(category);
        page_ += "</table>\n";
        return page_ + kScript;
    }

private:
    void putSummary()
    {
        std::size_t wrong = 0;
        for (const StudiedSound& sound : study_.sounds)
            wrong += wrongFigures(sound) > 0 ? 1 : 0;
        page_ += "<p>" + std::to_string(study_.sounds.size()) + " programs, " +
                 std::to_string(wrong) +
                 " of them outside what their category accepts (red). Excused figures are "
                 "dotted; their reason appears under the pointer. A click on a heading sorts every "
                 "category. The median cost is " +
                 numberText(study_.medianCpuNsPerFrame, 0) + " ns per frame.</p>\n<nav>";
        for (std::size_t category = 0; category < std::size(kCategoryNames); ++category)
            if (hasSounds(static_cast<int>(category)))
                page_ += "<a href=\"#c" + std::to_string(category) + "\">" +
                         kCategoryNames[category] + "</a>";
        page_ += "</nav>\n";
    }

    void putHeading()
    {
        page_ +=
            "<table><thead><tr><th class=\"name\">Program</th><th>Phrase</th><th></th><th></th>";
        for (const DescriptorColumn& column : kDescriptorColumns)
            page_ += "<th title=\"" + escaped(column.meaning) + "\">" + column.heading + "</th>";
        page_ += "<th title=\"of eight notes, in medians of the bank\">CPU</th>"
                 "<th class=\"name\" title=\"the program that sounds most alike, in units of a "
                 "change of velocity from 90 to 110\">nearest</th></tr></thead>\n";
    }

    void putCategory(int category)
    {
        if (!hasSounds(category))
            return;
        const std::string span = std::to_string(std::size(kDescriptorColumns) + 6);
        page_ += "<tbody id=\"c" + std::to_string(category) +
                 "\"><tr class=\"category\"><th colspan=\"" + span + "\">" +
                 kCategoryNames[category] +
                 "</th></tr><tr class=\"accepted\"><td class=\"name\" colspan=\"4\">accepted</td>";
        for (std::size_t i = 0; i < kDescriptorCount; ++i)
            page_ += "<td>" + escaped(rangeText(category, static_cast<Descriptor>(i))) + "</td>";
        page_ += "<td></td><td></td></tr>\n";
        for (std::size_t i = 0; i < sounds_.size(); ++i)
            if (study_.sounds[i].category == category)
                putSound(i);
        page_ += "</tbody>\n";
    }

    void putSound(std::size_t index)
    {
        const StudiedSound& sound = study_.sounds[index];
        const Illustration& picture = illustrations_[index];
        page_ += "<tr class=\"sound\"><td class=\"name\"><b>" + escaped(sound.name) +
                 "</b><small>" + escaped(sounds_[index].record.description.data()) +
                 "</small></td><td><audio controls preload=\"none\" src=\"" + picture.clip +
                 "\"></audio></td><td>" + picture.waveform +
                 "</td><td><img loading=\"lazy\" src=\"" + picture.spectrogram +
                 "\" alt=\"\"></td>";
        const std::vector<Descriptor> outside = outsideOf(sound.category, sound.descriptors);
        for (std::size_t i = 0; i < kDescriptorCount; ++i)
            putFigure(sound, static_cast<Descriptor>(i), outside);
        const double cost =
            sound.descriptors.cpuNsPerFrame / std::max(study_.medianCpuNsPerFrame, 1e-9);
        const StudiedSound& nearest = study_.sounds[sound.nearest.index];
        page_ += cell(cost, numberText(cost, 1) + "x") +
                 cell(sound.nearest.distance,
                      escaped(nearest.name) + "<small>" + kCategoryNames[nearest.category] + ", " +
                          numberText(sound.nearest.distance, 1) + "</small>",
                      " class=\"name\"") +
                 "</tr>\n";
    }

    void putFigure(const StudiedSound& sound, Descriptor descriptor,
                   const std::vector<Descriptor>& outside)
    {
        const std::size_t column = static_cast<std::size_t>(descriptor);
        if (!isTelling(sound.category, descriptor)) {
            page_ += "<td></td>";
            return;
        }
        const double value = sound.descriptors[descriptor];
        std::string attributes;
        if (std::find(outside.begin(), outside.end(), descriptor) != outside.end()) {
            const std::string* reason = excuse(exceptions_, sound.name, descriptor);
            attributes = reason ? " class=\"excused\" title=\"" + escaped(*reason) + "\""
                                : " class=\"outside\"";
        }
        page_ += cell(value, numberText(value, kDescriptorColumns[column].decimals), attributes);
    }

    bool hasSounds(int category) const
    {
        return std::any_of(study_.sounds.begin(), study_.sounds.end(),
                           [&](const StudiedSound& s) { return s.category == category; });
    }
    std::ptrdiff_t wrongFigures(const StudiedSound& sound) const
    {
        const auto outside = outsideOf(sound.category, sound.descriptors);
        return std::count_if(outside.begin(), outside.end(),
                             [&](Descriptor d) { return !excuse(exceptions_, sound.name, d); });
    }

    const std::vector<Sound>& sounds_;
    const BankStudy& study_;
    const std::vector<Illustration>& illustrations_;
    const std::vector<RangeException>& exceptions_;
    std::string page_;
};

} // namespace

std::string reportPage(const std::vector<Sound>& sounds, const BankStudy& study,
                       const std::vector<Illustration>& illustrations,
                       const std::vector<RangeException>& exceptions)
{
    return Page(sounds, study, illustrations, exceptions).text();
}

} // namespace tolm
