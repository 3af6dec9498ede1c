#pragma once
// Sounds are plain text: bytes beyond ASCII may stand in comments only. The parser never gets any,
// because some of its tables of letters and blanks do not hold for all of Unicode.

#include <string>

namespace tolm {

// Drops a byte order mark and replaces what comments have beyond ASCII by "?". Answers the 1-based
// line of the first such byte outside a comment, 0 when there is none.
int makePlain(std::string& text);

} // namespace tolm
