// Finds the differences between JSON text and a store, and edits the text at their places.
#include "cs/cs_json_patch_internal.h"

#include "cs/cs_json.h"
#include "cs/cs_json_internal.h"
#include "cs/cs_json_reader_internal.h"
#include "cs/cs_key.h"
#include "cs/cs_update_internal.h"
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
    explicit Patch( std::string_view text ) : text_( text ), lines_( text ) {}

    // level: of the value in the tree, from 0.
    void value( const JsonValue &written, const Store &wanted, size_t level )
    {
        if ( storeFromJson( written ) == wanted )
            return;
        const bool isObject = written.kind == JsonValue::Kind::Object;
        if ( isObject ? !keepsKey( written, wanted ) : !keepsEntries( written, wanted ) )
            return edit( written.offset, written.end, valueText( wanted, written, level ) );
        std::unordered_set<std::string> keys;
        size_t lastKept = 0;
        for ( size_t i = 0; i < written.members.size(); ++i ) {
            keys.insert( written.members[i].key );
            if ( isKept( written.members[i], wanted ) )
                lastKept = i;
        }
        Store added = pb::adopt( pbStoreCreate() );
        for ( pbInt i = 0; i < pbStoreLength( wanted.get() ); ++i )
            if ( const auto key = pb::adopt( pbStoreKeyAt( wanted.get(), i ) ); !keys.contains( pb::utf8( key ) ) )
                copy( added, key, wanted );
        members( written, wanted, lastKept, pbStoreLength( added.get() ) > 0, level );
        if ( pbStoreLength( added.get() ) > 0 )
            add( written, added, level );
    }
    std::vector<TextEdit> takeEdits() { return std::move( edits_ ); }

private:
    // In the order of the text.
    void edit( size_t begin, size_t end, std::string text ) { edits_.push_back( { begin, end, std::move( text ) } ); }

    static void copy( Store &to, const pb::String &key, const Store &from )
    {
        if ( const Store store = pb::adopt( pbStoreStore( from.get(), key.get() ) ) )
            pbStoreSetStore( to.address(), key.get(), store.get() );
        else
            pbStoreSetValue( to.address(), key.get(), pb::adopt( pbStoreValue( from.get(), key.get() ) ).get() );
    }
    static bool isKept( const JsonMember &member, const Store &wanted )
    {
        const auto key = pb::string( member.key );
        return pb::adopt( pbStoreStore( wanted.get(), key.get() ) ) ||
               pb::adopt( pbStoreValue( wanted.get(), key.get() ) );
    }
    static bool keepsKey( const JsonValue &written, const Store &wanted )
    {
        return std::any_of( written.members.begin(), written.members.end(),
                            [&]( const JsonMember &member ) { return isKept( member, wanted ); } );
    }
    // Each entry is what it was, or an object that changes: what a comment says of it still holds.
    static bool keepsEntries( const JsonValue &written, const Store &wanted )
    {
        if ( !isArray( wanted.get() ) || pbStoreLength( wanted.get() ) != static_cast<pbInt>( written.members.size() ) )
            return false;
        return std::all_of( written.members.begin(), written.members.end(), [&]( const JsonMember &member ) {
            const auto key = pb::string( member.key );
            if ( const Store store = pb::adopt( pbStoreStore( wanted.get(), key.get() ) ) )
                return member.value.isContainer() &&
                       ( storeFromJson( member.value ) == store || keepsKey( member.value, store ) );
            return !member.value.isContainer() &&
                   member.value.text == pb::utf8( pb::adopt( pbStoreValue( wanted.get(), key.get() ) ) );
        } );
    }

    // Changes those that stay and takes out the others, each with one comma; the one behind the last that stays serves
    // what is added.
    void members( const JsonValue &written, const Store &wanted, size_t lastKept, bool moreFollows, size_t level )
    {
        const size_t count = written.members.size();
        for ( size_t i = 0; i < count; ++i ) {
            const JsonMember &each = written.members[i];
            if ( !isKept( each, wanted ) ) {
                takeOut( each, i + 1 < count );
                continue;
            }
            member( each.value, wanted, each.key, level + 1 );
            if ( i == lastKept && i + 1 < count && !moreFollows ) {
                const size_t comma = commaBehind( each );
                edit( comma, comma + 1, "" );
            }
            else if ( i + 1 == count && moreFollows )
                edit( each.value.end, each.value.end, "," );
        }
    }
    // With its line when nothing else stands there, else with the blanks on one side of it.
    void takeOut( const JsonMember &member, bool withComma )
    {
        size_t begin = member.keyOffset, end = withComma ? commaBehind( member ) + 1 : member.value.end;
        const size_t line = lines_.of( begin );
        const size_t blanks = text_.find_first_not_of( " \t", lines_.begin( line ) );
        const size_t rest = text_.find_first_not_of( " \t\r", end );
        if ( line > 0 && blanks == begin && rest != text_.npos && text_[rest] == '\n' ) {
            begin = lines_.begin( line ) - 1; // the line end before: the one behind may belong to a brace
            begin -= begin > 0 && text_[begin - 1] == '\r';
            end = rest - ( text_[rest - 1] == '\r' );
        }
        else if ( withComma )
            end = text_.find_first_not_of( " \t", end );
        else
            while ( text_[begin - 1] == ' ' || text_[begin - 1] == '\t' ) // a line end may end a comment
                --begin;
        edit( std::max( begin, edits_.empty() ? 0 : edits_.back().end ), end, "" );
    }
    // Comments may stand before it.
    size_t commaBehind( const JsonMember &member ) const
    {
        size_t at = member.value.end;
        while ( text_[at] != ',' )
            if ( text_.substr( at, 2 ) == "/*" )
                at = text_.find( "*/", at + 2 ) + 2;
            else if ( text_.substr( at, 2 ) == "//" )
                at = text_.find( '\n', at );
            else
                ++at;
        return at;
    }

    void member( const JsonValue &written, const Store &parent, const std::string &keyText, size_t level )
    {
        const auto key = pb::string( keyText );
        const Store store = pb::adopt( pbStoreStore( parent.get(), key.get() ) );
        if ( store && written.isContainer() )
            return value( written, store, level );
        const auto text = pb::adopt( pbStoreValue( parent.get(), key.get() ) );
        if ( text && !written.isContainer() && pb::utf8( text ) == written.text )
            return;
        if ( store )
            return edit( written.offset, written.end, valueText( store, written, level ) );
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
    void add( const JsonValue &written, const Store &added, size_t level )
    {
        const JsonMember &last = written.members.back();
        size_t end = written.end - 1;
        while ( end > last.value.end && isBlank( text_[end - 1] ) )
            --end;
        if ( !edits_.empty() )
            end = std::max( end, edits_.back().end );
        const bool lines = hasLines( written );
        // {"a": 1, ...} without its braces; the layout indents members by two blanks more than the object.
        const std::string indent = indentAt( last.keyOffset );
        const size_t objects = std::max<size_t>( 1, objectLevels( level ) );
        const std::string json =
            lines ? jsonText( added, CS_JSON_PRETTY, indent.substr( std::min<size_t>( 2, indent.size() ) ), objects )
                  : jsonText( added, CS_JSON_SHORT, "", objects );
        const std::string members = json.substr( 1, ( lines ? json.rfind( '\n' ) : json.size() - 1 ) - 1 );
        edit( end, end, lines ? members : " " + members );
    }

    std::string valueText( const Store &store, const JsonValue &replaced, size_t level ) const
    {
        const bool wasArray = replaced.kind == JsonValue::Kind::Array;
        if ( wasArray && pbStoreLength( store.get() ) == 0 )
            return "[]";
        return jsonText( store, hasLines( replaced ) ? CS_JSON_PRETTY : CS_JSON_SHORT, indentAt( replaced.offset ),
                         wasArray ? 0 : objectLevels( level ) );
    }
    // How many levels of the tree, from this one down, are objects.
    static size_t objectLevels( size_t level ) { return TreeObjectLevels - std::min( level, TreeObjectLevels ); }
    static std::string jsonText( const Store &store, pbInt style, const std::string &indent, size_t objectLevels )
    {
        const std::string json = pb::utf8( jsonFromObjects( store.get(), style, objectLevels ) );
        std::string result;
        for ( const char c : json ) // a string holds no line end
            result += c == '\n' ? "\n" + indent : std::string( 1, c );
        return result;
    }
    bool hasLines( const JsonValue &value ) const { return lines_.of( value.offset ) != lines_.of( value.end - 1 ); }
    // The blanks that begin the line of the offset.
    std::string indentAt( size_t offset ) const
    {
        const size_t line = lines_.begin( lines_.of( offset ) );
        size_t end = line;
        while ( end < offset && ( text_[end] == ' ' || text_[end] == '\t' ) )
            ++end;
        return std::string( text_.substr( line, end - line ) );
    }

    const std::string_view text_;
    const Lines lines_;
    std::vector<TextEdit> edits_;
};

} // namespace

std::vector<TextEdit> jsonEdits( std::string_view text, const pb::Ref<struct pbStore> &wanted )
{
    JsonValue root;
    (void)readJson( text, root ); // was accepted before
    Patch patch( text );
    patch.value( root, wanted, 0 );
    std::vector<TextEdit> edits = patch.takeEdits();
    // What replaces a person's text is looked at twice.
    if ( storeFromJsonText( editedText( text, edits ) ) == wanted )
        return edits;
    return { { 0, text.size(), pb::utf8( jsonFromObjects( wanted.get(), CS_JSON_PRETTY, TreeObjectLevels ) ) + "\n" } };
}

pb::Ref<struct pbStore> storeFromJsonText( std::string_view text )
{
    JsonValue root;
    const bool good = readJson( text, root ).text.empty() && root.kind == JsonValue::Kind::Object;
    return good ? storeFromJson( root ) : nullptr;
}

} // namespace cs
