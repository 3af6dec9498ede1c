#pragma once
// One instance of a VST 2.4 instrument, loaded and driven as a host does. Opened by construction,
// switched off and closed by destruction.

#include "host/Song.h"
#include "vst2/abi.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace tolm {

using namespace vst2;

enum class ChunkKind { bank = 0, program = 1 };

class Plugin {
public:
    // Throws Failure when the file holds no instrument.
    Plugin(const std::filesystem::path& file, double sampleRateHz, int blockFrames);
    ~Plugin();

    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    std::string name() const;
    std::int32_t uniqueId() const { return effect_->uniqueId; }
    bool takesChunks() const { return (effect_->flags & effFlagsProgramChunks) != 0; }

    int programCount() const { return std::max(effect_->numPrograms, 0); }
    std::vector<std::string> programNames() const;
    int currentProgram() const;
    void selectProgram(int index) const;
    void loadChunk(ChunkKind kind, std::span<std::byte> chunk) const;

    int parameterCount() const { return std::max(effect_->numParams, 0); }
    std::vector<std::string> parameterNames() const;
    // Value as the plug-in shows it, with its unit where it names one.
    std::string parameterText(int index) const;
    float parameter(int index) const { return effect_->getParameter(effect_, index); }
    void setParameter(int index, float value) const
    {
        effect_->setParameter(effect_, index, value);
    }

    void start();
    // What the plug-in reads when it asks for the time.
    void setTime(const VstTimeInfo& time) { time_ = time; }
    // Events of the next process call; offsets count from its first frame, `base`.
    void send(std::span<const FrameEvent> events, std::int64_t base);
    // Renders up to the announced block length; mono plug-ins fill both sides.
    void process(std::span<float> left, std::span<float> right);

    bool hasEditor() const { return (effect_->flags & effFlagsHasEditor) != 0; }
    // All zeros when it does not tell.
    ERect editorSize() const;
    // False when it refuses. The handle is a window's of the system.
    bool openEditor(void* parent) const;
    void idleEditor() const { dispatch(effEditIdle); }
    void closeEditor() const { dispatch(effEditClose); }
    // Asked when the plug-in wants its window larger or smaller; without it the answer is no.
    void onSizeWindow(std::function<bool(int width, int height)> resize)
    {
        sizeWindow_ = std::move(resize);
    }

private:
    struct LibraryCloser {
        void operator()(void* library) const;
    };

    static std::intptr_t callback(AEffect* effect, std::int32_t opcode,
                                                std::int32_t index, std::intptr_t value, void* ptr,
                                                float opt);
    std::intptr_t answer(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr);
    std::intptr_t dispatch(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0,
                           void* ptr = nullptr, float opt = 0.0f) const;
    std::string text(std::int32_t opcode, std::int32_t index = 0) const;
    void checkIsInstrument() const;
    void open();
    void prepareBuffers();

    std::string path_;
    std::string directory_;
    double sampleRateHz_;
    int blockFrames_;
    std::unique_ptr<void, LibraryCloser> library_;
    AEffect* effect_ = nullptr;
    bool running_ = false;
    std::function<bool(int width, int height)> sizeWindow_;
    VstTimeInfo time_{};
    std::vector<VstMidiEvent> midi_;
    std::vector<std::byte> eventList_;
    std::vector<std::vector<float>> channels_; // silent inputs, then outputs
    std::vector<float*> inputs_;
    std::vector<float*> outputs_;
};

} // namespace tolm
