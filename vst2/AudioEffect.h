#pragma once
// Base of a plug-in: owns the record that the host sees and answers the first opcodes of the
// interface (life cycle, programs, parameters, window, chunks). AudioEffectX adds the rest.
//
// The object deletes itself at effClose. No exception passes from here into the host.

#include "vst2/EffectEditor.h"
#include "vst2/abi.h"

#include <memory>
#include <string_view>

namespace tolm::vst2 {

// One call of the dispatcher.
struct Request {
    std::int32_t opcode = 0;
    std::int32_t index = 0;
    std::intptr_t value = 0;
    void* pointer = nullptr;
    float option = 0.0f;
};

// Copies as much of `text` as `size` bytes hold with the terminator; a null `to` is left alone.
void copyText(void* to, std::size_t size, std::string_view text);

class AudioEffect {
public:
    AudioEffect(HostCallback host, std::int32_t programs, std::int32_t parameters);
    virtual ~AudioEffect();

    AudioEffect(const AudioEffect&) = delete;
    AudioEffect& operator=(const AudioEffect&) = delete;

    AEffect* effect() { return &effect_; }
    EffectEditor* editor() const { return editor_.get(); }
    float sampleRate() const { return sampleRate_; }
    std::int32_t blockSize() const { return blockSize_; }

    virtual std::intptr_t dispatcher(const Request& request);

    virtual void open() {}
    virtual void close() {}
    virtual void suspend() {}
    virtual void resume() {}
    virtual void setSampleRate(float hz) { sampleRate_ = hz; }
    virtual void setBlockSize(std::int32_t frames) { blockSize_ = frames; }
    virtual void processReplacing(float** inputs, float** outputs, std::int32_t frames) = 0;
    virtual void setParameter(std::int32_t, float) {}
    virtual float getParameter(std::int32_t) const { return 0.0f; }
    virtual void setParameterAutomated(std::int32_t index, float value);
    virtual void setProgram(std::int32_t) {}
    virtual std::int32_t getProgram() const { return 0; }
    virtual void setProgramName(const char*) {}
    // Texts go into buffers of kProgramNameSize and kParameterTextSize bytes.
    virtual void getProgramName(char* text) { *text = '\0'; }
    virtual void getParameterLabel(std::int32_t, char* text) { *text = '\0'; }
    virtual void getParameterDisplay(std::int32_t, char* text) { *text = '\0'; }
    virtual void getParameterName(std::int32_t, char* text) { *text = '\0'; }
    // Leaves the address of the plug-in's own bytes in `data`; answers their count.
    virtual std::int32_t getChunk(void**, bool /*singleProgram*/) { return 0; }
    virtual std::int32_t setChunk(const void*, std::int32_t /*bytes*/, bool /*singleProgram*/)
    {
        return 0;
    }

protected:
    bool hasHost() const { return host_ != nullptr; }
    std::intptr_t callHost(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0,
                           void* pointer = nullptr, float option = 0.0f);
    void setFlag(EffectFlag flag, bool on);
    // Takes the window over and announces it; null announces none.
    void setEditor(std::unique_ptr<EffectEditor> editor);

    AEffect effect_;

private:
    HostCallback host_;
    float sampleRate_ = 44100.0f;
    std::int32_t blockSize_ = 1024;
    std::unique_ptr<EffectEditor> editor_;
};

} // namespace tolm::vst2
