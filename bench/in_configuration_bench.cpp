// Files of 10, 100 and 1,000 stacks with as many QoS stacks, on a host of the benchmark's own (a network namespace; needs
// CAP_SYS_ADMIN): reading the file, starting until every stack has its address, memory, a change of address that every
// stack follows, a re-load in which one record differs, against as many getifaddrs calls.
#include "bench_udp.hpp"

#include "cs/cs_configuration.h"
#include "cs/cs_record.h"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"

#include <ifaddrs.h>
#include <malloc.h>

#include <algorithm>
#include <fstream>
#include <string>

namespace {

constexpr int rounds = 7;
const std::string path = "/tmp/in_configuration_bench." + std::to_string( getpid() ) + ".json";

using Configuration = pb::Ref<struct csConfiguration>;

void writeFile( int count, int round )
{
    std::ofstream file( path );
    file << "{\"objects\": {\n";
    for ( int i = 0; i < count; ++i )
        file << "  \"stack" << i << R"(": {"sort": "IN_STACK", "config": {"network": "fd00::/64"}},)" << "\n  \"qos" << i
             << R"(": {"sort": "IN_QOS_STACK", "config": {"layer3Tos": )" << ( i == count / 2 ? round % 64 : 46 ) << "}}"
             << ( i + 1 < count ? ",\n" : "\n" );
    file << "}}\n";
}

Configuration load()
{
    struct pbVector *problems = nullptr;
    auto configuration = pb::adopt( csConfigurationTryLoad( pb::string( path ).get(), &problems ) );
    pbVectorRelease( problems );
    if ( !configuration )
        bench::fail( "the file is refused" );
    return configuration;
}

std::vector<pb::Ref<struct inStack>> stacksOf( const Configuration &configuration )
{
    std::vector<pb::Ref<struct inStack>> stacks;
    const auto records = pb::adopt( csConfigurationRecords( configuration.get() ) );
    for ( pbInt i = 0; i < pbVectorLength( records.get() ); ++i ) {
        const auto record = pb::adopt( csRecordFrom( pbVectorObjAt( records.get(), i ) ) );
        if ( auto object = pb::adopt( csRecordObject( record.get() ) ); pbObjSort( object.get() ) == inStackSort() )
            stacks.push_back( pb::adopt( inStackFrom( object.release() ) ) );
    }
    return stacks;
}

// Until each has the address.
void await( const std::vector<pb::Ref<struct inStack>> &stacks, const pb::Ref<struct inAddress> &address )
{
    for ( const auto &stack : stacks )
        while ( !( pb::adopt( inStackAddress( stack.get() ) ) == address ) )
            sched_yield();
}

pb::Ref<struct inAddress> addressOf( int round )
{
    return pb::adopt( inAddressTryCreateFromString( pb::string( round % 2 ? "fd00::1" : "fd00::2" ).get() ) );
}

pb::Ref<struct inNwOptions> wish( int round )
{
    auto options = pb::adopt( inNwOptionsCreate() );
    inNwOptionsSetInterfaceIdentifier( options.address(), pb::string( "bench0" ).get() );
    inNwOptionsSetLayer3UnicastAddress( options.address(), addressOf( round ).get() );
    return options;
}

template <class Function> double milliseconds( Function function )
{
    const double start = bench::seconds( CLOCK_MONOTONIC );
    function();
    return ( bench::seconds( CLOCK_MONOTONIC ) - start ) * 1000;
}

double median( std::vector<double> values )
{
    std::sort( values.begin(), values.end() );
    return values[values.size() / 2];
}

void measure( int count, const pb::Ref<struct inNwStack> &link )
{
    std::vector<double> loads, starts, memory, changes, reloads, peers;
    for ( int round = 0; round < rounds; ++round ) {
        inNwStackSetOptions( link.get(), wish( 0 ).get() );
        writeFile( count, 0 );
        Configuration configuration;
        loads.push_back( milliseconds( [&] { configuration = load(); } ) );
        const auto before = mallinfo2().uordblks;
        starts.push_back( milliseconds( [&] {
            csConfigurationStart( configuration.get() );
            await( stacksOf( configuration ), addressOf( 0 ) );
        } ) );
        memory.push_back( static_cast<double>( mallinfo2().uordblks - before ) / count );
        const auto stacks = stacksOf( configuration );
        for ( int change = 1; change <= 2; ++change )
            changes.push_back( milliseconds( [&] {
                inNwStackSetOptions( link.get(), wish( change ).get() );
                await( stacks, addressOf( change ) );
            } ) );
        writeFile( count, round + 1 );
        struct pbVector *problems = nullptr, *touched = nullptr;
        reloads.push_back( milliseconds( [&] {
            if ( !csConfigurationTryReload( configuration.get(), pb::string( path ).get(), &problems, &touched ) )
                bench::fail( "re-load" );
        } ) );
        if ( pbVectorLength( touched ) != 1 )
            bench::fail( "not one record was touched" );
        pbVectorRelease( problems );
        pbVectorRelease( touched );
        peers.push_back( milliseconds( [&] {
            for ( int i = 0; i < count; ++i ) {
                ifaddrs *list = nullptr;
                if ( getifaddrs( &list ) != 0 )
                    bench::fail( "getifaddrs" );
                freeifaddrs( list );
            }
        } ) );
        csConfigurationStop( configuration.get() );
    }
    std::printf( "%6d %10.2f %10.2f %12.0f %14.2f %12.2f %14.2f\n", count, median( loads ), median( starts ),
                 median( memory ), median( changes ), median( reloads ), median( peers ) );
}

} // namespace

// Other numbers of pairs as arguments.
int main( int argumentCount, char **arguments )
{
    std::vector<int> counts;
    for ( int i = 1; i < argumentCount; ++i )
        counts.push_back( std::max( std::atoi( arguments[i] ), 1 ) );
    if ( counts.empty() )
        counts = { 10, 100, 1000 };
    if ( unshare( CLONE_NEWNET ) != 0 )
        bench::fail( "a network namespace" );
    if ( std::system( "ip link set lo up; ip link add bench0 type bridge && ip link set bench0 up" ) != 0 )
        bench::fail( "ip" );
    const bench::Modules modules;
    const auto link = pb::adopt( inNwStackCreate( wish( 0 ).get(), nullptr ) );
    std::printf( "medians of %d; a pair is a stack and a QoS stack\n%6s %10s %10s %12s %14s %12s %14s\n", rounds, "pairs",
                 "read ms", "start ms", "bytes/pair", "change ms", "re-load ms", "getifaddrs ms" );
    for ( const int count : counts )
        measure( count, link );
    (void)std::remove( path.c_str() ); // a leftover of the benchmark alone
    return 0;
}
