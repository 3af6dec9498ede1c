#pragma once
// What ends a run: one line for standard error.

#include <stdexcept>
#include <string>

namespace tolm {

class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

inline std::string quoted(const std::string& text)
{
    return '"' + text + '"';
}

} // namespace tolm
