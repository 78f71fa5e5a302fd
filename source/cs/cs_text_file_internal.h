// Reads the files that people write.
#ifndef CS_TEXT_FILE_INTERNAL_H
#define CS_TEXT_FILE_INTERNAL_H

#include "cs/cs_problems_internal.h"

#include <string>

struct pbString;

namespace cs {

struct Unreadable {
    std::string reason{};         // for a person; empty: it was read
    Origin origin = Origin::Text; // the file, but where the system is short of something, or does not permit it
};

// Takes nothing but regular files: a pipe or a terminal could keep the caller
// waiting, and opening a device may do something. Reads at most one byte more than a text may have.
Unreadable readTextFile( const struct pbString *path, std::string &bytes );

// What is told about a configuration file that cannot be read.
Finding unreadableFile( const Unreadable &unreadable );

} // namespace cs

#endif
