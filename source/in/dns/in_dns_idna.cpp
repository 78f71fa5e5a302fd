// Internationalised domain names: the conversions of labels as strings, and of names as their labels one after another.
#include "in/dns/in_dns_idna.h"

#include "in/dns/in_dns_idna.hpp"
#include "in/dns/in_dns_idna_internal.h"

#include <string>

namespace {

using namespace in::idna;

constexpr Rules publicRules{ .allowUnassigned = true, .useStd3Ascii = false };

Rules rulesFrom( pbBool allowUnassigned, pbBool useStd3AsciiRules )
{
    return { .allowUnassigned = allowUnassigned != 0, .useStd3Ascii = useStd3AsciiRules != 0 };
}

// The text as a string: the source itself where it is the source's text.
pb::String stringOf( std::u32string_view text, const struct pbString *source )
{
    if ( text == pb::view( source ) )
        return pb::share( source );
    return pb::adopt( pbStringCreateFromChars( reinterpret_cast<const pbChar *>( text.data() ), static_cast<pbInt>( text.size() ) ) );
}

// ASCII of the right length, which ToASCII leaves alone.
bool isPlainLabel( std::u32string_view label )
{
    return label.size() - 1 < longestLabel && isAscii( label );
}

std::u32string_view cutLabel( std::u32string_view &name )
{
    size_t end = 0;
    while ( end < name.size() && !isSeparator( name[end] ) )
        ++end;
    const std::u32string_view label = name.substr( 0, end );
    name.remove_prefix( end + ( end < name.size() ) );
    return label;
}

// A first look at a name, up to its first label that is not ASCII: most names are ASCII as a whole.
struct Look {
    bool ok = false;
    bool ace = false; // there is a label in ASCII form
    size_t seen = 0;  // where the look ended
};
Look look( std::u32string_view name )
{
    Look result{ .ok = !name.empty() };
    for ( size_t end = 0; result.seen < name.size(); result.seen = end + 1 ) {
        for ( end = result.seen; end < name.size() && name[end] != U'.'; ++end )
            if ( name[end] >= 0x80 )
                return result;
        const size_t length = end - result.seen;
        if ( length == 0 || length > longestLabel ) {
            result.ok = false;
            return result;
        }
        result.ace |= hasAcePrefix( name.substr( result.seen, length ) );
    }
    result.seen = name.size();
    return result;
}

// Whether a name is ASCII as a whole and has no label in ASCII form, so that both its forms are the name itself but for
// a separator at its end.
bool isPlainName( std::u32string_view name )
{
    const Look all = look( name );
    return all.ok && !all.ace && all.seen == name.size();
}

bool labelOk( std::u32string_view label, Rules rules )
{
    if ( !rules.useStd3Ascii && isPlainLabel( label ) )
        return true;
    Room room;
    return toAscii( label, rules, room ).has_value();
}

template <class Convert> pb::String convertName( const struct pbString *name, Convert convert )
{
    std::u32string_view rest = pb::view( name );
    if ( isPlainName( rest ) && rest.back() != U'.' )
        return pb::share( name );
    std::u32string result;
    PB_ASSERT_TEXT( !rest.empty(), "sv" );
    while ( !rest.empty() ) {
        Room room;
        if ( !result.empty() )
            result.push_back( U'.' );
        result.append( convert( cutLabel( rest ), room ) );
    }
    return stringOf( result, name );
}

pb::String nameToUnicode( const struct pbString *name )
{
    return convertName( name, []( std::u32string_view label, Room &room ) {
        PB_ASSERT_TEXT( labelOk( label, publicRules ), "sv" );
        return toUnicode( label, publicRules, room );
    } );
}

} // namespace

bool in::idna::domainNameOk( std::u32string_view name )
{
    const Look first = look( name );
    if ( !first.ok )
        return false;
    for ( std::u32string_view rest = name.substr( first.seen ); !rest.empty(); )
        if ( !labelOk( cutLabel( rest ), publicRules ) )
            return false;
    return true;
}

extern "C" {

pbBool in___DnsIdnaLabelOk( const struct pbString *adnLabel, pbBool allowUnassigned, pbBool useStd3AsciiRules )
{
    PB_ASSERT( adnLabel );
    return labelOk( pb::view( adnLabel ), rulesFrom( allowUnassigned, useStd3AsciiRules ) );
}

struct pbString *in___DnsIdnaLabelTryToAscii( const struct pbString *idnLabel, pbBool allowUnassigned, pbBool useStd3AsciiRules )
{
    PB_ASSERT( idnLabel );
    Room room;
    const auto ascii = toAscii( pb::view( idnLabel ), rulesFrom( allowUnassigned, useStd3AsciiRules ), room );
    return ascii ? stringOf( *ascii, idnLabel ).release() : nullptr;
}

struct pbString *in___DnsIdnaLabelToUnicode( const struct pbString *adnLabel, pbBool allowUnassigned, pbBool useStd3AsciiRules )
{
    PB_ASSERT( adnLabel );
    PB_ASSERT( in___DnsIdnaLabelOk( adnLabel, allowUnassigned, useStd3AsciiRules ) );
    Room room;
    return stringOf( toUnicode( pb::view( adnLabel ), rulesFrom( allowUnassigned, useStd3AsciiRules ), room ), adnLabel ).release();
}

pbBool inDnsIdnaLabelOk( const struct pbString *label )
{
    PB_ASSERT( label );
    return labelOk( pb::view( label ), publicRules );
}

struct pbString *inDnsIdnaLabelToAscii( const struct pbString *idnLabel )
{
    PB_ASSERT( idnLabel );
    if ( isPlainLabel( pb::view( idnLabel ) ) )
        return pb::share( idnLabel ).release();
    struct pbString *const ascii = in___DnsIdnaLabelTryToAscii( idnLabel, true, false );
    PB_ASSERT_TEXT( ascii, "inDnsIdnaLabelOk( idnLabel )" ); // which converts, too
    return ascii;
}

struct pbString *inDnsIdnaLabelToUnicode( const struct pbString *adnLabel )
{
    PB_ASSERT( adnLabel );
    const std::u32string_view label = pb::view( adnLabel );
    if ( isPlainLabel( label ) && !hasAcePrefix( label ) )
        return pb::share( adnLabel ).release();
    PB_ASSERT( inDnsIdnaLabelOk( adnLabel ) );
    Room room;
    return stringOf( toUnicode( label, publicRules, room ), adnLabel ).release();
}

pbBool inDnsIdnaDomainNameOk( const struct pbString *name )
{
    PB_ASSERT( name );
    return domainNameOk( pb::view( name ) );
}

struct pbString *inDnsIdnaDomainNameToAscii( const struct pbString *name )
{
    PB_ASSERT( name );
    return convertName( name, []( std::u32string_view label, Room &room ) {
               const auto ascii = toAscii( label, publicRules, room );
               PB_ASSERT_TEXT( ascii, "sv" );
               return *ascii;
           } ).release();
}

struct pbString *inDnsIdnaDomainNameToUnicode( const struct pbString *name )
{
    PB_ASSERT( name );
    return nameToUnicode( name ).release();
}

pbBool inDnsIdnaDomainNameEquals( const struct pbString *a, const struct pbString *b )
{
    PB_ASSERT( a );
    PB_ASSERT( b );
    return pbStringEqualsCaseFold( nameToUnicode( a ).get(), nameToUnicode( b ).get() );
}

} // extern "C"
