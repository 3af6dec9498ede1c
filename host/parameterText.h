#pragma once
// From what people type to a parameter's value.

#include "host/Plugin.h"

#include <optional>
#include <string_view>

namespace tolm {

// A plain number 0..1 is the value itself. Any other text is looked up among the texts that the
// plug-in shows over the parameter's range ("Saw", "440 Hz"), which works for every plug-in.
// Nothing when no value shows it. The parameter is left as it was.
std::optional<float> parameterValueFromText(const Plugin& plugin, int index, std::string_view text);

} // namespace tolm
