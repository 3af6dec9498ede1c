// Tempo map: segments of constant tempo, looked up by bisection.

#include "host/TempoMap.h"

#include <algorithm>
#include <cmath>

namespace tolm {
namespace {

// The last entry at or before `position`; the first entry stands for everything before it.
template <class Entries, class Key>
const auto& lastAtOrBefore(const Entries& entries, double position, Key key)
{
    const auto next =
        std::upper_bound(entries.begin(), entries.end(), position,
                         [key](double wanted, const auto& entry) { return wanted < key(entry); });
    return next == entries.begin() ? entries.front() : *std::prev(next);
}

} // namespace

TempoMap::TempoMap(double bpm) : segments_{{0.0, 0.0, bpm}}, signatures_{TimeSignature{}}
{
}

void TempoMap::addTempo(double quarter, double bpm)
{
    Segment& last = segments_.back();
    if (quarter <= last.quarter)
        last.bpm = bpm;
    else
        segments_.push_back({quarter, last.secondsAt(quarter), bpm});
}

void TempoMap::addSignature(const TimeSignature& signature)
{
    if (signature.quarter <= signatures_.back().quarter)
        signatures_.pop_back();
    signatures_.push_back(signature);
}

void TempoMap::flatten(double bpm)
{
    segments_.assign(1, {0.0, 0.0, bpm});
}

double TempoMap::secondsAt(double quarter) const
{
    return lastAtOrBefore(segments_, quarter, [](const Segment& s) { return s.quarter; })
        .secondsAt(quarter);
}

double TempoMap::quarterAt(double seconds) const
{
    return segmentAt(seconds).quarterAt(seconds);
}

double TempoMap::bpmAt(double seconds) const
{
    return segmentAt(seconds).bpm;
}

const TempoMap::Segment& TempoMap::segmentAt(double seconds) const
{
    return lastAtOrBefore(segments_, seconds, [](const Segment& s) { return s.seconds; });
}

const TimeSignature& TempoMap::signatureAt(double quarter) const
{
    return lastAtOrBefore(signatures_, quarter, [](const TimeSignature& s) { return s.quarter; });
}

double TempoMap::barStart(double quarter) const
{
    const TimeSignature& signature = signatureAt(quarter);
    const double bar = signature.quartersPerBar();
    return signature.quarter + std::floor((quarter - signature.quarter) / bar) * bar;
}

} // namespace tolm
