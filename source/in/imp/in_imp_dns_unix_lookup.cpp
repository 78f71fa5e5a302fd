// Look-ups through the system's resolver.
#include "in/base/in_address.h"
#include "in/dns/in_dns_data_in_srv.hpp"
#include "in/dns/in_dns_idna.h"
#include "in/dns/in_dns_message.h"
#include "in/dns/in_dns_message_decode.h"
#include "in/dns/in_dns_query_addresses_imp_internal.h"
#include "in/dns/in_dns_query_domain_names_imp_internal.h"
#include "in/dns/in_dns_query_srv_imp_internal.h"
#include "in/dns/in_dns_query_state.hpp"
#include "in/dns/in_dns_record_type.h"
#include "in/dns/in_dns_resource_record.h"
#include "in/imp/in_imp_dns_unix_internal.h"
#include "in/imp/in_imp_sockaddr_unix_internal.h"
#include "pb/pb_buffer.h"
#include "pb/pb_dict.h"
#include "pb/pb_random.h"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"
#include "tr/tr.hpp"
#include "unix/unix_error.h"

#include <algorithm>
#include <arpa/nameser.h>
#include <cerrno>
#include <memory>
#include <netdb.h>
#include <resolv.h>
#include <tuple>
#include <vector>

namespace {

using Vector = pb::Ref<struct pbVector>;

// The trace of one look-up, linked to the query on whose behalf it is done, and why it has no result.
class Trace {
  public:
    explicit Trace( const char *name ) : stream_( pb::adopt( trStreamCreateCstr( name, -1 ) ) ) {}

    pb::Ref<struct trAnchor> anchor() const
    {
        return pb::adopt( trAnchorCreate( stream_.get(), TR_ANCHOR_KIND_ORIGIN ) );
    }
    template <class... Arguments> void text( const char *format, const Arguments &...arguments ) const
    {
        tr::text( stream_.get(), format, arguments... );
    }
    // What a person should look at.
    template <class... Arguments> Vector fail( pbInt failure, const char *format, const Arguments &...arguments )
    {
        failure_ = failure;
        trStreamSetNotable( stream_.get() );
        text( format, arguments... );
        return nullptr;
    }
    // The failure stands for a result that is empty.
    Vector result( Vector found, pbInt failure = IN_DNS_QUERY_FAILURE_NO_DATA )
    {
        if ( pbVectorLength( found.get() ) == 0 )
            return fail( failure, "result: null" );
        text( "result: %o", found );
        return found;
    }
    pbInt failure() const { return failure_; }

  private:
    const pb::Ref<struct trStream> stream_;
    pbInt failure_ = IN_DNS_QUERY_FAILURE_SYSTEM;
};

pbInt failureOfGetaddrinfo( int code )
{
    switch ( code ) {
    case EAI_NONAME:
        return IN_DNS_QUERY_FAILURE_NO_NAME;
    case EAI_NODATA:
    case EAI_ADDRFAMILY:
        return IN_DNS_QUERY_FAILURE_NO_DATA;
    case EAI_AGAIN:
        return IN_DNS_QUERY_FAILURE_NO_ANSWER;
    case EAI_FAIL:
        return IN_DNS_QUERY_FAILURE_SERVER;
    default:
        return IN_DNS_QUERY_FAILURE_SYSTEM;
    }
}

// Of a message without what was asked for.
pbInt failureOfResponse( const struct inDnsMessage *msg )
{
    switch ( inDnsMessageResponse( msg ) ) { // RFC 1035, 4.1.1
    case 0:
        return IN_DNS_QUERY_FAILURE_NO_DATA;
    case 3:
        return IN_DNS_QUERY_FAILURE_NO_NAME;
    default:
        return IN_DNS_QUERY_FAILURE_SERVER;
    }
}

// In ASCII form, without the full stop at the end (RFC 1035, 2.3.4: 255 bytes in wire format). A hosts file may know
// longer names; no name server is asked for one.
constexpr pbInt longestName = 253;

using Bytes = std::unique_ptr<char, decltype( &pbBytesZFree )>;

// A final full stop keeps the resolver from trying the name below the host's own domains; a backslash would begin an
// escape (RFC 1035, 5.1).
Bytes absolute( const pb::String &asciiName )
{
    std::string text;
    for ( const char c : pb::utf8( asciiName ) )
        text.append( c == '\\' ? 2 : 1, c );
    const auto name = pb::string( text + '.' );
    Bytes nodename( pbStringTryConvertToBytesZ( name.get() ), pbBytesZFree );
    PB_ASSERT( nodename );
    return nodename;
}

Vector findAddresses( Trace &trace, const struct pbString *name )
{
    trace.text( "domainName: %s", name );
    const auto domainName = pb::adopt( inDnsIdnaDomainNameToAscii( name ) );
    trace.text( "domainNameAscii: %s", domainName );
    PB_ASSERT_TEXT( !pbStringEndsWithChar( domainName.get(), PB_CHAR_FULL_STOP ),
                    "!pbStringEndsWithChar( domainName, PB_CHAR_FULL_STOP )" );
    const Bytes nodename = absolute( domainName );

    addrinfo *first = nullptr;
    if ( const int code = getaddrinfo( nodename.get(), nullptr, nullptr, &first ) )
        return trace.fail( pbStringLength( domainName.get() ) > longestName ? IN_DNS_QUERY_FAILURE_NOT_ASKABLE
                                                                            : failureOfGetaddrinfo( code ),
                           "getaddrinfo(): %~s", pb::adopt( unixErrorGetaddrinfoToString( code ) ) );
    const std::unique_ptr<addrinfo, decltype( &freeaddrinfo )> list( first, freeaddrinfo );

    // Without hints each address comes once for each type of socket.
    auto found = pb::adopt( pbDictCreate() );
    for ( const addrinfo *entry = first; entry; entry = entry->ai_next ) {
        pb::Ref<struct inAddress> address;
        if ( entry->ai_addr && in___ImpSockaddrToAddress( entry->ai_addr, entry->ai_addrlen, address.address() ) )
            pbDictSetObjKey( found.address(), inAddressObj( address.get() ), inAddressObj( address.get() ) );
    }
    return trace.result( pb::adopt( pbDictKeysVector( found.get() ) ) );
}

Vector findDomainNames( Trace &trace, const struct inAddress *address )
{
    trace.text( "address: %o", address );
    alignas( sockaddr_storage ) unsigned char sockaddr[sizeof( sockaddr_storage )];
    PB_ASSERT( in___ImpSockaddrSize() <= PB_SIZEOF_ARRAY( sockaddr ) );
    pbInt length = 0;
    if ( !in___ImpSockaddrFromAddress( sockaddr, &length, address ) )
        return trace.fail( IN_DNS_QUERY_FAILURE_SYSTEM, "in___ImpSockaddrFromAddress(): false" );

    char host[2048];
    if ( const int code = getnameinfo( reinterpret_cast<const struct sockaddr *>( sockaddr ),
                                       static_cast<socklen_t>( length ), host, sizeof host, nullptr, 0, 0 ) )
        return trace.fail( failureOfGetaddrinfo( code ), "getnameinfo(): %~s",
                           pb::adopt( unixErrorGetaddrinfoToString( code ) ) );
    const auto name = pb::adopt( pbStringCreateFromCstr( host, -1 ) );
    if ( !inDnsIdnaDomainNameOk( name.get() ) )
        return trace.fail( IN_DNS_QUERY_FAILURE_BAD_ANSWER, "inDnsIdnaDomainNameOk(): false" );
    auto names = pb::adopt( pbVectorCreate() );
    const auto unicode = pb::adopt( inDnsIdnaDomainNameToUnicode( name.get() ) );
    pbVectorAppend( names.address(), pbStringObj( unicode.get() ) );
    return trace.result( std::move( names ) );
}

// The answer in wire format, or null.
pb::Ref<struct pbBuffer> ask( Trace &trace, const char *nodename )
{
    // The state of the resolver belongs to the thread.
    thread_local const bool initialised = res_init() == 0;
    (void)initialised; // on failure the calls below fail, too

    unsigned char query[4096];
    const int queryLength = res_mkquery( QUERY, nodename, ns_c_in, ns_t_srv, nullptr, 0, nullptr, query, sizeof query );
    if ( queryLength < 0 ) {
        trace.fail( IN_DNS_QUERY_FAILURE_NOT_ASKABLE, "res_mkquery(): %~s", pb::adopt( unixErrorToString( errno ) ) );
        return nullptr;
    }
    constexpr int answerSize = 65536;
    auto answer = pb::adopt( pbBufferCreateUninitialized( answerSize ) );
    const int answerLength = res_send( query, queryLength, pbBufferBackingForWrite( answer.address() ), answerSize );
    if ( answerLength < 0 ) {
        trace.fail( IN_DNS_QUERY_FAILURE_NO_ANSWER, "res_send(): %~s", pb::adopt( unixErrorToString( errno ) ) );
        return nullptr;
    }
    return pb::adopt(
        pbBufferCreateFromBytes( pbBufferBacking( answer.get() ), std::min( answerLength, answerSize ) ) );
}

// Ordered as SRV data are, but for long targets.
struct RankedSrv {
    pb::Ref<struct inDnsDataInSrv> srv;
    in::dns::Name::Rank target;

    RankedSrv( pb::Ref<struct inDnsDataInSrv> data, uint64_t seed )
        : srv( std::move( data ) ), target( srv->target, seed )
    {
    }
    std::weak_ordering operator<=>( const RankedSrv &other ) const
    {
        return std::tie( other.srv->priority, srv->weight, target, srv->port ) <=>
               std::tie( srv->priority, other.srv->weight, other.target, other.srv->port );
    }
};

Vector findSrv( Trace &trace, const struct pbString *name )
{
    trace.text( "service: %s", name );
    const auto service = pb::adopt( inDnsIdnaDomainNameToAscii( name ) );
    trace.text( "serviceAscii: %s", service );
    PB_ASSERT_TEXT( !pbStringEndsWithChar( service.get(), PB_CHAR_FULL_STOP ),
                    "!pbStringEndsWithChar( service, PB_CHAR_FULL_STOP )" );
    const auto answer = ask( trace, absolute( service ).get() );
    if ( !answer )
        return nullptr;
    const auto msg = pb::adopt( inDnsMessageTryDecode( answer.get() ) );
    if ( !msg )
        return trace.fail( IN_DNS_QUERY_FAILURE_BAD_ANSWER, "inDnsMessageTryDecode(): null" );

    return trace.result( pb::adopt( in___ImpDnsServiceData( msg.get() ) ), failureOfResponse( msg.get() ) );
}

} // namespace

// Not through a dictionary, which would look into long targets at each comparison.
struct pbVector *in___ImpDnsServiceData( const struct inDnsMessage *msg )
{
    std::vector<RankedSrv> found;
    const auto seed = static_cast<uint64_t>( pbRandomNonNegativeIntRange( 0, PB_INT_MAX ) );
    for ( pbInt i = 0; i < inDnsMessageAnswerLength( msg ); ++i ) {
        const auto record = pb::adopt( inDnsMessageAnswerResourceRecordAt( msg, i ) );
        if ( auto srv = pb::adopt( inDnsResourceRecordInSrv( record.get() ) ) )
            found.emplace_back( std::move( srv ), seed );
    }
    std::vector<const RankedSrv *> sorted;
    for ( const RankedSrv &srv : found )
        sorted.push_back( &srv );
    std::sort( sorted.begin(), sorted.end(), []( auto *a, auto *b ) { return ( *a <=> *b ) < 0; } );

    auto data = pb::adopt( pbVectorCreate() );
    std::vector<const RankedSrv *> alike; // different ones of the same rank: one but for an accident of the hash
    for ( const RankedSrv *next : sorted ) {
        if ( !alike.empty() && ( *alike[0] <=> *next ) != 0 )
            alike.clear();
        if ( std::any_of( alike.begin(), alike.end(), [=]( auto *seen ) { return *seen->srv == *next->srv; } ) )
            continue;
        alike.push_back( next );
        pbVectorAppend( data.address(), inDnsDataInSrvObj( next->srv.get() ) );
    }
    return inDnsDataInSrvVectorOrder( data.get() );
}

void in___ImpDnsDoQueryAddresses( struct in___DnsQueryAddressesImp *query )
{
    Trace trace( "in___ImpDnsDoQueryAddresses()" );
    in___DnsQueryAddressesImpTraceCompleteAnchor( query, trace.anchor().get() );
    const auto domainName = pb::adopt( in___DnsQueryAddressesImpDomainName( query ) );
    if ( const Vector result = findAddresses( trace, domainName.get() ) )
        in___DnsQueryAddressesImpEndSet( query, result.get() );
    else
        in::dns::stateOf( query ).fail( trace.failure() );
}

void in___ImpDnsDoQueryDomainNames( struct in___DnsQueryDomainNamesImp *query )
{
    Trace trace( "in___ImpDnsDoQueryDomainNames()" );
    in___DnsQueryDomainNamesImpTraceCompleteAnchor( query, trace.anchor().get() );
    const auto address = pb::adopt( in___DnsQueryDomainNamesImpAddress( query ) );
    if ( const Vector result = findDomainNames( trace, address.get() ) )
        in___DnsQueryDomainNamesImpEndSet( query, result.get() );
    else
        in::dns::stateOf( query ).fail( trace.failure() );
}

void in___ImpDnsDoQuerySrv( struct in___DnsQuerySrvImp *query )
{
    Trace trace( "in___ImpDnsDoQuerySrv()" );
    in___DnsQuerySrvImpTraceCompleteAnchor( query, trace.anchor().get() );
    const auto service = pb::adopt( in___DnsQuerySrvImpService( query ) );
    if ( const Vector result = findSrv( trace, service.get() ) )
        in___DnsQuerySrvImpEndSet( query, result.get() );
    else
        in::dns::stateOf( query ).fail( trace.failure() );
}
