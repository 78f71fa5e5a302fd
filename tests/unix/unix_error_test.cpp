// Error texts.
#include "pb/pb_string.hpp"
#include "unix/unix_error.h"

#include <cerrno>
#include <gmock/gmock.h>
#include <netdb.h>

namespace {

TEST( UnixError, Texts )
{
    EXPECT_EQ( pb::utf8( pb::adopt( unixErrorToString( ENOENT ) ) ), "No such file or directory" );
    EXPECT_EQ( pb::utf8( pb::adopt( unixErrorToString( 99999 ) ) ), "Unknown error 99999" );
    EXPECT_EQ( pb::utf8( pb::adopt( unixErrorGetaddrinfoToString( EAI_NONAME ) ) ), "Name or service not known" );
}

} // namespace
