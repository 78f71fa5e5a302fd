// Checks a domain name label by label, to tell what is wrong with it.
#include "inctl/domain_name.hpp"

#include "inctl/exit_code.hpp"

#include "in/dns/in_dns_idna.h"

#include <fmt/format.h>

#include <algorithm>

namespace inctl {
namespace {

constexpr std::u32string_view separators = U".\u3002\uFF0E\uFF61"; // RFC 3490, 3.1
constexpr pbInt longestLabel = 63, longestName = 253;             // in ASCII form; RFC 1035, 2.3.4

pb::String make( std::u32string_view text )
{
    return pb::adopt( pbStringCreateFromChars( reinterpret_cast<const pbChar *>( text.data() ),
                                               static_cast<pbInt>( text.size() ) ) );
}

// What is wrong with the label, or nothing.
std::string complaint( const pb::String &label )
{
    if ( pbStringLength( label.get() ) == 0 )
        return "is empty";
    if ( !inDnsIdnaLabelOk( label.get() ) ) {
        const auto chars = pb::view( label.get() );
        if ( std::all_of( chars.begin(), chars.end(), []( char32_t c ) { return c < 0x80; } ) )
            return fmt::format( "has {} characters, and {} are allowed", chars.size(), longestLabel );
        return "has characters that no domain name may have, or is too long in its ASCII form";
    }
    const auto ascii = pb::adopt( inDnsIdnaLabelToAscii( label.get() ) );
    if ( pbStringEndsWithChar( ascii.get(), PB_CHAR_FULL_STOP ) || pb::view( ascii.get() ).front() == U'.' )
        return fmt::format( "stands for {}, which is no label", pb::utf8( ascii ) );
    return "";
}

} // namespace

pb::String parseDomainName( const std::string &text )
{
    const auto name =
        pb::adopt( pbStringTryCreateFromUtf8( text.data(), static_cast<pbInt>( text.size() ) ) );
    if ( !name )
        throw Failure{ Exit::Usage, "the name is not UTF-8" };
    if ( text.empty() )
        throw Failure{ Exit::Usage, "the name is empty" };
    int number = 0;
    for ( std::u32string_view rest = pb::view( name.get() ); !rest.empty(); ) {
        const size_t length = std::min( rest.find_first_of( separators ), rest.size() );
        const pb::String label = make( rest.substr( 0, length ) );
        ++number;
        if ( const std::string wrong = complaint( label ); !wrong.empty() )
            throw Failure{ Exit::Usage,
                           fmt::format( "{} is no domain name: label {}, \"{}\", {}", text, number, pb::utf8( label ),
                                        wrong ) };
        rest.remove_prefix( std::min( length + 1, rest.size() ) );
    }
    const auto ascii = pb::adopt( inDnsIdnaDomainNameToAscii( name.get() ) );
    if ( pbStringLength( ascii.get() ) > longestName )
        throw Failure{ Exit::Usage, fmt::format( "{} is no domain name: it has {} characters in ASCII form, and {} are "
                                                 "allowed", text, pbStringLength( ascii.get() ), longestName ) };
    return name;
}

} // namespace inctl
