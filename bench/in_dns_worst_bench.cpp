// What the worst DNS messages cost: decoding, giving out the last name, and completing a query with their services.
// Limits: 1 second and 256 MB each.
#include "in/dns/in_dns_message.h"
#include "in/dns/in_dns_message_decode.h"
#include "in/dns/in_dns_query_srv_imp_internal.h"
#include "in/dns/in_dns_question_record.h"
#include "in/imp/in_imp_dns_unix_internal.h"
#include "pb/pb_buffer.h"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"
#include "support/dns_worst.hpp"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <new>

static size_t inUse, mostInUse;

[[gnu::noinline]] void *operator new( size_t size )
{
    void *memory = std::malloc( size );
    if ( !memory )
        throw std::bad_alloc();
    inUse += malloc_usable_size( memory );
    mostInUse = std::max( mostInUse, inUse );
    return memory;
}
[[gnu::noinline]] void operator delete( void *memory ) noexcept
{
    inUse -= memory ? malloc_usable_size( memory ) : 0;
    std::free( memory );
}
void operator delete( void *memory, size_t ) noexcept
{
    operator delete( memory );
}

namespace {

using Clock = std::chrono::steady_clock;

double milliseconds( Clock::duration duration )
{
    return std::chrono::duration<double, std::milli>( duration ).count();
}

bool measure( const support::WorstMessage &worst )
{
    const auto buffer = pb::adopt(
        pbBufferCreateFromBytes( worst.wire.bytes.data(), static_cast<pbInt>( worst.wire.bytes.size() ) ) );
    double decoding = 0, completing = 0;
    mostInUse = inUse;
    const size_t before = inUse;
    for ( int i = 0; i < 5; ++i ) {
        const auto started = Clock::now();
        const auto msg = pb::adopt( inDnsMessageTryDecode( buffer.get() ) );
        if ( const pbInt count = inDnsMessageQuestionLength( msg.get() ) ) {
            const auto last = pb::adopt( inDnsMessageQuestionRecordAt( msg.get(), count - 1 ) );
            pbStringRelease( inDnsQuestionRecordName( last.get() ) );
        }
        const auto decoded = Clock::now();
        const auto query = pb::adopt( in___DnsQuerySrvImpCreate( pb::string( "a" ).get(), nullptr ) );
        in___DnsQuerySrvImpEndSet( query.get(), pb::adopt( in___ImpDnsServiceData( msg.get() ) ).get() );
        decoding = std::max( decoding, milliseconds( decoded - started ) );
        completing = std::max( completing, milliseconds( Clock::now() - decoded ) );
    }
    const double megabytes = static_cast<double>( mostInUse - before ) / 1048576;
    const bool met = decoding <= 1000 && completing <= 1000 && megabytes <= 256;
    std::printf( "%-52s %9.1f %11.1f %7.1f  %s\n", worst.what, decoding, completing, megabytes,
                 met ? "met" : "MISSED" );
    return met;
}

} // namespace

int main()
{
    std::printf( "%-52s %9s %11s %7s\n", "the worst of five", "decode ms", "complete ms", "MB" );
    bool met = true;
    for ( const auto &messages : { support::dnsWorstNames(), support::dnsWorstServices() } )
        for ( const auto &worst : messages )
            met = measure( worst ) && met;
    return met ? 0 : 1;
}
