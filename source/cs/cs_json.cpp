// Stores to JSON text and back.
#include "cs/cs_json.h"

#include "cs/cs_json_internal.h"
#include "cs/cs_json_reader_internal.h"
#include "cs/cs_key_internal.h"
#include "pb/pb_assert.hpp"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"

#include <algorithm>

namespace cs {
namespace {

// Exactly what a store writes for an integer, within what every reader of JSON holds exactly (RFC 8259, section 6).
bool isPlainInteger( std::u32string_view text )
{
    const std::u32string_view digits = text.starts_with( U'-' ) ? text.substr( 1 ) : text;
    if ( digits.empty() || digits.size() > 16 || ( digits[0] == U'0' && text.size() > 1 ) )
        return false;
    pbInt value = 0;
    for ( const char32_t c : digits ) {
        if ( c < U'0' || c > U'9' )
            return false;
        value = value * 10 + static_cast<pbInt>( c - U'0' );
    }
    return value <= ( pbInt{ 1 } << 53 ) - 1;
}

class Writer {
public:
    Writer( bool pretty, size_t objectLevels ) : pretty_( pretty ), objectLevels_( objectLevels ) {}

    pb::String write( const struct pbStore *store, Keys keys )
    {
        writeStore( store, isNumbered( store ), keys );
        return pb::adopt( pbStringCreateFromChars( reinterpret_cast<const pbChar *>( text_.data() ),
                                                   static_cast<pbInt>( text_.size() ) ) );
    }

private:
    void writeStore( const struct pbStore *store, bool asArray, Keys keys )
    {
        const pbInt length = pbStoreLength( store );
        text_ += asArray ? U'[' : U'{';
        ++depth_;
        for ( pbInt i = 0; i < length; ++i ) {
            if ( i > 0 )
                text_ += pretty_ ? U"," : U", ";
            newLine();
            const auto key = pb::adopt( pbStoreKeyAt( store, i ) );
            if ( !asArray ) {
                writeString( pb::view( key.get() ) );
                text_ += U": ";
            }
            writeMember( store, i, asArray ? ( keys.empty() ? nullptr : &keys[0] ) : findKey( keys, pb::utf8( key ) ) );
        }
        --depth_;
        if ( length > 0 )
            newLine();
        text_ += asArray ? U']' : U'}';
    }
    // depth_ is the level of what is about to be written.
    bool isNumbered( const struct pbStore *store ) const { return depth_ >= objectLevels_ && isArray( store ); }
    void writeMember( const struct pbStore *store, pbInt index, const struct csKey *optionalKey )
    {
        if ( const auto sub = pb::adopt( pbStoreStoreAt( store, index ) ) ) {
            const bool numbered = isNumbered( sub.get() );
            const bool known =
                optionalKey && ( optionalKey->kind == CS_KEY_STORE || optionalKey->kind == CS_KEY_ARRAY );
            // A table that does not fit the store must not make it come back as another.
            const bool asArray = known && optionalKey->kind == CS_KEY_ARRAY
                                     ? numbered || pbStoreLength( sub.get() ) == 0
                                     : numbered && !known;
            return writeStore( sub.get(), asArray, subKeys( optionalKey ) );
        }
        const auto value = pb::adopt( pbStoreValueAt( store, index ) );
        const std::u32string_view view = pb::view( value.get() );
        const bool bare = !optionalKey                       ? isPlainInteger( view ) || isBool( view )
                          : optionalKey->kind == CS_KEY_INT  ? isPlainInteger( view )
                          : optionalKey->kind == CS_KEY_BOOL ? isBool( view )
                                                             : false;
        if ( bare )
            text_ += view;
        else
            writeString( view );
    }
    static bool isBool( std::u32string_view text ) { return text == U"true" || text == U"false"; }
    void writeString( std::u32string_view text )
    {
        text_ += U'"';
        for ( const char32_t c : text )
            writeChar( c );
        text_ += U'"';
    }
    void writeChar( char32_t c )
    {
        if ( c == U'"' || c == U'\\' ) {
            text_ += U'\\';
            text_ += c;
        }
        else if ( c < 0x20 || ( c >= 0x7F && c < 0xA0 ) ) { // DEL and C1 need no escape, but a terminal obeys them
            text_ += U"\\u00";
            text_ += U"0123456789abcdef"[c >> 4];
            text_ += U"0123456789abcdef"[c & 15];
        }
        else
            text_ += PB_CHAR_OK( c ) ? c : U'\uFFFD';
    }
    void newLine()
    {
        if ( !pretty_ )
            return;
        text_ += U'\n';
        text_.append( 2 * depth_, U' ' );
    }

    const bool pretty_;
    const size_t objectLevels_;
    size_t depth_ = 0;
    std::u32string text_;
};

bool hasNullOrDuplicate( const JsonValue &value )
{
    return value.kind == JsonValue::Kind::Null ||
           std::any_of( value.members.begin(), value.members.end(), []( const JsonMember &member ) {
               return member.duplicate || hasNullOrDuplicate( member.value );
           } );
}

pb::Ref<struct pbStore> tryToStore( const struct pbString *text, const JsonLimits &limits )
{
    const std::string bytes = pb::utf8( text );
    JsonValue root;
    if ( !readJson( bytes, root, limits ).text.empty() || !root.isContainer() || hasNullOrDuplicate( root ) )
        return nullptr;
    return storeFromJson( root );
}

} // namespace

bool isArray( const struct pbStore *store )
{
    const pbInt length = pbStoreLength( store );
    for ( pbInt i = 0; i < length; ++i )
        if ( const auto key = pb::adopt( pbStoreKeyAt( store, i ) ); pb::utf8( key ) != std::to_string( i ) )
            return false;
    return length > 0;
}

pb::String jsonFromObjects( const struct pbStore *store, pbInt style, size_t objectLevels )
{
    return Writer( style == CS_JSON_PRETTY, objectLevels ).write( store, {} );
}

} // namespace cs

extern "C" struct pbString *csJsonFromStoreWithKeys( const struct pbStore *store, pbInt style, const struct csKey *keys,
                                                     pbInt keyCount )
{
    PB_ASSERT( store );
    PB_ASSERT( style == CS_JSON_SHORT || style == CS_JSON_PRETTY );
    PB_ASSERT( keyCount >= 0 );
    PB_ASSERT( keys || keyCount == 0 );
    return cs::Writer( style == CS_JSON_PRETTY, 0 ).write( store, { keys, static_cast<size_t>( keyCount ) } ).release();
}

extern "C" struct pbString *csJsonFromStore( const struct pbStore *store, pbInt style )
{
    return csJsonFromStoreWithKeys( store, style, nullptr, 0 );
}

extern "C" struct pbStore *csJsonTryToStore( const struct pbString *text )
{
    PB_ASSERT( text );
    return cs::tryToStore( text, {} ).release();
}

extern "C" struct pbStore *csJsonTryToStoreWhole( const struct pbString *text )
{
    PB_ASSERT( text );
    return cs::tryToStore( text, { SIZE_MAX, SIZE_MAX } ).release();
}
