#include "tools/report/audioClip.h"

#include "tools/soundFiles.h"

#include <sndfile.h>

#include <memory>
#include <vector>

namespace tolm {

void writeClip(const Rendering& rendering, const std::filesystem::path& path)
{
    struct Closer {
        void operator()(SNDFILE* file) const { sf_close(file); }
    };
    SF_INFO info{};
    info.samplerate = kAuditionRateHz;
    info.channels = 2;
    info.format = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
    const std::unique_ptr<SNDFILE, Closer> file(sf_open(path.c_str(), SFM_WRITE, &info));
    if (!file)
        throw Failure(path.string() + ": cannot be written");
    sf_command(file.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
    std::vector<float> frames;
    frames.reserve(2 * rendering.left.size());
    for (std::size_t i = 0; i < rendering.left.size(); ++i) {
        frames.push_back(rendering.left[i]);
        frames.push_back(rendering.right[i]);
    }
    const auto count = static_cast<sf_count_t>(rendering.left.size());
    if (sf_writef_float(file.get(), frames.data(), count) != count)
        throw Failure(path.string() + ": cannot be written");
}

} // namespace tolm
