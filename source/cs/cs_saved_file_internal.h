// Replaces the text of a file so that at any moment the old or the new one is there, whole.
#ifndef CS_SAVED_FILE_INTERNAL_H
#define CS_SAVED_FILE_INTERNAL_H

#include <string>
#include <string_view>

namespace cs {

struct Saved {
    bool replaced = false; // the file has the new text
    std::string problem{}; // for a person; of a replaced file: that the disk did not confirm it
    bool permitted = true; // false: the problem is that this user may not
};

// Follows symbolic links; keeps owner and mode of the old file or gives none of it up; a new one is for its owner
// alone. Removes what killed processes left of their attempts on the same file. Any number of threads and processes may
// save one file: the last rename stands.
Saved saveFile( const std::string &path, std::string_view bytes );

} // namespace cs

#endif
