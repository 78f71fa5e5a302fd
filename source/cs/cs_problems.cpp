// Problems of a text, with their lines and columns.
#include "cs/cs_problems_internal.h"

#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"

#include <algorithm>
#include <cstdio>

namespace cs {
namespace {

bool isContinuation( char byte ) { return ( static_cast<unsigned char>( byte ) & 0xC0 ) == 0x80; }

// Counts lines and columns while it moves forward through the text.
class Place {
public:
    explicit Place( std::string_view bytes ) : bytes_( bytes )
    {
        if ( bytes.starts_with( "\xEF\xBB\xBF" ) )
            offset_ = 3; // a byte order mark is no column
    }
    void moveTo( size_t offset )
    {
        for ( ; offset_ < std::min( offset, bytes_.size() ); ++offset_ )
            if ( bytes_[offset_] == '\n' ) {
                ++line_;
                column_ = 1;
            } else if ( !isContinuation( bytes_[offset_] ) )
                ++column_;
    }
    std::string text() const { return std::to_string( line_ ) + ":" + std::to_string( column_ ); }

private:
    std::string_view bytes_;
    size_t offset_ = 0;
    size_t line_ = 1;
    size_t column_ = 1;
};

} // namespace

std::string printable( std::string_view text )
{
    constexpr size_t Maximum = 64;
    std::string result;
    size_t count = 0;
    for ( size_t i = 0; i < text.size(); ++i ) {
        const auto byte = static_cast<unsigned char>( text[i] );
        if ( !isContinuation( text[i] ) && ++count > Maximum )
            return result + "...";
        // U+0080..U+009F are controls, too; in UTF-8 they begin with C2.
        const bool control = byte < 0x20 || byte == 0x7F;
        const bool control1 = byte == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>( text[i + 1] ) < 0xA0;
        if ( !control && !control1 ) {
            result += text[i];
            continue;
        }
        char escape[8];
        std::snprintf( escape, sizeof escape, "\\u%04x", control ? byte : static_cast<unsigned char>( text[++i] ) );
        result += escape;
    }
    return result;
}

void Problems::add( size_t offset, std::string_view path, std::string_view what )
{
    if ( problems_.size() == Maximum ) {
        ++untold_;
        return;
    }
    problems_.emplace( offset, std::string( path ) + ( path.empty() ? "" : ": " ) + std::string( what ) );
}

pb::Ref<struct pbVector> Problems::messages( std::string_view file, std::string_view bytes ) const
{
    auto messages = pb::adopt( pbVectorCreate() );
    Place place( bytes );
    const auto tell = [&]( const std::string &text ) {
        const std::string message = std::string( file ) + ":" + place.text() + ": error: " + text;
        pbVectorAppend( messages.address(), pbStringObj( pb::string( message ).get() ) );
    };
    for ( const auto &[offset, text] : problems_ ) {
        place.moveTo( offset );
        tell( text );
    }
    if ( untold_ )
        tell( std::to_string( untold_ ) + " more problems, not told" );
    return messages;
}

} // namespace cs
