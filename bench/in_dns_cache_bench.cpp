// Answers that a stack knows: what asking again costs, what 100,000 of them take, and what one run costs that forgets
// them all.
#include "in/base/in_stack_dns.hpp"

#include "in/base/in_flags.h"
#include "in/base/in_options.h"
#include "in/base/in_stack.h"
#include "in/dns/in_dns_query_addresses.h"
#include "pb/pb_barrier.h"
#include "pb/pb_signalable.h"
#include "pb/pb_vector.h"
#include "support/module_host.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <malloc.h>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int many = 100'000;

double nanoseconds( Clock::duration duration )
{
    return std::chrono::duration<double, std::nano>( duration ).count();
}

size_t memoryInUse()
{
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

std::vector<pb::String> names( int count )
{
    std::vector<pb::String> list;
    for ( int i = 0; i < count; ++i )
        list.push_back( pb::string( "host" + std::to_string( i * 7919 % count ) + ".rack.example.com" ) );
    return list;
}

// A stack that refuses to ask and remembers that.
pb::Ref<struct inStack> makeStack()
{
    auto dns = pb::adopt( inDnsOptionsCreate() );
    inDnsOptionsSetDisableQueryAddresses( dns.address(), true );
    inDnsOptionsSetNegativeCacheTimeout( dns.address(), 3'600'000 );
    inDnsOptionsSetCacheTimeout( dns.address(), 3'600'000 );
    auto options = pb::adopt( inOptionsCreate() );
    inOptionsSetFlags( options.address(), IN_FLAG_LOOPBACK_ONLY );
    inOptionsSetDnsOptions( options.address(), dns.get() );
    return pb::adopt( inStackCreate( options.get(), nullptr ) );
}

// The median of five rounds over all names.
double lookUp( struct inStack *stack, const std::vector<pb::String> &names, int least )
{
    std::vector<double> rounds;
    for ( int round = 0; round < 6; ++round ) {
        int asked = 0;
        const auto started = Clock::now();
        while ( asked < least )
            for ( const pb::String &name : names ) {
                inDnsQueryAddressesRelease( inDnsQueryAddressesCreate( stack, name.get(), nullptr ) );
                ++asked;
            }
        rounds.push_back( nanoseconds( Clock::now() - started ) / asked );
        pr___Quiesce(); // the first round makes the answers known
    }
    std::sort( rounds.begin() + 1, rounds.end() );
    return rounds[3];
}

void measureTable()
{
    const auto list = names( many );
    in::DnsQueries<in::DnsAddresses> table;
    in::DnsDropped dropped;
    const auto barrier = pb::adopt( pbBarrierCreate( 1 ) );
    const auto signalable = pb::adopt( pbSignalableCreateBarrier( barrier.get() ) );
    const auto options = pb::adopt( inDnsOptionsCreate() );
    const size_t before = memoryInUse();
    for ( int i = 0; i < many; ++i ) {
        const auto imp = pb::adopt( in___DnsQueryAddressesImpCreate( list[static_cast<size_t>( i )].get(), nullptr ) );
        table.add( list[static_cast<size_t>( i )].get(), imp, signalable.get() );
        auto found = pb::adopt( pbVectorCreate() );
        const uint8_t bytes[] = { 10, 0, static_cast<uint8_t>( i >> 8 ), static_cast<uint8_t>( i ) };
        pbVectorAppend( found.address(), inAddressObj( pb::adopt( inAddressCreateV4( bytes ) ).get() ) );
        in___DnsQueryAddressesImpEndSet( imp.get(), found.get() );
    }
    const auto started = Clock::now();
    table.collectEnded( 0, options.get(), dropped );
    const auto collected = Clock::now();
    std::printf( "%d known names, one address each: %zu bytes each\n", many, ( memoryInUse() - before ) / many );
    std::printf( "one run that takes up %d answers: %.1f ms\n", many, nanoseconds( collected - started ) / 1e6 );
    const auto idle = Clock::now();
    table.expire( 0, dropped );
    const auto nothing = Clock::now();
    table.expire( PB_INT_MAX, dropped );
    const auto expired = Clock::now();
    dropped.clear();
    std::printf( "one run of expiry: nothing due %.0f ns, all %d due %.1f ms, their release %.1f ms\n",
                 nanoseconds( nothing - idle ), many, nanoseconds( expired - nothing ) / 1e6,
                 nanoseconds( Clock::now() - expired ) / 1e6 );
}

} // namespace

int main()
{
    const support::ModuleHost modules;
    for ( const int count : { 1, 1000, many } ) {
        const auto stack = makeStack();
        std::printf( "cached look-up through a stack that knows %6d names: %.0f ns\n", count,
                     lookUp( stack.get(), names( count ), many ) );
    }
    measureTable();
    return 0;
}
