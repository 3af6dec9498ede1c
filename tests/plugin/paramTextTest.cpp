// Displays against the numbers that the rules give by hand, and typed texts back into values.

#include "plugin/paramText.h"
#include "plugin/menus.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <string>

namespace tolm {
namespace {

std::string shown(int id, float value, const TextContext& context = {})
{
    return std::string(parameterText(id, value, context).view());
}

TEST(ParamText, showsWhatTheRulesSay)
{
    struct Row {
        int id;
        float value;
        const char* text;
    };
    constexpr Row kRows[] = {
        {0, 0.0f, "Saw"},        {0, 0.34f, "Pulse"},      {0, 0.99f, "Sine"},
        {5, 1.0f, "Wavetbl"},    {1, 0.5f, "0"},           {1, 0.52f, "+1"},
        {6, 0.0f, "-36"},        {6, 1.0f, "+36"},         {2, 0.5f, "0.0 ct"},
        {7, 0.0f, "-100.0 ct"},  {7, 0.4999f, "-0.0 ct"},  {10, 0.99f, "Pulse"},
        {10, 1.0f, "Triangle"},  {31, 0.5f, "0 %"},        {31, 0.75f, "+50 %"},
        {31, 0.25f, "-50 %"},    {33, 1.0f, "S+H"},        {42, 0.5f, "Pulse"},
        {34, 0.0f, "0.1 Hz"},    {43, 1.0f, "100.0 Hz"},   {52, 0.5f, "3.2 Hz"},
        {36, 0.0f, "Off"},       {45, 1.0f, "10.00 s"},    {54, 0.5f, "0.31 s"},
        {73, 0.5f, "0 %"},       {73, 1.0f, "+75 %"},      {73, 0.0f, "-75 %"},
        {77, 0.0f, "1 voice"},   {77, 0.14f, "1 voice"},   {77, 0.15f, "2 voices"},
        {77, 1.0f, "8 voices"},  {79, 0.0f, "4-Stage-Ph"}, {79, 1.0f, "Chorus II"},
        {79, 0.97f, "Chorus I"}, {80, 0.5f, "1.00 Hz"},    {85, 1.0f, "Diffuse"},
        {85, 0.875f, "Diffuse"}, {85, 0.3f, "PP 75%"},     {86, 0.5f, "0"},
        {86, 1.0f, "+64"},       {86, 0.0f, "-64"},        {89, 0.0f, "1/1*"},
        {90, 1.0f, "1/64T"},     {91, 0.99f, "Hall"},      {91, 1.0f, "Cathedral"},
        {93, 0.0f, "0.5 s"},     {93, 1.0f, "10.0 s"},     {95, 0.0f, "0 ms"},
        {95, 1.0f, "100 ms"},    {95, 0.29f, "29 ms"},     {96, 0.0f, "10 Hz"},
        {96, 0.5f, "100 Hz"},    {97, 0.5f, "LP+Valve"},   {97, 1.0f, "LP+Clip"},
        {98, 0.0f, "100 Hz"},    {98, 1.0f, "20000 Hz"},   {101, 0.99f, "Lo Shelf"},
        {106, 1.0f, "Hi Shelf"}, {102, 1.0f, "10000 Hz"},  {107, 0.0f, "10 Hz"},
        {103, 0.5f, "1.0"},      {108, 1.0f, "10.0"},      {104, 0.5f, "+0.0 dB"},
        {104, 0.25f, "-5.0 dB"}, {109, 1.0f, "+10.0 dB"},  {109, 0.4999f, "-0.0 dB"},
        {28, 0.5f, "50 %"},      {74, 1.0f, "100 %"},      {126, 16.0f, "1600 %"},
        {328, 5.0f, "500 %"},    {113, 0.0f, "0 %"},       {28, 1.5f, "150 %"},
        {160, 0.675f, "+35 %"},  {183, 0.0f, "-100 %"},    {170, 0.499f, "0 %"},
        {191, 1.0f, "+100 %"},   {320, 0.0f, "1 steps"},   {320, 1.0f, "32 steps"},
    };
    for (const Row& row : kRows)
        EXPECT_EQ(shown(row.id, row.value), row.text) << "id " << row.id << " at " << row.value;
}

// Just below one semitone up, double precision still says 0; the lifted single precision says 1,
// which then has no plus.
TEST(ParamText, aCoarseTuneJustBelowAStepReadsWithoutThePlus)
{
    const float justBelow = std::nextafter(37.0f / 72.0f, 0.0f);
    ASSERT_LT(static_cast<double>(justBelow) * 72.0, 37.0);
    EXPECT_EQ(shown(1, justBelow), "1");
}

TEST(ParamText, dependsOnSwitchesAndTypes)
{
    TextContext context;
    context.lfoSync = {true, false, true};
    EXPECT_EQ(shown(34, 0.0f, context), "8/1*");
    EXPECT_EQ(shown(43, 0.0f, context), "0.1 Hz");
    EXPECT_EQ(shown(52, 1.0f, context), "1/32T");
    context.distType = 0.125f; // HP+Crunch
    EXPECT_EQ(shown(98, 0.0f, context), "1 Hz");
    EXPECT_EQ(shown(98, 1.0f, context), "2000 Hz");
    EXPECT_EQ(shown(71, 1.0f, context), "100.0 Hz");
    context.arpSync = true;
    EXPECT_EQ(shown(71, 1.0f, context), "1/128T");
    EXPECT_EQ(shown(72, 0.0f, context), "-100 %");
    EXPECT_EQ(shown(72, 1.0f, context), "+100 %");
}

TEST(ParamText, survivesAnyValue)
{
    TextContext context;
    for (const float wild : {NAN, INFINITY, -INFINITY, 1e30f, -1e30f, 3.4e38f, -2.0f, 2.0f, 1e-40f})
        for (const bool on : {false, true})
            for (int id = -2; id < kParameterCount + 2; ++id) {
                context.lfoSync.fill(on);
                context.arpSync = on;
                context.distType = wild;
                EXPECT_LE(shown(id, wild, context).size(), 64u);
                EXPECT_LE(menuText(id, wild).size(), 64u);
            }
    EXPECT_EQ(shown(28, NAN), "0 %");
    EXPECT_EQ(shown(77, -5.0f), "1 voice");
    EXPECT_EQ(shown(77, 1e30f), "8 voices");
}

// value -> text -> value -> text gives the same text, and so does the text without its unit.
TEST(ParamText, comesBackFromEveryTextThatAValueInRangeGives)
{
    TextContext context;
    constexpr int kSteps = 127;
    for (int variant = 0; variant < 2; ++variant) {
        context.lfoSync.fill(variant == 1);
        context.arpSync = variant == 1;
        context.distType = variant == 1 ? 0.125f : 0.0f;
        for (int id = 0; id < kParameterCount; ++id) {
            for (int step = 0; step <= kSteps; ++step) {
                const float value = static_cast<float>(step) / kSteps;
                const std::string text = shown(id, value, context);
                const auto back = parameterValue(id, text, context);
                ASSERT_TRUE(back) << kCatalogue[id].name << " refuses its own \"" << text << '"';
                ASSERT_EQ(shown(id, *back, context), text) << "id " << id;
                ASSERT_TRUE(*back >= 0.0f && *back <= 1.0f) << text;
                const std::size_t unit = text.find(' ');
                if (unit == std::string::npos)
                    continue;
                const auto bare = parameterValue(id, text.substr(0, unit), context);
                const bool isMenu = !menuText(id, 0.0f).empty(); // there "1" may be a name
                if (!isMenu && text.find_first_of("0123456789") == text.find_first_not_of("+-")) {
                    ASSERT_TRUE(bare) << text;
                    ASSERT_EQ(shown(id, *bare, context), text) << "id " << id;
                }
            }
        }
    }
}

TEST(ParamText, takesMenuNamesAndStoredNumbers)
{
    const std::pair<int, std::span<const MenuEntry>> menus[] = {
        {126, kFilterMenu}, {192 + 31, kDestinationMenu}, {128, kSourceMenu}};
    for (const auto& [id, menu] : menus)
        for (const MenuEntry& entry : menu)
            if (entry.id != kSeparatorId) {
                const float stored = static_cast<float>(entry.id);
                EXPECT_EQ(parameterValue(id, entry.name, {}), stored) << entry.name;
                EXPECT_EQ(menuText(id, stored + 0.000001f), entry.name);
            }
    for (const VoiceMask& mask : kVoiceMaskMenu)
        EXPECT_EQ(parameterValue(224, mask.name, {}), static_cast<float>(mask.id));
    EXPECT_TRUE(menuText(126, 111.0f).empty());
    EXPECT_TRUE(menuText(28, 1.0f).empty());
}

TEST(ParamText, takesWhatPeopleType)
{
    struct Row {
        int id;
        const char* text;
        float value;
    };
    constexpr Row kRows[] = {
        {28, "40", 0.4f},         {28, " 40% ", 0.4f},       {28, "+40 %", 0.4f},
        {28, "12.5", 0.125f},     {115, "On", 1.0f},         {115, "off", 0.0f},
        {104, "-5dB", 0.25f},     {36, "off", 0.0f},         {80, "1 hz", 0.5f},
        {1, "12", 48.0f / 72.0f}, {1, "+12", 48.0f / 72.0f}, {125, "mode: duophonic", 6.0f},
        {125, "Chord", 3.0f},     {111, "Filter FM", 2.0f},  {322, "Sound Effects", 10.0f},
        {126, "1600 %", 16.0f},   {323, "500 %", 5.0f},
    };
    for (const Row& row : kRows) {
        const auto value = parameterValue(row.id, row.text, {});
        ASSERT_TRUE(value) << row.text;
        EXPECT_NEAR(*value, row.value, 1e-6f) << row.text;
    }
}

TEST(ParamText, refusesWhatDoesNotFit)
{
    struct Row {
        int id;
        const char* text;
    };
    constexpr Row kRows[] = {
        {28, ""},           {28, "loud"},   {28, "40 Hz"},    {28, "140 %"}, {28, "-1 %"},
        {28, "nan"},        {28, "inf"},    {28, "1e999"},    {28, "4 0"},   {28, "+-4"},
        {0, "Sinus"},       {0, "0.5"},     {77, "9 voices"}, {77, "0"},     {1, "+37"},
        {34, "0.01 Hz"},    {34, "1/8"},    {34, "-1 Hz"},    {102, "0 Hz"}, {126, "-"},
        {126, "No Filter"}, {323, "600 %"}, {-1, "5"},        {349, "5"},    {28, "0x10"},
    };
    for (const Row& row : kRows)
        EXPECT_FALSE(parameterValue(row.id, row.text, {})) << row.id << ": " << row.text;
}

TEST(ParamText, doesNotCareForTheHostsLocale)
{
    const char* const before = std::setlocale(LC_NUMERIC, nullptr);
    const std::string saved = before != nullptr ? before : "C";
    const bool comma = std::setlocale(LC_NUMERIC, "de_DE.UTF-8") != nullptr;
    EXPECT_EQ(shown(104, 0.25f), "-5.0 dB");
    EXPECT_EQ(parameterValue(104, "-5.0 dB", {}), 0.25f);
    std::setlocale(LC_NUMERIC, saved.c_str());
    if (!comma)
        GTEST_SKIP() << "no locale with a decimal comma on this machine";
}

} // namespace
} // namespace tolm
