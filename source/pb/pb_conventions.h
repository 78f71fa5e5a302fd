// Conventions of every function of the system, written once. This header declares nothing.
//
// Objects     Opaque struct tags without typedef; write `struct pbString *`. Each type X has XSort, XRetain,
//             XRelease, XObj, XFrom, XToString, XCompare and XEquals.
// References  Parameters are borrowed: the callee retains what it keeps. A returned object is a new reference that
//             the caller releases, or null where the function says so. Retain returns its argument. Release
//             accepts null. The last Release frees the object on the releasing thread.
// Values      Immutable once shared. A setter takes the address of the caller's reference and replaces it by a copy
//             when it is shared (copy on write). Any thread may read a value; a setter needs the reference to be
//             the caller's own.
// From        Accepts null or an object of its own sort, and aborts otherwise. It does not retain.
// Compare     -1, 0 or 1; null sorts before everything. Equals is Compare equal to 0.
// Errors      A null or out-of-range argument is a programming error and aborts with file, line and expression.
//             What can fail for outside reasons has Try in its name and returns null or false. Out-parameters are
//             not touched on failure unless the function says so.
// Text        `Cstr` functions take UTF-8 bytes and a length in bytes, -1 for NUL-terminated.
// Units       Durations are milliseconds, sizes are bytes, speeds are bits per second.
// Threads     Functions without a note may be called from any thread.
#ifndef PB_CONVENTIONS_H
#define PB_CONVENTIONS_H

#include "pb/pb_base.h"

#endif
