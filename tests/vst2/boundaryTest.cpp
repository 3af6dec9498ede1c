// The built plug-in, seen as a host sees it: loaded at run time and reached through its record
// only.

#include "vst2/abi.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace tolm::vst2 {
namespace {

const std::string kPlugin = TOLM_BUILD_DIR "/Tolm.so";

struct Host {
    std::intptr_t version = 2400;
    int midiWanted = 0;
    std::vector<std::int32_t> automated;
};
Host host;

std::intptr_t answerPlugin(AEffect*, std::int32_t opcode, std::int32_t index, std::intptr_t value,
                           void* pointer, float)
{
    switch (opcode) {
    case audioMasterVersion:
        return host.version;
    case audioMasterWantMidi:
        host.midiWanted += static_cast<int>(value);
        return 0;
    case audioMasterGetVendorString:
        std::strcpy(static_cast<char*>(pointer), "Some Host");
        return 1;
    case audioMasterAutomate:
        host.automated.push_back(index);
        return 0;
    default:
        return 0;
    }
}

class Boundary : public ::testing::Test {
protected:
    void SetUp() override
    {
        host = Host();
        // Away from the settings of whoever runs the tests.
        settings_ = std::filesystem::path(TOLM_BUILD_DIR) / "boundary-settings";
        std::filesystem::remove_all(settings_);
        setenv("XDG_CONFIG_HOME", settings_.c_str(), 1);
        library_ = dlopen(kPlugin.c_str(), RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library_, nullptr) << dlerror();
        effect_ = create("VSTPluginMain");
        ASSERT_NE(effect_, nullptr);
    }

    void TearDown() override
    {
        if (effect_ != nullptr)
            call(effClose);
        if (library_ != nullptr)
            dlclose(library_);
        EXPECT_FALSE(std::filesystem::exists(settings_)) << "an unchanged map was stored";
    }

    AEffect* create(const char* entry, HostCallback callback = answerPlugin)
    {
        const auto create = reinterpret_cast<AEffect* (*)(HostCallback)>(dlsym(library_, entry));
        return create != nullptr ? create(callback) : nullptr;
    }

    std::intptr_t call(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0,
                       void* pointer = nullptr, float option = 0.0f)
    {
        return effect_->dispatcher(effect_, opcode, index, value, pointer, option);
    }

    // The text of an opcode, which must end inside `size` bytes and leave what follows alone.
    std::string text(std::int32_t opcode, std::size_t size, std::int32_t index = 0)
    {
        constexpr char kCanary = 0x5A;
        std::array<char, 256> buffer;
        buffer.fill(kCanary);
        buffer.back() = '\0';
        call(opcode, index, 0, buffer.data());
        EXPECT_NE(std::memchr(buffer.data(), '\0', size), nullptr) << "opcode " << opcode;
        for (std::size_t i = size; i < buffer.size() - 1; ++i)
            EXPECT_EQ(buffer[i], kCanary) << "opcode " << opcode << " wrote byte " << i;
        return buffer.data();
    }

    void* library_ = nullptr;
    AEffect* effect_ = nullptr;
    std::filesystem::path settings_;
};

TEST_F(Boundary, exportsItsTwoEntriesAndNothingElse)
{
    std::set<std::string> names;
    FILE* list = popen(("nm -D --defined-only '" + kPlugin + "'").c_str(), "r");
    ASSERT_NE(list, nullptr);
    char name[256];
    while (std::fscanf(list, "%*s %*s %255s", name) == 1)
        names.insert(name);
    pclose(list);
    EXPECT_EQ(names, (std::set<std::string>{"Main", "VSTPluginMain"}));
}

TEST_F(Boundary, declaresItsIdentityAndLayout)
{
    EXPECT_EQ(effect_->magic, 0x56737450);
    EXPECT_EQ(effect_->numPrograms, 384);
    EXPECT_EQ(effect_->numParams, 111);
    EXPECT_EQ(effect_->numInputs, 0);
    EXPECT_EQ(effect_->numOutputs, 2);
    EXPECT_EQ(effect_->uniqueId, 0x51584A54); // QXJT
    EXPECT_EQ(effect_->version, 1);
    EXPECT_EQ(effect_->initialDelay, 0);
    EXPECT_EQ(effect_->ioRatio, 1.0f);
    const std::int32_t always = effFlagsCanReplacing | effFlagsProgramChunks | effFlagsIsSynth;
    EXPECT_EQ(effect_->flags & ~effFlagsHasEditor, always);
    EXPECT_EQ(text(effGetEffectName, 32), "Tolm");
    EXPECT_EQ(text(effGetProductString, 64), "Tolm");
    EXPECT_EQ(text(effGetVendorString, 64), "Corvane Audio");
}

TEST_F(Boundary, acceptsHostsOfAnyVersionButNone)
{
    for (const std::intptr_t version : {1, 2, 2300, 2400}) {
        host.version = version;
        AEffect* other = create("Main");
        ASSERT_NE(other, nullptr) << version;
        other->dispatcher(other, effClose, 0, 0, nullptr, 0.0f);
    }
    host.version = 0;
    EXPECT_EQ(create("VSTPluginMain"), nullptr);
    EXPECT_EQ(create("Main"), nullptr);
    EXPECT_EQ(create("VSTPluginMain", nullptr), nullptr);
}

TEST_F(Boundary, answersEveryOpcode)
{
    struct Row {
        std::int32_t opcode, index;
        std::intptr_t value, answer;
    };
    constexpr Row kAnswers[] = {
        {effIdentify, 0, 0, 0x4E764566}, {effProcessEvents, 0, 0, 1},
        {effCanBeAutomated, 0, 0, 1},    {effCanBeAutomated, 5000, 0, 1},
        {effGetPlugCategory, 0, 0, 2},   {effGetVendorVersion, 0, 0, 1},
        {effGetVstVersion, 0, 0, 2400},  {effGetCurrentMidiProgram, 0, 0, -1},
        {effSetChunk, 0, 0, 235560},     {effCanDo, 0, 0, -1},
        {effSetBlockSize, 0, 512, 0},    {effVendorSpecific, 0x57686565, 1, 0},
        {effSetBypass, 0, 1, 0},         {effSetProcessPrecision, 0, 1, 0},
    };
    std::set<std::int32_t> answered{effClose};
    for (const Row& row : kAnswers) {
        EXPECT_EQ(call(row.opcode, row.index, row.value), row.answer) << "opcode " << row.opcode;
        answered.insert(row.opcode);
    }
    for (std::int32_t opcode = -3; opcode < 200; ++opcode)
        if (!answered.contains(opcode)) {
            EXPECT_EQ(call(opcode), 0) << opcode;
        }
    EXPECT_EQ(call(0x7FFFFFFF), 0);
}

TEST_F(Boundary, saysWhatItCanDo)
{
    const auto canDo = [this](const char* what) {
        return call(effCanDo, 0, 0, const_cast<char*>(what));
    };
    for (const char* yes : {"receiveVstEvents", "receiveVstMidiEvent", "receiveVstTimeInfo"})
        EXPECT_EQ(canDo(yes), 1) << yes;
    for (const char* no : {"sendVstMidiEvent", "bypass", "midiProgramNames", "ReceiveVstEvents",
                           "receiveVstEvents ", "", static_cast<const char*>(nullptr)})
        EXPECT_EQ(canDo(no), -1) << (no != nullptr ? no : "null");
}

TEST_F(Boundary, describesTwoStereoPinsInTheFirst80Bytes)
{
    for (const std::int32_t pin : {0, 1}) {
        std::array<char, 128> bytes;
        bytes.fill(0x5A);
        ASSERT_EQ(call(effGetOutputProperties, pin, 0, bytes.data()), 1);
        EXPECT_STREQ(bytes.data(), pin == 0 ? "Tolm 1" : "Tolm 2");
        std::int32_t flags = 0;
        std::memcpy(&flags, bytes.data() + 64, sizeof flags);
        EXPECT_EQ(flags, 3);
        for (std::size_t i = 80; i < bytes.size(); ++i)
            EXPECT_EQ(bytes[i], 0x5A) << i;
    }
    VstPinProperties properties;
    EXPECT_EQ(call(effGetOutputProperties, 2, 0, &properties), 0);
    EXPECT_EQ(call(effGetOutputProperties, -1, 0, &properties), 0);
}

TEST_F(Boundary, keepsTextsInsideTheHostsBuffers)
{
    char longName[] = "A name of more than thirty-one characters, which no field holds";
    call(effSetProgramName, 0, 0, longName);
    EXPECT_EQ(text(effGetProgramName, 24), std::string(longName).substr(0, 23));
    EXPECT_EQ(text(effGetProgramNameIndexed, 24, 0), std::string(longName).substr(0, 23));
    for (const float wild : {0.0f, 1.0f, 0.5f, -1e30f, 1e30f, 3.4e38f, NAN, INFINITY}) {
        for (std::int32_t id = -2; id < 360; ++id) {
            effect_->setParameter(effect_, id, wild);
            EXPECT_EQ(text(effGetParamLabel, 24, id), "");
            EXPECT_LT(text(effGetParamName, 24, id).size(), 24u);
            if (id != 71 && id != 72) {
                EXPECT_LT(text(effGetParamDisplay, 24, id).size(), 24u);
            }
        }
    }
    EXPECT_EQ(text(effGetParamName, 24, 95), "FX Reverb Predly");
    EXPECT_EQ(text(effGetParamName, 24, 323), "Effect order - slot 1");
}

TEST_F(Boundary, givesAllProgramNamesWithoutASideEffect)
{
    std::array<char, 64> name;
    for (std::int32_t program = 0; program < 384; ++program) {
        name.fill('x');
        // The category that some hosts pass along means nothing.
        EXPECT_EQ(call(effGetProgramNameIndexed, program, program % 3 - 1, name.data()), 1);
        EXPECT_NE(std::memchr(name.data(), '\0', 24), nullptr);
    }
    EXPECT_STREQ(name.data(), "Init Patch");
    for (const std::int32_t none : {384, 385, -1, 1 << 30})
        EXPECT_EQ(call(effGetProgramNameIndexed, none, 0, name.data()), 0) << none;
    EXPECT_EQ(call(effGetProgram), 0);
}

TEST_F(Boundary, selectsProgramsAndIgnoresOthers)
{
    call(effSetProgram, 0, 200);
    EXPECT_EQ(call(effGetProgram), 200);
    for (const std::intptr_t none : {std::intptr_t{384}, std::intptr_t{-1}, std::intptr_t{1} << 33})
        call(effSetProgram, 0, none);
    EXPECT_EQ(call(effGetProgram), 200);
}

TEST_F(Boundary, storesParameterValuesAsGivenAndNothingThatIsNoNumber)
{
    for (const float value : {0.25f, 1.5f, -0.5f}) {
        effect_->setParameter(effect_, 28, value);
        EXPECT_EQ(effect_->getParameter(effect_, 28), value);
    }
    for (const float bad : {NAN, INFINITY, -INFINITY}) {
        effect_->setParameter(effect_, 28, bad);
        EXPECT_EQ(effect_->getParameter(effect_, 28), 0.0f);
    }
    for (const std::int32_t id : {-1, 329, 346, 348, 349, 1 << 30}) {
        effect_->setParameter(effect_, id, 0.75f);
        EXPECT_EQ(effect_->getParameter(effect_, id), 0.0f) << id;
    }
    EXPECT_TRUE(host.automated.empty()) << "host automation must not come back as automation";
}

// Every order of calls that hosts were seen to use, and null where a pointer belongs.
TEST_F(Boundary, survivesHostsThatDoNotKeepToTheOrder)
{
    std::vector<float> left(300, 1.0f), right(300, 1.0f);
    float* outputs[] = {left.data(), right.data()};
    const auto process = [&](std::int32_t frames) {
        effect_->processReplacing(effect_, nullptr, outputs, frames);
    };
    process(300); // before open, rate, block size and resume
    EXPECT_EQ(left[299], 0.0f);
    EXPECT_EQ(right[0], 0.0f);
    for (int round = 0; round < 3; ++round) {
        call(effOpen);
        call(effSetSampleRate, 0, 0, nullptr, 48000.0f);
        call(effSetBlockSize, 0, 128);
        call(effMainsChanged, 0, 1);
        call(effMainsChanged, 0, 1);
        process(300); // longer than announced
        process(0);
        process(-5);
        process(1);
    }
    EXPECT_EQ(host.midiWanted, 6);
    for (const float rate : {0.0f, -44100.0f, NAN, INFINITY, 1.0f, 1e9f})
        call(effSetSampleRate, 0, 0, nullptr, rate);
    for (const std::intptr_t frames :
         {std::intptr_t{0}, std::intptr_t{-1}, std::intptr_t{1} << 40, std::intptr_t{1}})
        call(effSetBlockSize, 0, frames);
    process(300);
    effect_->processReplacing(effect_, nullptr, nullptr, 64);
    float* noOutputs[] = {nullptr, nullptr};
    effect_->processReplacing(effect_, nullptr, noOutputs, 64);
    effect_->process(effect_, nullptr, outputs, 64);
    ASSERT_NE(effect_->processDoubleReplacing, nullptr);
    effect_->processDoubleReplacing(effect_, nullptr, nullptr, 64);
    for (std::int32_t opcode = -1; opcode < 90; ++opcode)
        if (opcode != effClose)
            call(opcode, 0, 1, nullptr, NAN);
    for (std::size_t i = 0; i < left.size(); ++i)
        ASSERT_TRUE(std::isfinite(left[i]) && std::isfinite(right[i])) << i;
    // Closed while switched on, by TearDown.
}

} // namespace
} // namespace tolm::vst2
