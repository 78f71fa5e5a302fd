// What is wrong with a text: collected in any order, told in the order of the text with line and column.
#ifndef CS_PROBLEMS_INTERNAL_H
#define CS_PROBLEMS_INTERNAL_H

#include "pb/pb_object.hpp"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

struct pbVector;

namespace cs {

// UTF-8 text for a message: at most 64 code points, control characters escaped, so that a file cannot write to a
// terminal.
std::string printable( std::string_view text );

class Problems {
public:
    // path "OBJECT.key", or empty; what "what is wrong, what was expected".
    void add( size_t offset, std::string_view path, std::string_view what );
    bool empty() const noexcept { return problems_.empty(); }

    // "FILE:LINE:COLUMN: error: path: what" each, as pbStrings. bytes is the text that the offsets belong to.
    pb::Ref<struct pbVector> messages( std::string_view file, std::string_view bytes ) const;

private:
    static constexpr size_t Maximum = 1'000;

    std::multimap<size_t, std::string> problems_; // by offset; those of one place in the order in which they were found
    size_t untold_ = 0;
};

} // namespace cs

#endif
