// Names of interfaces to identifiers and back.
#include "in/nw/in_nw_interface_name.hpp"

namespace in {
namespace {

constexpr std::string_view digits = "0123456789abcdef";
constexpr size_t escapeLength = 4;

bool beginsEscape( std::string_view text )
{
    return text.size() >= escapeLength && text[0] == '\\' && text[1] == 'x' && digits.find( text[2] ) != text.npos &&
           digits.find( text[3] ) != text.npos;
}

// Of the UTF-8 sequence at the front, or 0.
size_t sequenceLength( std::string_view text )
{
    for ( size_t length = 1; length <= 4 && length <= text.size(); ++length )
        if ( pb::adopt( pbStringTryCreateFromUtf8( text.data(), static_cast<pbInt>( length ) ) ) )
            return length;
    return 0;
}

} // namespace

pb::String identifierOfInterface( std::string_view name )
{
    std::string text;
    while ( !name.empty() ) {
        size_t length = sequenceLength( name );
        if ( length > 0 && !beginsEscape( name ) )
            text += name.substr( 0, length );
        else {
            const auto byte = static_cast<unsigned char>( name[0] );
            text.append( { '\\', 'x', digits[byte >> 4], digits[byte & 15] } );
            length = 1;
        }
        name.remove_prefix( length );
    }
    return pb::string( text );
}

std::string interfaceNameOf( const struct pbString *identifier )
{
    const std::string bytes = pb::utf8( identifier );
    std::string name;
    for ( std::string_view text = bytes; !text.empty(); ) {
        const bool escape = beginsEscape( text );
        name += escape ? static_cast<char>( digits.find( text[2] ) << 4 | digits.find( text[3] ) ) : text[0];
        text.remove_prefix( escape ? escapeLength : 1 );
    }
    return name;
}

} // namespace in
