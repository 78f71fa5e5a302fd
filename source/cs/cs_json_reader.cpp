// Reads JSON into a tree with places. The only user of the JSON library: a handler of its parse events, fed through an
// iterator that tells how far the lexer has read.
#include "cs/cs_json_reader_internal.h"

#include "pb/pb_store.h"
#include "pb/pb_string.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>

namespace cs {
namespace {

using nlohmann::json;

// Walks the text and keeps its position outside, where the handler reads it while the parser owns the iterator.
class CountingIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char *;
    using reference = const char &;

    CountingIterator( const char *at, const char **position ) : at_( at ), position_( position ) {}
    reference operator*() const { return *at_; }
    CountingIterator &operator++()
    {
        *position_ = ++at_;
        return *this;
    }
    CountingIterator operator++( int )
    {
        const CountingIterator old = *this;
        ++*this;
        return old;
    }
    bool operator==( const CountingIterator &other ) const { return at_ == other.at_; }

private:
    const char *at_;
    const char **position_;
};

// Bytes of numbers and of the literals true, false, null; of what was meant as one, too.
bool isWordByte( char c )
{
    return ( c >= '0' && c <= '9' ) || ( c >= 'a' && c <= 'z' ) || ( c >= 'A' && c <= 'Z' ) || c == '+' || c == '-' ||
           c == '.';
}

// The library says "[...] parse error at line 1, column 2: syntax error while parsing value - WHAT; last read: 'TEXT';
// expected E", or "[...] WHAT" of numbers too large. WHAT and E are kept: the place is told in our own way, and the
// text stands there.
struct SyntaxError {
    std::string_view what;
    std::string_view expected{};
    bool inLexer = false; // no token: the lexer stopped inside what it could not read

    explicit SyntaxError( std::string_view library ) : what( library )
    {
        for ( const std::string_view before : { std::string_view( "] " ), std::string_view( " - " ) } )
            if ( const size_t at = what.find( before ); at != what.npos )
                what = what.substr( at + before.size() );
        if ( const size_t at = what.find( "; last read: " ); at != what.npos ) {
            what = what.substr( 0, at );
            inLexer = true;
        }
        if ( const size_t at = what.find( "; expected " ); at != what.npos ) {
            expected = what.substr( at + 11 );
            what = what.substr( 0, at );
        }
    }
};

class Reader {
public:
    Reader( std::string_view bytes, JsonValue &root, size_t mostValues )
        : bytes_( bytes ), position_( bytes.data() ), root_( root ), mostValues_( mostValues )
    {
    }

    JsonError read()
    {
        const char *end = bytes_.data() + bytes_.size();
        // Strict, so that nothing may follow the value; a false result has left its reason in error_.
        (void)json::sax_parse( CountingIterator( bytes_.data(), &position_ ), CountingIterator( end, &position_ ), this,
                               json::input_format_t::json, true, true );
        return std::move( error_ );
    }

    // Events of the parser; false ends the pass.
    bool null() { return scalar( JsonValue::Kind::Null, wordStart( consumed() ), consumed(), "null" ); }
    bool boolean( bool value )
    {
        return scalar( JsonValue::Kind::Bool, wordStart( consumed() ), consumed(), value ? "true" : "false" );
    }
    bool number_integer( json::number_integer_t ) { return number(); }
    bool number_unsigned( json::number_unsigned_t ) { return number(); }
    bool number_float( json::number_float_t, const std::string & ) { return number(); }
    bool string( std::string &value )
    {
        return scalar( JsonValue::Kind::String, quoteStart( consumed() ), consumed(), std::move( value ) );
    }
    bool binary( json::binary_t & ) { return false; } // no part of JSON text
    bool start_object( size_t ) { return open( JsonValue::Kind::Object ); }
    bool start_array( size_t ) { return open( JsonValue::Kind::Array ); }
    bool end_object() { return close(); }
    bool end_array() { return close(); }
    bool key( std::string &name )
    {
        Level &level = levels_.back();
        JsonMember &member = level.value->members.emplace_back();
        member.keyOffset = quoteStart( consumed() );
        member.duplicate = !level.keys.insert( name ).second;
        member.key = std::move( name );
        return true;
    }
    bool parse_error( size_t read, const std::string &, const json::exception &problem )
    {
        const SyntaxError error( problem.what() );
        error_ = { errorOffset( error, read ), "not JSON: " + std::string( error.what ) };
        if ( !error.expected.empty() )
            error_.text += ", expected " + std::string( error.expected );
        return false;
    }

private:
    struct Level {
        JsonValue *value; // stays where it is until its level is closed
        std::set<std::string> keys{};
    };

    size_t consumed() const { return static_cast<size_t>( position_ - bytes_.data() ); }

    // The start of a literal or number that ends before the offset.
    size_t wordStart( size_t end ) const
    {
        while ( end > 0 && isWordByte( bytes_[end - 1] ) )
            --end;
        return end;
    }
    // The opening quote of the string whose closing quote stands before the offset: the only one without a backslash
    // before it, since a string escapes its quotes and no backslash can stand before a string.
    size_t quoteStart( size_t end ) const
    {
        size_t at = end - 2;
        while ( bytes_[at] != '"' || ( at > 0 && bytes_[at - 1] == '\\' ) )
            --at;
        return at;
    }
    // Where the token starts that the parser had no use for, or where the lexer stopped; read counts the bytes that the
    // lexer has taken, and the end of the text as one more.
    size_t errorOffset( const SyntaxError &error, size_t read ) const
    {
        if ( read == 0 || read > bytes_.size() )
            return std::min( read, bytes_.size() );
        if ( error.inLexer )
            return error.what == "invalid literal" ? wordStart( read - 1 ) : read - 1;
        const char last = bytes_[read - 1];
        return last == '"' ? quoteStart( read ) : isWordByte( last ) ? wordStart( read ) : read - 1;
    }

    JsonValue *place( JsonValue::Kind kind, size_t offset )
    {
        if ( ++values_ > mostValues_ ) {
            error_ = { offset, "too many values, expected at most " + std::to_string( mostValues_ ) };
            return nullptr;
        }
        JsonValue *value = &root_;
        if ( !levels_.empty() ) {
            JsonValue &parent = *levels_.back().value;
            if ( parent.kind == JsonValue::Kind::Array ) {
                JsonMember &member = parent.members.emplace_back();
                member.key = std::to_string( parent.members.size() - 1 );
                member.keyOffset = offset;
            }
            value = &parent.members.back().value;
        }
        value->kind = kind;
        value->offset = offset;
        return value;
    }
    bool scalar( JsonValue::Kind kind, size_t offset, size_t end, std::string text )
    {
        JsonValue *value = place( kind, offset );
        if ( !value )
            return false;
        value->text = std::move( text );
        value->end = end;
        value->complete = true;
        return true;
    }
    bool number()
    {
        // The lexer has read one byte beyond the number, unless the text ends with it.
        const size_t end = isWordByte( bytes_[consumed() - 1] ) ? consumed() : consumed() - 1;
        const size_t start = wordStart( end );
        return scalar( JsonValue::Kind::Number, start, end, std::string( bytes_.substr( start, end - start ) ) );
    }
    bool open( JsonValue::Kind kind )
    {
        const size_t offset = consumed() - 1;
        if ( levels_.size() == JsonDepthMaximum ) {
            error_ = { offset,
                       "nested too deeply, expected at most " + std::to_string( JsonDepthMaximum ) + " levels" };
            return false;
        }
        JsonValue *value = place( kind, offset );
        if ( value )
            levels_.push_back( { value } );
        return value;
    }
    bool close()
    {
        levels_.back().value->complete = true;
        levels_.back().value->end = consumed();
        levels_.pop_back();
        return true;
    }

    const std::string_view bytes_;
    const char *position_;
    JsonValue &root_;
    std::vector<Level> levels_;
    const size_t mostValues_;
    size_t values_ = 0;
    JsonError error_;
};

// The length of the UTF-8 sequence at the front (Unicode, table 3-7), or 0.
size_t utf8Length( std::string_view text )
{
    const auto byte = [&]( size_t i ) { return i < text.size() ? static_cast<unsigned char>( text[i] ) : 0u; };
    const unsigned first = byte( 0 );
    const size_t length = first < 0x80   ? 1
                          : first < 0xC2 ? 0
                          : first < 0xE0 ? 2
                          : first < 0xF0 ? 3
                          : first < 0xF5 ? 4
                                         : 0;
    for ( size_t i = 1; i < length; ++i )
        if ( ( byte( i ) & 0xC0 ) != 0x80 )
            return 0;
    const unsigned second = byte( 1 );
    const bool outside = ( first == 0xE0 && second < 0xA0 ) || ( first == 0xED && second > 0x9F ) ||
                         ( first == 0xF0 && second < 0x90 ) || ( first == 0xF4 && second > 0x8F );
    return outside ? 0 : length;
}

// The parser looks at bytes inside strings only and takes NUL for the end of the text, so both are looked for before.
JsonError findUnreadableByte( std::string_view bytes )
{
    for ( size_t at = 0; at < bytes.size(); ) {
        const size_t length = utf8Length( bytes.substr( at, 4 ) );
        if ( length == 0 )
            return { at, "not UTF-8, expected JSON text in UTF-8" };
        if ( bytes[at] == '\0' )
            return { at, "a NUL byte, expected JSON text in UTF-8" };
        at += length;
    }
    return {};
}

} // namespace

JsonError readJson( std::string_view bytes, JsonValue &root, const JsonLimits &limits )
{
    if ( bytes.size() > limits.bytes )
        return { 0, "too long, expected at most " + std::to_string( limits.bytes >> 20 ) + " MiB" };
    const JsonError unreadable = findUnreadableByte( bytes );
    const std::string_view readable = unreadable.text.empty() ? bytes : bytes.substr( 0, unreadable.offset );
    JsonError error = Reader( readable, root, limits.values ).read();
    // What the parser misses where the readable part ends is missing because of the unreadable byte.
    if ( !unreadable.text.empty() && ( error.text.empty() || error.offset >= readable.size() ) )
        return unreadable;
    return error;
}

void setFromJson( pb::Ref<struct pbStore> &store, std::string_view key, const JsonValue &value )
{
    if ( value.isContainer() )
        pbStoreSetStoreCstr( store.address(), key.data(), static_cast<pbInt>( key.size() ),
                             storeFromJson( value ).get() );
    else
        pbStoreSetValueCstr( store.address(), key.data(), static_cast<pbInt>( key.size() ),
                             pb::string( value.text ).get() );
}

pb::Ref<struct pbStore> storeFromJson( const JsonValue &container )
{
    auto store = pb::adopt( pbStoreCreate() );
    size_t entries = 0; // counted, so that an array without one of its entries has no gap
    for ( const JsonMember &member : container.members )
        if ( member.usable() )
            setFromJson( store, container.kind == JsonValue::Kind::Array ? std::to_string( entries++ ) : member.key,
                         member.value );
    return store;
}

} // namespace cs
