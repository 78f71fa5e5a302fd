// Any bytes as UTF-8, as 32-bit values and as punycode: what is encoded decodes to the same, what is decoded encodes to the same but for
// letter case, and a limit changes nothing but whether there is a result.
#include "in/dns/in_dns_punycode.h"
#include "pb/pb_assert.hpp"
#include "pb/pb_string.hpp"

#include <algorithm>

namespace {

using Convert = struct pbString *( const struct pbString *, pbInt );

pb::String convert( Convert *convert, const pb::String &source, pbInt most = -1 )
{
    return pb::adopt( convert( source.get(), most ) );
}

void checkLimits( Convert *function, const pb::String &source, const pb::String &result )
{
    for ( const pbInt most : { 0, 1, 59, 63 } )
        PB_ASSERT( bool( convert( function, source, most ) ) == ( result && pbStringLength( result.get() ) <= most ) );
    if ( !result )
        return;
    const pbInt length = pbStringLength( result.get() );
    PB_ASSERT( convert( function, source, length ) == result );
    PB_ASSERT( length == 0 || !convert( function, source, length - 1 ) );
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *data, size_t size )
{
    const pb::String text = pb::string( { reinterpret_cast<const char *>( data ), size } );
    pbChar values[64];
    const size_t count = std::min( size / sizeof( pbChar ), std::size( values ) );
    std::copy_n( data, count * sizeof( pbChar ), reinterpret_cast<uint8_t *>( values ) );
    const bool scalars = std::all_of( values, values + count, []( pbChar c ) { return PB_CHAR_OK( c ); } );
    const pb::String wide = pb::adopt( pbStringCreateFromChars( values, static_cast<pbInt>( count ) ) );
    PB_ASSERT( bool( convert( inDnsPunycodeTryEncode, wide ) ) == scalars );

    const pb::String encoded = convert( inDnsPunycodeTryEncode, text );
    PB_ASSERT( encoded );
    for ( const char32_t c : pb::view( encoded.get() ) )
        PB_ASSERT( c < 0x80 );
    PB_ASSERT( convert( inDnsPunycodeTryDecode, encoded ) == text );
    checkLimits( inDnsPunycodeTryEncode, text, encoded );

    const pb::String decoded = convert( inDnsPunycodeTryDecode, text );
    checkLimits( inDnsPunycodeTryDecode, text, decoded );
    if ( decoded )
        PB_ASSERT( pbStringEqualsCaseFold( convert( inDnsPunycodeTryEncode, decoded ).get(), text.get() ) );
    return 0;
}
