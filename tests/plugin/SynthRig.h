#pragma once
// A synth in a pretended host, with settings kept in memory.

#include "plugin/VstSynth.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tolm::test {

using SettingsFiles = std::map<SettingsStore::Scope, std::vector<std::uint8_t>>;

class FakeSettings final : public SettingsStore {
public:
    explicit FakeSettings(SettingsFiles& files) : files_(files) {}

    std::optional<std::size_t> read(Scope scope, std::string_view key, std::string_view name,
                                    std::span<std::uint8_t> out) override
    {
        const auto found = files_.find(scope);
        if (key != "Software/Corvane Audio/TOLM" || name != "1" || found == files_.end())
            return std::nullopt;
        const std::size_t size = std::min(out.size(), found->second.size());
        std::copy_n(found->second.begin(), size, out.begin());
        return size;
    }
    void write(Scope scope, std::string_view, std::string_view,
               std::span<const std::uint8_t> bytes) override
    {
        files_[scope].assign(bytes.begin(), bytes.end());
    }

private:
    SettingsFiles& files_;
};

class FakeMessages final : public MessageBox {
public:
    explicit FakeMessages(std::vector<std::string>& shown) : shown_(shown) {}
    void show(std::string_view title, std::string_view text) override
    {
        shown_.push_back(std::string(title) + ": " + std::string(text));
    }

private:
    std::vector<std::string>& shown_;
};

// One rig at a time: the interface gives a host's callback nothing to tell its hosts apart before
// the plug-in exists.
class SynthRig {
public:
    explicit SynthRig(std::string hostVendor = "Some Host", SettingsFiles stored = {})
        : vendor(std::move(hostVendor)), files(std::move(stored))
    {
        current() = this;
        synth = std::make_unique<VstSynth>(answer, std::make_unique<FakeSettings>(files),
                                           std::make_unique<FakeMessages>(shownMessages));
        synth->open();
    }
    SynthRig(const SynthRig&) = delete;
    SynthRig& operator=(const SynthRig&) = delete;

    SynthCore& core() { return synth->core(); }
    EngineRecord& record() { return core().engine().record(); }
    ArpeggiatorState& arp() { return record().arp; }

    // Up to 300 events of three bytes, all at one call.
    struct Midi {
        int offset;
        int status, data1, data2;
        int type = vst2::kMidiType;
    };
    void send(const std::vector<Midi>& list)
    {
        std::vector<vst2::VstMidiEvent> events(list.size());
        std::vector<std::byte> bytes(sizeof(vst2::VstEvents) + list.size() * sizeof(void*));
        auto* head = new (bytes.data()) vst2::VstEvents;
        head->numEvents = static_cast<std::int32_t>(list.size());
        for (std::size_t i = 0; i < list.size(); ++i) {
            events[i].type = list[i].type;
            events[i].deltaFrames = list[i].offset;
            events[i].midiData[0] = static_cast<char>(list[i].status);
            events[i].midiData[1] = static_cast<char>(list[i].data1);
            events[i].midiData[2] = static_cast<char>(list[i].data2);
            auto* event = reinterpret_cast<vst2::VstEvent*>(&events[i]);
            std::memcpy(bytes.data() + offsetof(vst2::VstEvents, events) + i * sizeof event, &event,
                        sizeof event);
        }
        answerOfEvents = synth->processEvents(head);
    }

    void process(int frames)
    {
        left.assign(static_cast<std::size_t>(frames), 9.0f);
        right = left;
        float* outputs[] = {left.data(), right.data()};
        synth->processReplacing(nullptr, outputs, frames);
    }

    float peak() const
    {
        float highest = 0.0f;
        for (const float sample : left)
            highest = std::max(highest, std::abs(sample));
        return highest;
    }

    // Frame, kind, key and velocity of what waits for the next block, and the stacked voices that
    // it is for where these are not all.
    std::string queued()
    {
        std::string text;
        for (int i = 0; i < core().queue().count(); ++i) {
            const QueuedEvent& event = core().queue()[i];
            text += (i > 0 ? ", " : "") + std::to_string(event.offset);
            text += event.status == kNoteOn ? " on " : " off ";
            text += std::to_string(event.data1) + ' ' + std::to_string(event.data2);
            if (event.tag != -1)
                text += " for " + std::to_string(event.tag);
        }
        return text;
    }

    std::vector<std::uint8_t> savedChunk(bool single = false)
    {
        void* data = nullptr;
        const std::int32_t size = synth->getChunk(&data, single);
        const auto* bytes = static_cast<const std::uint8_t*>(data);
        return {bytes, bytes + size};
    }
    std::int32_t load(const std::vector<std::uint8_t>& chunk, bool single = false)
    {
        return synth->setChunk(chunk.data(), static_cast<std::int32_t>(chunk.size()), single);
    }

    std::string display(int id, float value)
    {
        synth->setParameterQuiet(id, value);
        char text[64] = "untouched";
        synth->getParameterDisplay(id, text);
        return text;
    }

    std::string vendor;
    SettingsFiles files;
    std::optional<vst2::VstTimeInfo> time;
    std::vector<std::string> told; // to the host about edits and the window, in order
    bool resizes = true;
    std::vector<std::array<int, 3>> sentMidi;
    int answerOfEvents = 0;
    std::vector<float> left, right;
    std::vector<std::string> shownMessages; // title and text of each box
    std::unique_ptr<VstSynth> synth;

private:
    static SynthRig*& current()
    {
        static SynthRig* rig = nullptr;
        return rig;
    }

    static std::intptr_t answer(vst2::AEffect*, std::int32_t opcode, std::int32_t index,
                                std::intptr_t value, void* pointer, float)
    {
        SynthRig& rig = *current();
        const auto told = [&](const std::string& text, std::intptr_t answer = 1) {
            rig.told.push_back(text);
            return answer;
        };
        switch (opcode) {
        case vst2::audioMasterVersion:
            return vst2::kInterfaceVersion;
        case vst2::audioMasterGetVendorString:
            std::strcpy(static_cast<char*>(pointer), rig.vendor.c_str());
            return 1;
        case vst2::audioMasterGetTime:
            return rig.time ? reinterpret_cast<std::intptr_t>(&*rig.time) : 0;
        case vst2::audioMasterAutomate:
            return told("automate " + std::to_string(index));
        case vst2::audioMasterBeginEdit:
            return told("begin " + std::to_string(index));
        case vst2::audioMasterEndEdit:
            return told("end " + std::to_string(index));
        case vst2::audioMasterUpdateDisplay:
            return told("display");
        case vst2::audioMasterSizeWindow:
            return told("size " + std::to_string(index) + " " + std::to_string(value), rig.resizes);
        case vst2::audioMasterProcessEvents: {
            const auto* events = static_cast<const vst2::VstEvents*>(pointer);
            vst2::VstMidiEvent event;
            std::memcpy(static_cast<void*>(&event), events->events[0], sizeof event);
            rig.sentMidi.push_back({static_cast<unsigned char>(event.midiData[0]),
                                    event.midiData[1], event.midiData[2]});
            return 1;
        }
        default:
            return 0;
        }
    }
};

} // namespace tolm::test
