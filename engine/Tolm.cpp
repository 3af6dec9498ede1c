#include "engine/Tolm.h"

#include <algorithm>

namespace tolm {

Tolm::Tolm(EngineOwner& owner)
    : owner_(owner), record_(std::make_unique<EngineRecord>()), effects_(record_->random)
{
    setRate(5000.0f);
    buildPitchTable(record_->pitch);
}

Tolm::~Tolm() = default;

void Tolm::seed(std::uint32_t value)
{
    record_->random = Random(value);
}
void Tolm::setSampleRate(double hz)
{
    setRate(static_cast<float>(std::clamp(hz, 1000.0, 768000.0)));
    effects_.setSampleRate(sampleRateHz());
}
void Tolm::noteOn(int, int, std::uint32_t, std::uint32_t) {}
void Tolm::noteOff(int, int, std::uint32_t) {}
void Tolm::retuneVoices(int, std::uint32_t) {}
void Tolm::resetVoices() {}
void Tolm::allNotesOff(bool) {}
void Tolm::loadProgram(int) {}
void Tolm::setEngineParameter(int, float) {}
void Tolm::startBlock(int) {}
void Tolm::runArpeggiator(int) {}
bool Tolm::renderVoices(int, float* const*, float* const*, bool)
{
    return false;
}
void Tolm::endRender(int) {}
void Tolm::updateGlobalModulation() {}
const DelayModulation& Tolm::delayModulation() const
{
    return record_->delayModulation;
}
void Tolm::advanceDelayModulation(int) {}
float Tolm::applyOutputStage(int, float* const*)
{
    return 0.0f;
}
void Tolm::endBlock() {}

} // namespace tolm
