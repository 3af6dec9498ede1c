// The base classes by themselves: what reaches a plug-in, what reaches the host, and what never
// does.

#include "vst2/AudioEffectX.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <string>

namespace tolm::vst2 {
namespace {

class FakeEditor final : public EffectEditor {
public:
    explicit FakeEditor(std::string& log) : log_(log) {}
    ERect* getRect() override { return &rect_; }
    bool open(void* parent) override
    {
        log_ += parent != nullptr ? "open " : "open-null ";
        return true;
    }
    void close() override { log_ += "close "; }
    void idle() override { log_ += "idle "; }
    bool setKnobMode(std::int32_t mode) override
    {
        log_ += "knob" + std::to_string(mode) + " ";
        return true;
    }

private:
    std::string& log_;
    ERect rect_{1, 2, 300, 400};
};

class FakeEffect final : public AudioEffectX {
public:
    explicit FakeEffect(int& alive) : AudioEffectX(nullptr, 4, 2), alive_(alive) { ++alive_; }
    ~FakeEffect() override { --alive_; }

    void processReplacing(float**, float**, std::int32_t) override { throw std::bad_alloc(); }
    void setParameter(std::int32_t, float) override { throw std::runtime_error("parameter"); }
    float getParameter(std::int32_t) const override { throw 7; }
    void open() override { throw std::runtime_error("open"); }
    void close() override { throw std::runtime_error("close"); }
    std::int32_t processEvents(const VstEvents*) override { throw std::bad_alloc(); }
    void setProgram(std::int32_t program) override { selected = program; }
    void addEditor(std::string& log) { setEditor(std::make_unique<FakeEditor>(log)); }

    std::int32_t selected = -1;

private:
    int& alive_;
};

std::intptr_t call(AEffect* effect, std::int32_t opcode, std::int32_t index = 0,
                   std::intptr_t value = 0, void* pointer = nullptr, float option = 0.0f)
{
    return effect->dispatcher(effect, opcode, index, value, pointer, option);
}

TEST(Dispatcher, keepsEveryExceptionFromTheHostAndStillDiesAtClose)
{
    int alive = 0;
    AEffect* effect = (new FakeEffect(alive))->effect();
    EXPECT_EQ(call(effect, effOpen), 0);
    EXPECT_EQ(call(effect, effProcessEvents), 0);
    effect->setParameter(effect, 0, 0.5f);
    EXPECT_EQ(effect->getParameter(effect, 0), 0.0f);
    effect->processReplacing(effect, nullptr, nullptr, 16);
    EXPECT_EQ(alive, 1);
    call(effect, effClose);
    EXPECT_EQ(alive, 0);
}

TEST(Dispatcher, selectsOnlyProgramsThatExist)
{
    int alive = 0;
    FakeEffect owned(alive);
    call(owned.effect(), effSetProgram, 0, 3);
    for (const std::intptr_t wrong : {std::intptr_t{-1}, std::intptr_t{4}, std::intptr_t{1} << 32})
        call(owned.effect(), effSetProgram, 0, wrong);
    EXPECT_EQ(owned.selected, 3);
}

TEST(Dispatcher, announcesAWindowOnlyWhenThereIsOneAndForwardsItsOpcodes)
{
    int alive = 0;
    std::string log;
    FakeEffect owned(alive);
    AEffect* effect = owned.effect();
    ERect* rect = nullptr;
    for (const auto opcode : {effEditGetRect, effEditOpen, effEditClose, effEditIdle,
                              effSetEditKnobMode, effEditKeyDown, effEditKeyUp})
        EXPECT_EQ(call(effect, opcode, 0, 1, &rect), 0) << opcode;
    EXPECT_EQ(effect->flags & effFlagsHasEditor, 0);

    owned.addEditor(log);
    EXPECT_NE(effect->flags & effFlagsHasEditor, 0);
    EXPECT_EQ(call(effect, effEditOpen, 0, 0, &alive), 1);
    EXPECT_EQ(call(effect, effEditGetRect, 0, 0, &rect), 1);
    ASSERT_NE(rect, nullptr);
    EXPECT_EQ(rect->right, 400);
    EXPECT_EQ(call(effect, effEditGetRect), 0); // no place for the answer
    call(effect, effEditIdle);
    EXPECT_EQ(call(effect, effSetEditKnobMode, 0, 2), 1);
    call(effect, effEditClose);
    EXPECT_EQ(log, "open idle knob2 close ");
}

} // namespace
} // namespace tolm::vst2
