// The formatter: reads a format once and writes its text into a buffer that is usually on the stack.
#include "pb/pb_format.h"

#include "pb/pb_string.hpp"
#include "pb/pb_text.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <span>

namespace {

class TextBuilder {
public:
    void append( char32_t c )
    {
        if ( length_ == room_.size() )
            grow( 1 );
        room_[length_++] = c;
    }
    template <class Iterator> void append( Iterator first, size_t count )
    {
        if ( count > room_.size() - length_ )
            grow( count );
        std::copy_n( first, count, room_.begin() + static_cast<ptrdiff_t>( length_ ) );
        length_ += count;
    }
    void append( std::string_view ascii ) { append( ascii.data(), ascii.size() ); }
    void appendObject( const struct pbString *string )
    {
        const std::u32string_view text = pb::view( string );
        append( text.data(), text.size() );
    }
    pb::String toString() const
    {
        return pb::adopt( pbStringCreateFromChars( reinterpret_cast<const pbChar *>( room_.data() ),
                                                   static_cast<pbInt>( length_ ) ) );
    }

private:
    [[gnu::noinline]] void grow( size_t count )
    {
        const size_t size = std::max( length_ + count, 2 * room_.size() );
        auto larger = std::make_unique_for_overwrite<char32_t[]>( size );
        std::copy_n( room_.begin(), length_, larger.get() );
        heap_ = std::move( larger );
        room_ = { heap_.get(), size };
    }

    std::array<char32_t, 256> stack_;
    std::unique_ptr<char32_t[]> heap_;
    std::span<char32_t> room_{ stack_ };
    size_t length_ = 0;
};

// What stands between "%" and the letter.
struct Directive {
    bool lowerCase = false;
    bool consumes = false;
    size_t width = 0;
    int base = 10;
    char letter = 0;
};

int readNumber( std::string_view format, size_t &position )
{
    int number = 0;
    const char *first = format.data() + position;
    const auto result = std::from_chars( first, format.data() + format.size(), number );
    PB_ASSERT_TEXT( result.ec == std::errc() && number >= 0, "the format has a number where it needs one" );
    position += static_cast<size_t>( result.ptr - first );
    return number;
}

// Reads from behind the "%" and moves behind the letter.
Directive readDirective( std::string_view format, size_t &position )
{
    Directive directive;
    while ( position < format.size() ) {
        const char c = format[position++];
        if ( c == '^' )
            directive.lowerCase = true;
        else if ( c == '~' )
            directive.consumes = true;
        else if ( c == '0' )
            directive.width = static_cast<size_t>( readNumber( format, position ) );
        else if ( c == '!' )
            directive.base = readNumber( format, position );
        else {
            directive.letter = c;
            break;
        }
    }
    PB_ASSERT_TEXT( directive.base >= 2 && directive.base <= 36, "the base of a format is 2..36" );
    return directive;
}

void appendNumber( TextBuilder &text, const Directive &directive, pbInt number )
{
    const char *digits =
        directive.lowerCase ? "0123456789abcdefghijklmnopqrstuvwxyz" : "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    char backwards[64];
    size_t count = 0;
    const auto base = static_cast<uint64_t>( directive.base );
    uint64_t rest = number < 0 ? -static_cast<uint64_t>( number ) : static_cast<uint64_t>( number );
    if ( base == 10 ) // by a constant, which needs no division
        for ( ; rest >= 10; rest /= 10 )
            backwards[count++] = digits[rest % 10];
    for ( ; rest >= base; rest /= base )
        backwards[count++] = digits[rest % base];
    backwards[count++] = digits[rest];
    if ( number < 0 )
        text.append( U'-' );
    for ( size_t written = count + ( number < 0 ); written < directive.width; ++written )
        text.append( U'0' );
    text.append( std::make_reverse_iterator( backwards + count ), count );
}

char32_t codePoint( pbInt number )
{
    return number >= 0 && number <= 0x10FFFF && PB_CHAR_OK( number ) ? static_cast<char32_t>( number )
                                                                     : pb::text::replacement;
}

void appendObject( TextBuilder &text, const Directive &directive, const pbFormatArgument &argument )
{
    PB_ASSERT_TEXT( argument.kind == PB_FORMAT_ARGUMENT_OBJ || argument.kind == PB_FORMAT_ARGUMENT_OBJ_CONSUMED,
                    "%s and %o read an object" );
    if ( !argument.obj )
        text.append( "null" );
    else if ( argument.obj->sort == pbStringSort() )
        text.appendObject( reinterpret_cast<const struct pbString *>( argument.obj ) );
    else {
        PB_ASSERT_TEXT( directive.letter == 'o', "%s reads a string" );
        text.appendObject( pb::adopt( pbObjToString( argument.obj ) ).get() );
    }
}

void appendArgument( TextBuilder &text, const Directive &directive, const pbFormatArgument &argument )
{
    if ( directive.letter == 's' || directive.letter == 'o' ) {
        appendObject( text, directive, argument );
        return;
    }
    PB_ASSERT_TEXT( argument.kind == PB_FORMAT_ARGUMENT_INT || argument.kind == PB_FORMAT_ARGUMENT_BOOL ||
                        argument.kind == PB_FORMAT_ARGUMENT_CHAR,
                    "%i, %b and %c read a number" );
    PB_ASSERT_TEXT( !directive.consumes, "~ belongs to %s and %o" );
    switch ( directive.letter ) {
    case 'i':
        appendNumber( text, directive, argument.number );
        break;
    case 'b':
        text.append( argument.number ? "true" : "false" );
        break;
    case 'c':
        text.append( codePoint( argument.number ) );
        break;
    default:
        pb___Abort( __FILE__, __LINE__, "the format has an unknown directive" );
    }
}

void appendLiteral( TextBuilder &text, std::string_view literal )
{
    pb::text::Utf8Reader reader( literal );
    while ( !reader.atEnd() )
        text.append( reader.next() );
}

void build( TextBuilder &text, std::string_view format, std::span<const pbFormatArgument> arguments )
{
    size_t used = 0;
    for ( size_t position = 0; position < format.size(); ) {
        const size_t percent = std::min( format.find( '%', position ), format.size() );
        appendLiteral( text, format.substr( position, percent - position ) );
        if ( percent == format.size() )
            break;
        position = percent + 1;
        const Directive directive = readDirective( format, position );
        if ( directive.letter == '%' ) {
            text.append( U'%' );
            continue;
        }
        PB_ASSERT_TEXT( used < arguments.size(), "the format has an argument for each directive" );
        appendArgument( text, directive, arguments[used++] );
    }
    PB_ASSERT_TEXT( used == arguments.size(), "the format has a directive for each argument" );
    for ( const pbFormatArgument &argument : arguments )
        if ( argument.kind == PB_FORMAT_ARGUMENT_OBJ_CONSUMED )
            pbObjRelease( argument.obj );
}

} // namespace

extern "C" {

struct pbString *pbStringCreateFromFormatCstr( const char *format, pbInt formatLength,
                                               const struct pbFormatArgument *arguments, pbInt argumentCount )
{
    PB_ASSERT( format );
    PB_ASSERT( formatLength >= -1 );
    PB_ASSERT( argumentCount >= 0 );
    PB_ASSERT( arguments || argumentCount == 0 );
    TextBuilder text;
    build( text, { format, formatLength < 0 ? std::strlen( format ) : static_cast<size_t>( formatLength ) },
           { arguments, static_cast<size_t>( argumentCount ) } );
    return text.toString().release();
}

void pbStringAppendFormatCstr( struct pbString **string, const char *format, pbInt formatLength,
                               const struct pbFormatArgument *arguments, pbInt argumentCount )
{
    PB_ASSERT( string );
    PB_ASSERT( *string );
    const auto text = pb::adopt( pbStringCreateFromFormatCstr( format, formatLength, arguments, argumentCount ) );
    pbStringAppend( string, text.get() );
}

} // extern "C"
