// Edits of a text, and the text cut into lines.
#ifndef CS_TEXT_EDIT_INTERNAL_H
#define CS_TEXT_EDIT_INTERNAL_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cs {

// The bytes from begin to before end are replaced by the text.
struct TextEdit {
    size_t begin, end;
    std::string text;
};

// The edits stand in the order of the text and do not overlap.
std::string editedText( std::string_view text, const std::vector<TextEdit> &edits );

// Where the lines of a text begin, for any number of questions.
class Lines {
public:
    explicit Lines( std::string_view text );

    size_t count() const noexcept { return starts_.size() - 1; }
    size_t of( size_t offset ) const; // the line, from 0, that the offset stands in
    // Offsets; a line ends behind its line feed. The end of the last line is that of the text.
    size_t begin( size_t line ) const { return starts_[line]; }
    size_t end( size_t line ) const { return starts_[line + 1]; }

private:
    std::vector<size_t> starts_; // and the end of the text
};

// What the edits make of the text as a unified diff (diff(1), -u) with three lines around each change; empty when they
// change nothing. name stands for the file.
std::string unifiedDiff( std::string_view text, const std::vector<TextEdit> &edits, const std::string &name );

} // namespace cs

#endif
