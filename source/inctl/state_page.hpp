// How the states of a running host are laid out for a terminal of a given size.
#ifndef INCTL_STATE_PAGE_HPP
#define INCTL_STATE_PAGE_HPP

#include "inctl/object_state.hpp"
#include "inctl/run_board.hpp"

#include <string>
#include <vector>

namespace inctl {

struct PageLine {
    std::string text;
    Paint paint = Paint::Plain; // of the part that says the state, or of the whole line
    size_t paintAt = 0;
    size_t paintLength = 0; // 0: the whole line
};

// A table with object, sort, state and detail, whose details are continued under each other. Where the width leaves
// no room for them, the sort is left out, and then details stand under their objects.
std::vector<PageLine> statesTable( const std::vector<ObjectState> &states, size_t columns );

// The same with warning and refusal under it, in so many rows: what is not good comes first when not all fit, and the
// last line tells how many are left out. footer is the last line, where there is one and no refusal to tell.
std::vector<PageLine> statePage( const std::vector<ObjectState> &states, const RunBoard::Refusal &refusal,
                                 const std::string &warning, const std::string &footer, size_t columns, size_t rows );

// Whether changes of the file are seen, as a sentence; problem: why not, "": they are.
std::string watchText( const std::string &file, const std::string &problem );

// At blanks where there are any, each line at most so many code points; at least one line.
std::vector<std::string> wrapped( const std::string &text, size_t columns );

} // namespace inctl

#endif
