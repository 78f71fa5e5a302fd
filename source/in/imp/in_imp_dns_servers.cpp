// Reading the resolver's configuration, resolv.conf(5).
#include "in/imp/in_imp_dns_servers_internal.h"

#include "in/base/in_address.h"
#include "pb/pb_assert.hpp"
#include "pb/pb_buffer.h"
#include "pb/pb_charset.h"
#include "pb/pb_dict.h"
#include "pb/pb_file.h"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"

namespace {

constexpr char keyword[] = "nameserver";

// What stands behind the keyword, which begins the line.
pb::Ref<struct inAddress> tryParseLine( pb::String line )
{
    if ( !pbStringBeginsWithCstr( line.get(), keyword, -1 ) )
        return nullptr;
    pbStringDelLeading( line.address(), sizeof keyword - 1 );
    pbStringTrim( line.address() );
    return pb::adopt( inAddressTryCreateFromString( line.get() ) );
}

} // namespace

extern "C" {

struct pbVector *in___ImpDnsServersFromResolvConf( const struct pbBuffer *text )
{
    PB_ASSERT( text );
    // Bytes that are no UTF-8, in a comment perhaps, must not cost the servers.
    const auto string = pb::adopt(
        pbCharsetTryConvertBufferToStringWithFlags( PB_CHARSET_UTF8, text, PB_CHARSET_FLAG_REPLACE ) );
    if ( !string )
        return pbVectorCreate();
    const auto lines = pb::adopt( pbStringSplitChar( string.get(), '\n', -1 ) );
    auto servers = pb::adopt( pbDictCreate() );
    const pbInt count = pbVectorLength( lines.get() );
    for ( pbInt index = 0; index < count; ++index ) {
        const auto address = tryParseLine( pb::adopt( pbStringFrom( pbVectorObjAt( lines.get(), index ) ) ) );
        if ( address )
            pbDictSetObjKey( servers.address(), inAddressObj( address.get() ), inAddressObj( address.get() ) );
    }
    return pbDictKeysVector( servers.get() );
}

struct pbVector *in___ImpSystemEnumerateDnsServers( void )
{
    const auto text = pb::adopt( pbFileTryReadAllCstr( "/etc/resolv.conf" ) );
    return text ? in___ImpDnsServersFromResolvConf( text.get() ) : pbVectorCreate();
}

} // extern "C"
