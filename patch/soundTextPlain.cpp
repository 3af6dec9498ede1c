#include "patch/soundTextPlain.h"

#include <string_view>

namespace tolm {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Where in its line a byte stands. Strings are followed to the end of their line: one that goes on
// looks like plain text in the next, where nothing beyond ASCII passes either.
class Place {
public:
    bool isComment() const { return comment_; }

    void step(char c)
    {
        if (c == '\n')
            *this = {};
        else if (escaped_)
            escaped_ = false;
        else if (quote_ != '\0')
            stepInString(c);
        else if (c == '"' || c == '\'')
            quote_ = comment_ ? '\0' : c;
        else if (c == '#')
            comment_ = true;
    }

private:
    void stepInString(char c)
    {
        if (c == quote_)
            quote_ = '\0';
        else
            escaped_ = c == '\\' && quote_ == '"';
    }

    char quote_ = '\0';
    bool escaped_ = false;
    bool comment_ = false;
};

} // namespace

int makePlain(std::string& text)
{
    if (text.starts_with(kByteOrderMark))
        text.erase(0, kByteOrderMark.size());
    Place place;
    int line = 1;
    for (char& c : text) {
        if (static_cast<unsigned char>(c) >= 0x80) {
            if (!place.isComment())
                return line;
            c = '?';
        }
        place.step(c);
        line += c == '\n';
    }
    return 0;
}

} // namespace tolm
