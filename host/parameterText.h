#pragma once
// From what people type to a parameter's value.

#include "host/Plugin.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tolm {

// What can be set by name, by index. Of Tolm that is every stored parameter, of other plug-ins what
// their interface shows.
std::vector<std::string> settableNames(const Plugin& plugin);

// A plain number 0..1 is the value itself. Any other text ("Saw", "440 Hz") goes through Tolm's own
// parameter texts, or is looked up among those that another plug-in shows over the parameter's
// range. Nothing when no value shows it. The parameter is left as it was.
std::optional<float> parameterValueFromText(const Plugin& plugin, int index, std::string_view text);

} // namespace tolm
