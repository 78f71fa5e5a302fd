// The end of the process on a programming error.
#include "pb/pb_abort.hpp"
#include "pb/pb_assert.hpp"

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace {

std::atomic<void ( * )()> abortCall = nullptr;

} // namespace

extern "C" void pb___SetAbortCall( void ( *call )( void ) )
{
    abortCall = call;
}

extern "C" void pb___Abort( const char *file, int line, const char *expression )
{
    if ( const auto call = abortCall.load() )
        call();
    std::fprintf( stderr, "%s:%d: %s\n", file, line, expression );
    std::fflush( stderr );
    std::abort();
}
