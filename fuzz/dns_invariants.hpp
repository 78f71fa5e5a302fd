// What holds for every sequence of bytes given to the DNS decoder.
#ifndef DNS_INVARIANTS_HPP
#define DNS_INVARIANTS_HPP

#include "dns_message.hpp"
#include "dns_reference.hpp"
#include "in/imp/in_imp_dns_unix_internal.h"
#include "pb/pb_assert.hpp"

#include <functional>
#include <set>
#include <tuple>

namespace support {

// What a query makes of the answers: each different SRV record once, by ascending priority, and compared and shown as
// its parts are.
inline void checkServices( const DnsMessage &msg )
{
    using Parts = std::tuple<pbInt, pbInt, std::u32string, pbInt>; // in the order of comparison
    const auto parts = []( const struct inDnsDataInSrv *srv ) {
        const auto target = pb::adopt( inDnsDataInSrvTarget( srv ) );
        return Parts( -inDnsDataInSrvPriority( srv ), inDnsDataInSrvWeight( srv ),
                      target ? pb::view( target.get() ) : U"", inDnsDataInSrvPort( srv ) );
    };
    std::set<Parts> expected;
    for ( pbInt i = 0; i < inDnsMessageAnswerLength( msg.get() ); ++i )
        if ( const auto srv = pb::adopt( inDnsResourceRecordInSrv(
                 pb::adopt( inDnsMessageAnswerResourceRecordAt( msg.get(), i ) ).get() ) ) )
            expected.insert( parts( srv.get() ) );
    const auto data = pb::adopt( in___ImpDnsServiceData( msg.get() ) );
    PB_ASSERT( pbVectorLength( data.get() ) == static_cast<pbInt>( expected.size() ) );
    pb::Ref<struct inDnsDataInSrv> before;
    for ( pbInt i = 0; i < pbVectorLength( data.get() ); ++i ) {
        auto srv = pb::adopt( inDnsDataInSrvFrom( pbVectorObjAt( data.get(), i ) ) );
        const Parts these = parts( srv.get() );
        PB_ASSERT( expected.contains( these ) );
        if ( before ) {
            const Parts those = parts( before.get() );
            PB_ASSERT( std::get<0>( those ) >= std::get<0>( these ) );
            const pbInt order = inDnsDataInSrvCompare( before.get(), srv.get() );
            PB_ASSERT( those < these ? order < 0 : order > 0 );
            PB_ASSERT( inDnsDataInSrvCompare( srv.get(), srv.get() ) == 0 );
        }
        const auto shown = pb::adopt( inDnsDataInSrvToString( srv.get() ) );
        const auto target = std::get<2>( these ).substr( 0, 1024 );
        PB_ASSERT( pb::view( shown.get() ).ends_with( target.empty() ? U"null" : target ) );
        before = std::move( srv );
    }
}

// Accepted as the reference accepts it, with the same names, all valid; cut off anywhere, it is refused.
inline void checkDnsMessage( std::string_view bytes )
{
    const DnsReference reference( bytes );
    const DnsMessage msg = dnsDecode( bytes );
    PB_ASSERT( static_cast<bool>( msg ) == reference.accepted );
    if ( !msg )
        return;
    const auto names = dnsNames( msg );
    PB_ASSERT( names.size() == reference.names.size() );
    for ( size_t i = 0; i < names.size(); ++i ) {
        PB_ASSERT( ( names[i] ? pb::view( names[i].get() ) : U"" ) == reference.names[i] );
        PB_ASSERT( !names[i] || inDnsIdnaDomainNameOk( names[i].get() ) );
    }
    checkServices( msg );
    // All of them in a replay; when millions of inputs are tried each gives some, chosen by its bytes.
#ifdef FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION
    const size_t step = 1 + reference.size / 8;
#else
    const size_t step = 1 + reference.size / 256;
#endif
    for ( size_t length = std::hash<std::string_view>()( bytes ) % step; length < reference.size; length += step )
        PB_ASSERT( !dnsDecode( bytes.substr( 0, length ) ) );
    PB_ASSERT( !dnsDecode( bytes.substr( 0, reference.size - 1 ) ) );
    PB_ASSERT( dnsDecode( bytes.substr( 0, reference.size ) ) );
}

} // namespace support

#endif
