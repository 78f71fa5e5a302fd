// Decoding DNS answers into whole objects with every name checked, against ldns, the bare record walk of the C library,
// and c-ares, which takes out the records of one type only.
#include "bench_ratio.hpp"

#include "in/dns/in_dns_message.h"
#include "in/dns/in_dns_message_decode.h"
#include "pb/pb_buffer.h"
#include "pb/pb_object.hpp"
#include "support/dns_wire.hpp"

#include <ares.h>
#include <arpa/nameser.h>
#include <ldns/ldns.h>
#include <netdb.h>

#include <cstdlib>

namespace {

using support::dns16;
using support::dnsLabels;
using support::dnsName;
using support::dnsPointer;
using support::DnsSection;

constexpr size_t nameOfQuestion = 12; // the offset of the first name of a message

std::string v4( int last )
{
    return { '\xC6', '\x33', '\x64', static_cast<char>( last ) };
}

// Four targets and their addresses.
std::string srvAnswer()
{
    support::DnsWire wire;
    wire.question( dnsName( "_sip._udp.example.com" ), ns_t_srv );
    constexpr size_t domain = nameOfQuestion + 10; // behind "_sip" and "_udp"
    size_t targets[4];
    for ( int i = 0; i < 4; ++i ) {
        const auto data = dns16( 10 + i / 2 * 10 ) + dns16( 50 ) + dns16( 5060 );
        const auto target = dnsLabels( "sip" + std::to_string( i ) ) + dnsPointer( domain );
        targets[i] = wire.answer( dnsPointer( nameOfQuestion ), ns_t_srv, data + target ) + 12 + data.size();
    }
    for ( int i = 0; i < 4; ++i )
        wire.record( DnsSection::additional, dnsPointer( targets[i] ), ns_t_a, v4( i ) );
    return wire.bytes;
}

// An alias of an alias that has two addresses.
std::string addressAnswer()
{
    support::DnsWire wire;
    wire.question( dnsName( "www.example.com" ), ns_t_a );
    constexpr size_t top = nameOfQuestion + 12; // "com"
    const auto hop = dnsLabels( "www.edge.example-cdn" ) + dnsPointer( top );
    const size_t first = wire.answer( dnsPointer( nameOfQuestion ), ns_t_cname, hop ) + 12;
    const auto host = dnsLabels( "e1234.a" ) + dnsPointer( first + 4 );
    const size_t second = wire.answer( dnsPointer( first ), ns_t_cname, host ) + 12;
    for ( int i = 0; i < 2; ++i )
        wire.answer( dnsPointer( second ), ns_t_a, v4( i ) );
    return wire.bytes;
}

void decode( benchmark::State &state, const std::string &message )
{
    const auto buffer = pb::adopt( pbBufferCreateFromBytes( message.data(), static_cast<pbInt>( message.size() ) ) );
    for ( auto _ : state ) {
        struct inDnsMessage *msg = inDnsMessageTryDecode( buffer.get() );
        if ( !msg )
            state.SkipWithError( "not accepted" );
        inDnsMessageRelease( msg );
    }
}

void ldns( benchmark::State &state, const std::string &message )
{
    const auto *wire = reinterpret_cast<const uint8_t *>( message.data() );
    for ( auto _ : state ) {
        ldns_pkt *packet = nullptr;
        if ( ldns_wire2pkt( &packet, wire, message.size() ) != LDNS_STATUS_OK )
            state.SkipWithError( "not accepted" );
        ldns_pkt_free( packet );
    }
}

void walk( benchmark::State &state, const std::string &message )
{
    const auto *wire = reinterpret_cast<const unsigned char *>( message.data() );
    for ( auto _ : state ) {
        ns_msg msg;
        if ( ns_initparse( wire, static_cast<int>( message.size() ), &msg ) )
            state.SkipWithError( "not accepted" );
        for ( const ns_sect section : { ns_s_qd, ns_s_an, ns_s_ns, ns_s_ar } )
            for ( int i = 0; i < ns_msg_count( msg, section ); ++i ) {
                ns_rr rr;
                if ( ns_parserr( &msg, section, i, &rr ) )
                    state.SkipWithError( "not accepted" );
                benchmark::DoNotOptimize( rr );
            }
    }
}

void decodeSrv( benchmark::State &state )
{
    decode( state, srvAnswer() );
}
void decodeAddress( benchmark::State &state )
{
    decode( state, addressAnswer() );
}
void ldnsSrv( benchmark::State &state )
{
    ldns( state, srvAnswer() );
}
void ldnsAddress( benchmark::State &state )
{
    ldns( state, addressAnswer() );
}
void walkSrv( benchmark::State &state )
{
    walk( state, srvAnswer() );
}
void walkAddress( benchmark::State &state )
{
    walk( state, addressAnswer() );
}

void aresSrv( benchmark::State &state )
{
    const std::string message = srvAnswer();
    for ( auto _ : state ) {
        ares_srv_reply *replies = nullptr;
        if ( ares_parse_srv_reply( reinterpret_cast<const unsigned char *>( message.data() ),
                                   static_cast<int>( message.size() ), &replies ) )
            state.SkipWithError( "not accepted" );
        ares_free_data( replies );
    }
}

void aresAddress( benchmark::State &state )
{
    const std::string message = addressAnswer();
    for ( auto _ : state ) {
        hostent *host = nullptr;
        if ( ares_parse_a_reply( reinterpret_cast<const unsigned char *>( message.data() ),
                                 static_cast<int>( message.size() ), &host, nullptr, nullptr ) )
            state.SkipWithError( "not accepted" );
        ares_free_hostent( host );
    }
}

BENCHMARK( decodeSrv );
BENCHMARK( ldnsSrv );
BENCHMARK( walkSrv );
BENCHMARK( aresSrv );
BENCHMARK( decodeAddress );
BENCHMARK( ldnsAddress );
BENCHMARK( walkAddress );
BENCHMARK( aresAddress );

} // namespace

int main( int argumentCount, char **arguments )
{
    return bench::run( argumentCount, arguments,
                       { { "decodeSrv", "ldnsSrv", 1.0 / 3 },
                         { "decodeSrv", "walkSrv", 2 },
                         { "decodeSrv", "aresSrv", 0 },
                         { "decodeAddress", "ldnsAddress", 1.0 / 3 },
                         { "decodeAddress", "walkAddress", 2 },
                         { "decodeAddress", "aresAddress", 0 } } );
}
