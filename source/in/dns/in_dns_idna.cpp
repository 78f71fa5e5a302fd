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

std::u32string_view cutLabel( std::u32string_view &name )
{
    size_t end = 0;
    while ( end < name.size() && !isSeparator( name[end] ) )
        ++end;
    const std::u32string_view label = name.substr( 0, end );
    name.remove_prefix( end + ( end < name.size() ) );
    return label;
}

bool labelOk( std::u32string_view label, Rules rules )
{
    Room room;
    return toAscii( label, rules, room ).has_value();
}

template <class Convert> pb::String convertName( const struct pbString *name, Convert convert )
{
    std::u32string result;
    std::u32string_view rest = pb::view( name );
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
    if ( name.empty() )
        return false;
    while ( !name.empty() )
        if ( !labelOk( cutLabel( name ), publicRules ) )
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
    struct pbString *const ascii = in___DnsIdnaLabelTryToAscii( idnLabel, true, false );
    PB_ASSERT_TEXT( ascii, "inDnsIdnaLabelOk( idnLabel )" ); // which converts, too
    return ascii;
}

struct pbString *inDnsIdnaLabelToUnicode( const struct pbString *adnLabel )
{
    PB_ASSERT( adnLabel );
    PB_ASSERT( inDnsIdnaLabelOk( adnLabel ) );
    Room room;
    return stringOf( toUnicode( pb::view( adnLabel ), publicRules, room ), adnLabel ).release();
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
