// When the UDP I/O thread rests: where datagrams gather, and hardly ever where each one answers the last.
#include "in/imp/in_imp_udp_unix_rest.hpp"

#include <gtest/gtest.h>

namespace {

constexpr int rounds = 20'000;

// The number of rests in so many rounds that run as fast as they can; datagrams tells what a round brings, given
// whether a rest preceded it.
template <class Datagrams> int restsIn( in___ImpUdpUnixRest &rest, int count, const Datagrams &datagrams )
{
    int rests = 0;
    for ( bool rested = false; count > 0; --count ) {
        rested = rest.roundEnds( datagrams( rested ) );
        rests += rested;
    }
    return rests;
}

TEST( Rest, OneDatagramAtATimeMeetsItLessThanOnceInAHundredRounds )
{
    in___ImpUdpUnixRest rest;
    EXPECT_LT( restsIn( rest, rounds, []( bool ) { return 1; } ), rounds / 100 );
}

TEST( Rest, FollowsTheTrafficIntoGatheringAndOutOfIt )
{
    in___ImpUdpUnixRest rest;
    EXPECT_GT( restsIn( rest, rounds, []( bool rested ) { return rested ? 5 : 1; } ), rounds * 9 / 10 );
    EXPECT_LT( restsIn( rest, rounds, []( bool ) { return 1; } ), rounds / 100 );
    EXPECT_GT( restsIn( rest, rounds, []( bool rested ) { return rested ? 5 : 1; } ), rounds / 2 )
        << "traffic that gathers again is noticed again";
}

TEST( Rest, TheLastRoundOfABurstDoesNotEndIt )
{
    in___ImpUdpUnixRest rest;
    restsIn( rest, rounds, []( bool rested ) { return rested ? 5 : 1; } );
    int place = 0;
    EXPECT_GT( restsIn( rest, rounds, [&]( bool rested ) { return rested && ++place % 4 ? 5 : 1; } ), rounds * 9 / 10 );
}

} // namespace
