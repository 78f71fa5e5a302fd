// Reading and writing addresses, object and string included, against inet_pton and inet_ntop.
#include "bench_ratio.hpp"

#include "in/base/in_address.h"
#include "pb/pb_string.hpp"

#include <arpa/inet.h>

#include <algorithm>
#include <random>

namespace {

// As many as no branch predictor learns by heart: random IPv4 addresses, and IPv6 addresses with a run of zero groups
// of random place and length, as most have.
struct Samples {
    static constexpr size_t count = 1024;
    int family;
    unsigned char bytes[count][16] = {};
    char texts[count][INET6_ADDRSTRLEN];
    pb::String strings[count];
    pb::Ref<struct inAddress> addresses[count];

    explicit Samples( int family ) : family( family )
    {
        std::mt19937 random( 1 );
        for ( size_t i = 0; i < count; ++i ) {
            for ( unsigned char &byte : bytes[i] )
                byte = static_cast<unsigned char>( random() );
            const size_t first = random() % 8, last = std::min<size_t>( 8, first + random() % 8 );
            if ( family == AF_INET6 && last > first + 1 )
                std::fill( bytes[i] + 2 * first, bytes[i] + 2 * last, 0 );
            inet_ntop( family, bytes[i], texts[i], sizeof texts[i] );
            strings[i] = pb::string( texts[i] );
            addresses[i] = pb::adopt( inAddressTryCreateFromString( strings[i].get() ) );
        }
    }
    static const Samples &of( int family )
    {
        static const Samples v4( AF_INET ), v6( AF_INET6 );
        return family == AF_INET ? v4 : v6;
    }
};

template <class Work> void each( benchmark::State &state, int family, Work work )
{
    const Samples &samples = Samples::of( family );
    size_t i = 0;
    for ( auto _ : state )
        work( samples, i++ % Samples::count );
}

void parse( benchmark::State &state, int family )
{
    each( state, family, []( const Samples &samples, size_t i ) {
        struct inAddress *const address = inAddressTryCreateFromString( samples.strings[i].get() );
        benchmark::DoNotOptimize( address );
        inAddressRelease( address );
    } );
}

void parseInet( benchmark::State &state, int family )
{
    each( state, family, []( const Samples &samples, size_t i ) {
        unsigned char bytes[16];
        benchmark::DoNotOptimize( inet_pton( samples.family, samples.texts[i], bytes ) );
        benchmark::DoNotOptimize( bytes );
    } );
}

void print( benchmark::State &state, int family )
{
    each( state, family, []( const Samples &samples, size_t i ) {
        struct pbString *const text = inAddressToString( samples.addresses[i].get() );
        benchmark::DoNotOptimize( text );
        pbStringRelease( text );
    } );
}

void printInet( benchmark::State &state, int family )
{
    each( state, family, []( const Samples &samples, size_t i ) {
        char text[INET6_ADDRSTRLEN];
        benchmark::DoNotOptimize( inet_ntop( samples.family, samples.bytes[i], text, sizeof text ) );
        benchmark::DoNotOptimize( text );
    } );
}

void parseV4( benchmark::State &state )
{
    parse( state, AF_INET );
}
void parseV6( benchmark::State &state )
{
    parse( state, AF_INET6 );
}
void inetPtonV4( benchmark::State &state )
{
    parseInet( state, AF_INET );
}
void inetPtonV6( benchmark::State &state )
{
    parseInet( state, AF_INET6 );
}
void printV4( benchmark::State &state )
{
    print( state, AF_INET );
}
void printV6( benchmark::State &state )
{
    print( state, AF_INET6 );
}
void inetNtopV4( benchmark::State &state )
{
    printInet( state, AF_INET );
}
void inetNtopV6( benchmark::State &state )
{
    printInet( state, AF_INET6 );
}

BENCHMARK( parseV4 );
BENCHMARK( inetPtonV4 );
BENCHMARK( parseV6 );
BENCHMARK( inetPtonV6 );
BENCHMARK( printV4 );
BENCHMARK( inetNtopV4 );
BENCHMARK( printV6 );
BENCHMARK( inetNtopV6 );

} // namespace

int main( int argumentCount, char **arguments )
{
    return bench::run( argumentCount, arguments,
                       { { "parseV4", "inetPtonV4", 1 },
                         { "parseV6", "inetPtonV6", 1 },
                         { "printV4", "inetNtopV4", 0.25 },
                         { "printV6", "inetNtopV6", 0.25 } } );
}
