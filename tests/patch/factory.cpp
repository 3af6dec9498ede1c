// Rules that every factory program keeps, read from the embedded bank.

#include "patch/programStore.h"
#include "patch/soundText.h"

#include "plugin/catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace tolm {
namespace {

struct Factory {
    ProgramStore store;

    float value(int program, int id) const { return store.value(program, id); }
    bool isFree(int program) const { return store.name(program).starts_with("- Init "); }
};

template <class Check>
void forEachSound(const Factory& factory, Check check)
{
    for (int program = 0; program < kProgramCount; ++program) {
        if (factory.isFree(program))
            continue;
        SCOPED_TRACE(std::string(factory.store.name(program)));
        check(program);
    }
}

// Start phases, key tracking and the depth of FM are set, not moved: an amount of 0 says something.
bool isSetNotMoved(float destination)
{
    constexpr float kSet[] = {32.0f, 33.0f, 43.0f, 44.0f, 45.0f, 53.0f, 54.0f, 87.0f, 91.0f};
    return std::find(std::begin(kSet), std::end(kSet), destination) != std::end(kSet);
}

TEST(FactoryBank, usedMatrixRowsMoveSomething)
{
    const Factory factory;
    forEachSound(factory, [&](int program) {
        for (int row = 0; row < kStoredMatrixRows; ++row) {
            const float source = factory.value(program, kModSource1 + row);
            const float destination = factory.value(program, kModDestination1 + row);
            EXPECT_EQ(source == 0.0f, destination == 0.0f) << row + 1;
            if (source != 0.0f && !isSetNotMoved(destination)) {
                EXPECT_NE(factory.value(program, kModAmount1 + row), 0.5f) << row + 1;
            }
        }
    });
}

TEST(FactoryBank, effectsThatAreOnAreHeard)
{
    const struct {
        int switchId, amountId;
        float silent;
    } effects[] = {{kPhaserOn, 83, 0.0f},        {kDelayOn, 88, 0.0f},
                   {kReverbOn, 94, 0.0f},        {kDistOn, kDistAmount, 0.0f},
                   {kEq1On, kEq1Type + 3, 0.5f}, {kEq2On, kEq2Gain, 0.5f}};
    const Factory factory;
    std::array<int, 6> used{};
    forEachSound(factory, [&](int program) {
        for (std::size_t i = 0; i < std::size(effects); ++i)
            if (factory.value(program, effects[i].switchId) > 0.0f) {
                EXPECT_NE(factory.value(program, effects[i].amountId), effects[i].silent) << i;
                ++used[i];
            }
    });
    EXPECT_THAT(used, ::testing::Each(::testing::Gt(0)));
}

TEST(FactoryBank, beginsWithAKeyboardAndEndsWithTemplatesAndANeutralPatch)
{
    const Factory factory;
    EXPECT_EQ(factory.value(0, kPatchCategory), 5.0f);
    for (int program = 373; program < 383; ++program) {
        const std::string_view name = factory.store.name(program);
        EXPECT_TRUE(name.starts_with("Template ") || factory.isFree(program)) << name;
    }
    EXPECT_EQ(factory.store.name(383), "Init Patch");
    for (const int id : {kOsc1Coarse, kOsc1Fine, kOsc2Coarse, kOsc2Fine})
        EXPECT_EQ(factory.value(383, id), 0.5f);
    EXPECT_EQ(factory.value(383, kFilterCutoff), 1.0f);
    EXPECT_EQ(factory.value(383, kModSource1), 1.0f);
    EXPECT_EQ(factory.value(383, kModDestination1), 3.0f);
    EXPECT_EQ(factory.value(383, kModAmount1), 1.0f);
    EXPECT_EQ(factory.value(383, kArpSync), 1.0f);
    for (int id = kArpOn; id <= kEq2On; ++id)
        EXPECT_EQ(factory.value(383, id), 0.0f) << kCatalogue[id].name;
}

Sound namedSound(const std::string& name)
{
    Sound sound{blankRecord(), "keys.toml", 7};
    std::copy(name.begin(), name.end(), sound.record.name.begin());
    return sound;
}

TEST(FactoryBank, planAndSoundsMustAgree)
{
    const std::vector<Sound> sounds{namedSound("+One"), namedSound("Two")};
    ProgramRecord init = namedSound("Init Patch").record;
    auto image = std::make_unique<FactoryImage>();
    const auto assembled = [&](const std::string& text, std::span<const Sound> given) {
        BankPlan plan;
        SoundTextStatus error = readBankPlan(text, "bank.toml", plan);
        if (!error)
            error = assembleBank(plan, given, init, *image);
        return error ? error->text() : "";
    };
    EXPECT_EQ(assembled("motion = [\"Two\"]\ntemplates = [\"One\"]", sounds), "");
    EXPECT_STREQ((*image)[128].name.data(), "Two");
    EXPECT_STREQ((*image)[373].name.data(), "+One");
    EXPECT_STREQ((*image)[0].name.data(), "- Init 001");
    EXPECT_STREQ((*image)[382].name.data(), "- Init 381");
    EXPECT_STREQ((*image)[383].name.data(), "Init Patch");
    EXPECT_STREQ((*image)[384].name.data(), "Init Patch");
    EXPECT_EQ(assembled("motion = [\"Two\"]", sounds),
              "keys.toml:7: name: \"One\" has no place in bank.toml");
    EXPECT_EQ(assembled("motion = [\"Two\", \"Two\"]", sounds),
              "bank.toml: motion: \"Two\" stands here twice");
    EXPECT_EQ(assembled("motion = [\"Ten\"]", sounds), "bank.toml: motion: \"Ten\" is no sound");
    const std::vector<Sound> twice{namedSound("One"), namedSound("+One")};
    EXPECT_EQ(assembled("motion = [\"One\"]", twice),
              "keys.toml:7: name: \"One\" is already in keys.toml");
    EXPECT_EQ(assembled("\nencore = []", sounds).find("bank.toml:2: encore: "), 0u);
    std::string many = "templates = [";
    for (int i = 0; i < 11; ++i)
        many += "\"Two\",";
    EXPECT_EQ(assembled(many + "]", sounds), "bank.toml: templates: more than 10 sounds");
}

} // namespace
} // namespace tolm
