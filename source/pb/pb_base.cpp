// The end of the process on a programming error.
#include "pb/pb_assert.hpp"

#include <cstdio>
#include <cstdlib>

extern "C" void pb___Abort( const char *file, int line, const char *expression )
{
    std::fprintf( stderr, "%s:%d: %s\n", file, line, expression );
    std::fflush( stderr );
    std::abort();
}
