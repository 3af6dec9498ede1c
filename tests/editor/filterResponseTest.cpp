// The picture of the filter against the filter: what the kernels make of an impulse.

#include "editor/filterResponse.h"
#include "engine/filter.h"
#include "engine/filterKernels.h"
#include "plugin/menus.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <memory>
#include <vector>

namespace tolm::test {
namespace {

constexpr double kRateHz = 44100.0;
constexpr int kCalls = 256; // of 64 frames: long enough for what is asked to die away
constexpr double kPi = 3.14159265358979323846;

std::vector<float> impulseResponse(const FilterSettings& settings)
{
    const auto tables = std::make_unique<RateTables>();
    buildRateTables(*tables, kRateHz);
    FilterState state{};
    const auto line = std::make_unique<CombLine>();
    const auto call = std::make_unique<FilterCall>();
    std::vector<float> response;
    for (int n = 0; n < kCalls; ++n) {
        *call = {};
        call->frames = kMaxSliceFrames;
        call->tables = tables.get();
        call->state = &state;
        call->line = line.get();
        call->offset = settings.offset;
        call->combFrames = static_cast<float>(kRateHz) / settings.keyHz;
        call->position.fill(settings.cutoff * static_cast<float>(kCutoffScale));
        call->resonance.fill(settings.resonance);
        const bool split = filterType(settings.type).split;
        if (n == 0) {
            call->voice[0] = split ? 0.5f : 1.0f;
            call->split[0] = split ? 0.5f : 0.0f;
        }
        filterKernel(filterType(settings.type).kernel)(std::span(call.get(), 1));
        response.insert(response.end(), call->voice.begin(), call->voice.end());
    }
    return response;
}

double levelAt(const std::vector<float>& response, double hz)
{
    std::complex<double> sum = 0.0;
    for (std::size_t i = 0; i < response.size(); ++i)
        sum += static_cast<double>(response[i]) *
               std::polar(1.0, -2.0 * kPi * hz * static_cast<double>(i) / kRateHz);
    return 20.0 * std::log10(std::abs(sum) + 1e-9);
}

TEST(FilterPicture, showsWhatTheFilterDoes)
{
    const std::vector<float> hz = {100.0f, 400.0f, 900.0f, 2000.0f, 6000.0f, 12000.0f};
    for (const MenuEntry& entry : kFilterMenu) {
        if (entry.id == kSeparatorId)
            continue;
        for (const float offset : {0.25f, 0.7f}) {
            SCOPED_TRACE(testing::Message() << entry.name << ", offset " << offset);
            const FilterSettings settings{entry.id, 0.7f, 0.5f, offset, 300.0f};
            std::vector<float> shown(hz.size());
            filterResponse(settings, hz, shown);
            const auto response = impulseResponse(settings);
            for (std::size_t i = 0; i < hz.size(); ++i)
                if (const double level = levelAt(response, static_cast<double>(hz[i]));
                    level > -70.0) {
                    EXPECT_NEAR(static_cast<double>(shown[i]), level, 0.1) << hz[i] << " Hz";
                }
        }
    }
}

} // namespace
} // namespace tolm::test
