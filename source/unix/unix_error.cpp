// Texts of system error codes.
#include "unix/unix_error.h"

#include "pb/pb_string.hpp"

#include <climits>
#include <cstring>
#include <netdb.h>

extern "C" struct pbString *unixErrorToString( pbInt errorNumber )
{
    PB_ASSERT( errorNumber >= 0 && errorNumber <= INT_MAX );
    char room[128];
    // glibc's form returns the text, which need not be in the room.
    return pb::string( strerror_r( static_cast<int>( errorNumber ), room, sizeof room ) ).release();
}

extern "C" struct pbString *unixErrorGetaddrinfoToString( pbInt code )
{
    PB_ASSERT( code >= INT_MIN && code <= INT_MAX );
    return pb::string( gai_strerror( static_cast<int>( code ) ) ).release();
}
