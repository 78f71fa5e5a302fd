// A list in ascending order: every pair compares as its places do, equal only at the same place.
#ifndef SUPPORT_ASCENDING_HPP
#define SUPPORT_ASCENDING_HPP

#include "pb/pb_object.hpp"

#include <gtest/gtest.h>

namespace support {

template <class Make> void expectAscending( std::initializer_list<const char *> sources, Make make )
{
    for ( const char *const *a = sources.begin(); a != sources.end(); ++a )
        for ( const char *const *b = sources.begin(); b != sources.end(); ++b )
            EXPECT_TRUE( ( make( *a ) <=> make( *b ) ) == ( a <=> b ) ) << *a << " " << *b;
}

} // namespace support

#endif
