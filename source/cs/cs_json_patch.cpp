// Finds the differences between JSON text and a store, and edits the text at their places.
#include "cs/cs_json_patch_internal.h"

#include "cs/cs_json.h"
#include "cs/cs_json_internal.h"
#include "cs/cs_json_reader_internal.h"
#include "cs/cs_key.h"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"

#include <algorithm>
#include <unordered_set>
#include <vector>

namespace cs {
namespace {

using Store = pb::Ref<struct pbStore>;

bool isBlank( char c )
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

class Patch {
public:
    explicit Patch( std::string_view text ) : text_( text ) {}

    void value( const JsonValue &written, const Store &wanted )
    {
        if ( storeFromJson( written ) == wanted )
            return;
        if ( written.kind != JsonValue::Kind::Object || written.members.empty() || isArray( wanted.get() ) ||
             losesKey( written, wanted ) )
            return edit( written.offset, written.end, valueText( wanted, written ) );
        std::unordered_set<std::string> keys;
        for ( const JsonMember &member : written.members ) {
            keys.insert( member.key );
            this->member( member.value, wanted, member.key );
        }
        Store added = pb::adopt( pbStoreCreate() );
        for ( pbInt i = 0; i < pbStoreLength( wanted.get() ); ++i )
            if ( const auto key = pb::adopt( pbStoreKeyAt( wanted.get(), i ) ); !keys.contains( pb::utf8( key ) ) )
                copy( added, key, wanted );
        if ( pbStoreLength( added.get() ) > 0 )
            add( written, added );
    }
    std::string patched() const
    {
        std::string result;
        size_t at = 0;
        for ( const Edit &edit : edits_ ) {
            result += text_.substr( at, edit.begin - at );
            result += edit.text;
            at = edit.end;
        }
        return result + std::string( text_.substr( at ) );
    }

private:
    struct Edit {
        size_t begin, end;
        std::string text;
    };
    // In the order of the text.
    void edit( size_t begin, size_t end, std::string text ) { edits_.push_back( { begin, end, std::move( text ) } ); }

    static void copy( Store &to, const pb::String &key, const Store &from )
    {
        if ( const Store store = pb::adopt( pbStoreStore( from.get(), key.get() ) ) )
            pbStoreSetStore( to.address(), key.get(), store.get() );
        else
            pbStoreSetValue( to.address(), key.get(), pb::adopt( pbStoreValue( from.get(), key.get() ) ).get() );
    }
    static bool losesKey( const JsonValue &written, const Store &wanted )
    {
        for ( const JsonMember &member : written.members ) {
            const auto key = pb::string( member.key );
            if ( !pb::adopt( pbStoreStore( wanted.get(), key.get() ) ) &&
                 !pb::adopt( pbStoreValue( wanted.get(), key.get() ) ) )
                return true;
        }
        return false;
    }

    void member( const JsonValue &written, const Store &parent, const std::string &keyText )
    {
        const auto key = pb::string( keyText );
        const Store store = pb::adopt( pbStoreStore( parent.get(), key.get() ) );
        if ( store && written.isContainer() )
            return value( written, store );
        const auto text = pb::adopt( pbStoreValue( parent.get(), key.get() ) );
        if ( text && !written.isContainer() && pb::utf8( text ) == written.text )
            return;
        if ( store )
            return edit( written.offset, written.end, valueText( store, written ) );
        // A string stays one, so that what looks like a number is not taken for one by other readers.
        auto one = pb::adopt( pbStoreCreate() );
        pbStoreSetValueCstr( one.address(), "", 0, text.get() );
        const csKey kind[] = { { .key = "", .kind = CS_KEY_TEXT } };
        const bool isString = written.kind == JsonValue::Kind::String;
        const std::string json = pb::utf8(
            pb::adopt( csJsonFromStoreWithKeys( one.get(), CS_JSON_SHORT, kind, isString ? 1 : 0 ) ) ); // {"": VALUE}
        edit( written.offset, written.end, json.substr( 5, json.size() - 6 ) );
    }

    // Behind the last member and the comments after it, on lines of their own when the object stands on several.
    void add( const JsonValue &written, const Store &added )
    {
        const JsonMember &last = written.members.back();
        const size_t brace = written.end - 1;
        size_t end = brace;
        while ( end > last.value.end && isBlank( text_[end - 1] ) )
            --end;
        const bool lines = hasLines( written );
        // {"a": 1, ...} without its braces; the layout indents members by two blanks more than the object.
        const std::string indent = indentAt( last.keyOffset );
        const std::string json =
            lines ? jsonText( added, CS_JSON_PRETTY, indent.substr( std::min<size_t>( 2, indent.size() ) ) )
                  : jsonText( added, CS_JSON_SHORT, "" );
        const std::string members = json.substr( 1, ( lines ? json.rfind( '\n' ) : json.size() - 1 ) - 1 );
        edit( last.value.end, last.value.end, "," );
        edit( end, end, lines ? members : " " + members );
    }

    std::string valueText( const Store &store, const JsonValue &replaced ) const
    {
        return jsonText( store, hasLines( replaced ) ? CS_JSON_PRETTY : CS_JSON_SHORT, indentAt( replaced.offset ) );
    }
    static std::string jsonText( const Store &store, pbInt style, const std::string &indent )
    {
        const std::string json = pb::utf8( pb::adopt( csJsonFromStore( store.get(), style ) ) );
        std::string result;
        for ( const char c : json ) // a string holds no line end
            result += c == '\n' ? "\n" + indent : std::string( 1, c );
        return result;
    }
    bool hasLines( const JsonValue &value ) const
    {
        return text_.substr( value.offset, value.end - value.offset ).find( '\n' ) != text_.npos;
    }
    // The blanks that begin the line of the offset.
    std::string indentAt( size_t offset ) const
    {
        const size_t line = text_.substr( 0, offset ).rfind( '\n' ) + 1; // npos + 1 is 0
        size_t end = line;
        while ( end < offset && ( text_[end] == ' ' || text_[end] == '\t' ) )
            ++end;
        return std::string( text_.substr( line, end - line ) );
    }

    const std::string_view text_;
    std::vector<Edit> edits_;
};

} // namespace

std::string patchedJson( std::string_view text, const pb::Ref<struct pbStore> &wanted )
{
    JsonValue root;
    (void)readJson( text, root ); // was accepted before
    Patch patch( text );
    patch.value( root, wanted );
    return patch.patched();
}

pb::Ref<struct pbStore> storeFromJsonText( std::string_view text )
{
    JsonValue root;
    const bool good = readJson( text, root ).text.empty() && root.kind == JsonValue::Kind::Object;
    return good ? storeFromJson( root ) : nullptr;
}

} // namespace cs
