#include "plugin/chunkLoad.h"

namespace tolm {

namespace {

class Load final : public ChunkHost {
public:
    Load(SynthCore& core, bool fromFile) : core_(core), fromFile_(fromFile) {}

    void setBendRanges(int up, int down) override
    {
        core_.engine().record().bendUpRange.store(up, std::memory_order_relaxed);
        core_.engine().record().bendDownRange.store(down, std::memory_order_relaxed);
    }

    bool pauseProcessing() override
    {
        held_ = core_.guard().takePatiently();
        return held_;
    }
    void resumeProcessing() override
    {
        if (held_)
            core_.guard().release();
        held_ = false;
    }

    int currentProgram() const override { return core_.currentProgram(); }
    int currentBank() const override { return core_.currentBank(); }
    bool isLoadingFromFile() const override { return fromFile_; }

    void setEngineVersion(int version) override { core_.engine().record().engineVersion = version; }
    void setSmoothing(double modWheelFactor, int bendSmoothing) override
    {
        core_.engine().record().modWheelSmoothingFactor = modWheelFactor;
        core_.engine().record().bendSmoothing = bendSmoothing;
    }

    void setProgram(int program) override { core_.loadProgram(program); }
    void loadProgram(int program) override { core_.loadProgram(program); }

private:
    SynthCore& core_;
    bool fromFile_;
    bool held_ = false;
};

} // namespace

ChunkState chunkState(SynthCore& core)
{
    const EngineRecord& record = core.engine().record();
    ChunkState state;
    state.currentProgram = core.currentProgram();
    state.currentBank = core.currentBank();
    state.polyphony = core.polyphony();
    state.bendUpRange = record.bendUpRange.load(std::memory_order_relaxed);
    state.bendDownRange = record.bendDownRange.load(std::memory_order_relaxed);
    state.engineVersion = record.engineVersion;
    return state;
}

ChunkResult loadChunk(SynthCore& core, std::span<const std::uint8_t> bytes, bool singleProgram,
                      bool fromFile)
{
    Load load(core, fromFile);
    return readChunk(bytes, singleProgram, core.engine().programBank(), load);
}

} // namespace tolm
