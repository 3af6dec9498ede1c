// WAV and FLAC through libsndfile.

#include "host/AudioFile.h"

#include "host/Failure.h"

#include <fcntl.h>
#include <sndfile.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace tolm {
namespace {

constexpr int kChannels = 2;

int sndfileFormat(const AudioFormat& format)
{
    const int container = format.container == Container::wav ? SF_FORMAT_WAV : SF_FORMAT_FLAC;
    switch (format.samples) {
    case SampleFormat::pcm16:
        return container | SF_FORMAT_PCM_16;
    case SampleFormat::pcm24:
        return container | SF_FORMAT_PCM_24;
    default:
        return container | SF_FORMAT_FLOAT;
    }
}

[[noreturn]] void refuse(const std::filesystem::path& target, const std::string& reason)
{
    throw Failure("cannot write " + quoted(target.string()) + ": " + reason);
}

// Links are followed, so that the file they stand for is replaced and not the link.
std::filesystem::path resolved(const std::filesystem::path& target)
{
    std::error_code error;
    const auto path = std::filesystem::weakly_canonical(target, error);
    return error ? target : path;
}

} // namespace

void AudioFile::Closer::operator()(sf_private_tag* file) const
{
    sf_close(file);
}

AudioFile::AudioFile(std::filesystem::path target, const AudioFormat& format)
    : target_(resolved(target))
{
    SF_INFO info{};
    info.samplerate = format.sampleRateHz;
    info.channels = kChannels;
    info.format = sndfileFormat(format);
    if (sf_format_check(&info) == 0)
        refuse(target_, "this format does not take these samples at this rate");
    std::error_code error;
    const auto status = std::filesystem::status(target_, error);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        refuse(target_, "it is not a regular file");
    if (target_.filename().empty())
        refuse(target_, "it is not a file name");

    partial_ = target_;
    partial_ += '.';
    partial_ += std::to_string(getpid());
    partial_ += ".part";
    const int descriptor = open(partial_.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (descriptor < 0)
        refuse(target_, std::strerror(errno));
    file_.reset(sf_open_fd(descriptor, SFM_WRITE, &info, SF_TRUE));
    if (!file_) {
        std::filesystem::remove(partial_, error);
        refuse(target_, sf_strerror(nullptr));
    }
    sf_command(file_.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
    // The peak chunk carries the time of day; without it equal sound gives equal files.
    sf_command(file_.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
}

AudioFile::~AudioFile()
{
    if (committed_)
        return;
    file_.reset();
    std::error_code ignored;
    std::filesystem::remove(partial_, ignored);
}

void AudioFile::write(std::span<const float> interleaved)
{
    const auto frames = static_cast<sf_count_t>(interleaved.size() / kChannels);
    if (sf_writef_float(file_.get(), interleaved.data(), frames) != frames)
        refuse(target_, sf_strerror(file_.get()));
}

void AudioFile::commit()
{
    if (sf_close(file_.release()) != 0)
        refuse(target_, "the file could not be finished");
    std::error_code error;
    std::filesystem::rename(partial_, target_, error);
    if (error)
        refuse(target_, error.message());
    committed_ = true;
}

} // namespace tolm
