#pragma once
// The sound file being written. It grows beside its target under a temporary name and takes its
// place only when finished; an abandoned one is removed.

#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>

struct sf_private_tag;

namespace tolm {

enum class Container { wav, flac };
enum class SampleFormat { pcm16, pcm24, float32 };

struct AudioFormat {
    Container container = Container::wav;
    SampleFormat samples = SampleFormat::pcm24;
    int sampleRateHz = 44100;
};

class AudioFile {
public:
    // Throws Failure when the target cannot be written.
    AudioFile(std::filesystem::path target, const AudioFormat& format);
    ~AudioFile();

    AudioFile(const AudioFile&) = delete;
    AudioFile& operator=(const AudioFile&) = delete;

    void write(std::span<const float> interleaved);
    // Puts the finished file in its place.
    void commit();

private:
    struct Closer {
        void operator()(sf_private_tag* file) const;
    };

    std::filesystem::path target_;
    std::filesystem::path partial_;
    std::unique_ptr<sf_private_tag, Closer> file_;
    bool committed_ = false;
};

} // namespace tolm
