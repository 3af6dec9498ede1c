#pragma once
// Which figures a program of a category may have.

#include "tools/audition/descriptors.h"

#include <span>
#include <string>
#include <vector>

namespace tolm {

// Both ends included.
struct AcceptedRange {
    Descriptor descriptor;
    double low;
    double high;
};

// What all programs must meet and what those of a category must meet besides.
std::span<const AcceptedRange> commonRanges();
std::span<const AcceptedRange> rangesOf(int category);

// The descriptors of a program that are outside their ranges, in order.
std::vector<Descriptor> outsideOf(int category, const Descriptors& descriptors);
// Whether a figure says something about programs of the category: figures that only some categories
// are held to are for those alone.
bool isTelling(int category, Descriptor descriptor);
// "60..900", "<= 30", ">= 0.5", "never" or, without a rule, "".
std::string rangeText(int category, Descriptor descriptor);

} // namespace tolm
