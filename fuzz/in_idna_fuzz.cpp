// Any text as label and as name: what is one converts, its ASCII form is one that keeps its meaning, and names are
// their labels.
#include "in/dns/in_dns_idna.h"
#include "in/dns/in_dns_idna.hpp"
#include "in/dns/in_dns_punycode.h"
#include "pb/pb_assert.hpp"
#include "rfc/rfc_stringprep.h"

#include <algorithm>

namespace {

using Convert = struct pbString *( const struct pbString * );

pb::String convert( Convert *convert, const pb::String &source ) { return pb::adopt( convert( source.get() ) ); }

pb::String make( std::u32string_view text )
{
    return pb::adopt( pbStringCreateFromChars( reinterpret_cast<const pbChar *>( text.data() ), static_cast<pbInt>( text.size() ) ) );
}

bool isAscii( const pb::String &text )
{
    const std::u32string_view chars = pb::view( text.get() );
    return std::all_of( chars.begin(), chars.end(), []( char32_t c ) { return c < 0x80; } );
}

bool holdsSeparator( const pb::String &text )
{
    const std::u32string_view chars = pb::view( text.get() );
    return std::any_of( chars.begin(), chars.end(), in::idna::isSeparator );
}

// RFC 3490, section 4.2, word by word.
pb::String patientToUnicode( const pb::String &label )
{
    const pb::String prepared = isAscii( label ) ? label : pb::adopt( rfcStringprepProfileNameprep( label.get(), true ) );
    if ( pbStringLength( label.get() ) > 63 || !prepared || pbStringLength( prepared.get() ) < 4 )
        return label;
    const pb::String prefix = make( pb::view( prepared.get() ).substr( 0, 4 ) ), rest = make( pb::view( prepared.get() ).substr( 4 ) );
    if ( !pbStringEqualsCstrIgnoreCase( prefix.get(), "xn--", -1 ) )
        return label;
    const pb::String decoded = pb::adopt( inDnsPunycodeTryDecode( rest.get(), 63 ) );
    if ( !decoded || !inDnsIdnaLabelOk( decoded.get() ) )
        return label;
    const pb::String back = convert( inDnsIdnaLabelToAscii, decoded );
    return pbStringEqualsCaseFold( back.get(), prepared.get() ) ? decoded : label;
}

void checkLabel( const pb::String &label )
{
    if ( !inDnsIdnaLabelOk( label.get() ) )
        return;
    const pb::String ascii = convert( inDnsIdnaLabelToAscii, label );
    PB_ASSERT( isAscii( ascii ) && pbStringLength( ascii.get() ) >= 1 && pbStringLength( ascii.get() ) <= 63 );
    PB_ASSERT( !isAscii( label ) || ascii.is( label ) );
    PB_ASSERT( convert( inDnsIdnaLabelToAscii, ascii ).is( ascii ) );
    const pb::String unicode = convert( inDnsIdnaLabelToUnicode, label );
    PB_ASSERT( unicode == patientToUnicode( label ) );
    PB_ASSERT( inDnsIdnaLabelOk( unicode.get() ) );
    PB_ASSERT( pbStringEqualsCaseFold( convert( inDnsIdnaLabelToAscii, unicode ).get(), ascii.get() ) );
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *data, size_t size )
{
    const pb::String text = pb::string( { reinterpret_cast<const char *>( data ), size } );
    std::u32string_view rest = pb::view( text.get() );
    bool all = !rest.empty(), separable = true;
    while ( !rest.empty() ) {
        const auto end = static_cast<size_t>( std::find_if( rest.begin(), rest.end(), in::idna::isSeparator ) - rest.begin() );
        const pb::String label = make( rest.substr( 0, end ) );
        checkLabel( label );
        all &= inDnsIdnaLabelOk( label.get() ) != 0;
        separable &= all && !holdsSeparator( convert( inDnsIdnaLabelToUnicode, label ) );
        rest.remove_prefix( std::min( end + 1, rest.size() ) );
    }
    PB_ASSERT( all == ( inDnsIdnaDomainNameOk( text.get() ) != 0 ) );
    if ( !all )
        return 0;
    const pb::String ascii = convert( inDnsIdnaDomainNameToAscii, text ), unicode = convert( inDnsIdnaDomainNameToUnicode, text );
    PB_ASSERT( isAscii( ascii ) );
    // A label may decode to text that holds a separator; then the result is another name, or none.
    if ( separable )
        PB_ASSERT( inDnsIdnaDomainNameOk( unicode.get() ) && inDnsIdnaDomainNameEquals( text.get(), unicode.get() ) );
    return 0;
}
