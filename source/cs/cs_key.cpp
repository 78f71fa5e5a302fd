// Checks values and names against tables of keys.
#include "cs/cs_key_internal.h"

#include "cs/cs_nearest.hpp"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"

#include <algorithm>

namespace cs {
namespace {

std::string joined( const std::vector<std::string> &names )
{
    std::string text;
    for ( const std::string &name : names )
        text += ( text.empty() ? "" : ", " ) + name;
    return text;
}

std::vector<std::string> namesOf( const struct csKey &key )
{
    std::vector<std::string> names;
    for ( auto name = key.names; name && *name; ++name )
        names.emplace_back( *name );
    return names;
}

// "firstPort (1..65535), count (0..65535)"
std::string subKeysText( Keys keys )
{
    std::vector<std::string> parts;
    for ( const auto &key : keys )
        parts.push_back( std::string( key.key ) + " (" + expectedText( key ) + ")" );
    return joined( parts );
}

std::string valueText( const JsonValue &value )
{
    switch ( value.kind ) {
    case JsonValue::Kind::Object: return "an object";
    case JsonValue::Kind::Array: return "an array";
    case JsonValue::Kind::String: return '"' + printable( value.text ) + '"';
    default: return printable( value.text );
    }
}

bool isRange( const struct csKey &key ) { return key.minimum != 0 || key.maximum != 0; }

// The names in the text of flags, without the blanks around them.
std::vector<std::string_view> flagNames( std::string_view text )
{
    std::vector<std::string_view> names;
    for ( size_t begin = 0; begin <= text.size(); ) {
        const size_t end = std::min( text.find( '|', begin ), text.size() );
        const std::string_view name = text.substr( begin, end - begin );
        if ( const size_t first = name.find_first_not_of( " \t\n\v\f\r" ); first != name.npos )
            names.push_back( name.substr( first, name.find_last_not_of( " \t\n\v\f\r" ) + 1 - first ) );
        begin = end + 1;
    }
    return names;
}

Finding flagsProblem( const struct csKey &key, const std::string &text )
{
    const std::vector<std::string> known = namesOf( key );
    for ( const std::string_view name : flagNames( text ) )
        if ( std::find( known.begin(), known.end(), name ) == known.end() )
            return unknownName( "flag", name, known );
    return {};
}

std::string integerProblem( const struct csKey &key, const JsonValue &value )
{
    pbInt number = 0;
    if ( !integerFromText( value.text, number ) )
        return valueText( value ) + " is no integer";
    return isRange( key ) && ( number < key.minimum || number > key.maximum ) ? valueText( value ) + " is out of range"
                                                                              : "";
}

bool kindFits( const struct csKey &key, const JsonValue &value )
{
    switch ( key.kind ) {
    case CS_KEY_STORE: return value.kind == JsonValue::Kind::Object;
    case CS_KEY_ARRAY: // an empty one is stored, and printed where its kind is not known, as an empty store
        return value.kind == JsonValue::Kind::Array
               || ( value.kind == JsonValue::Kind::Object && value.members.empty() );
    default: return !value.isContainer();
    }
}

// What is wrong, without what was expected.
std::string valueProblem( const struct csKey &key, const JsonValue &value )
{
    if ( !kindFits( key, value ) )
        return valueText( value ) + " is of the wrong kind";
    switch ( key.kind ) {
    case CS_KEY_INT: return integerProblem( key, value );
    case CS_KEY_BOOL:
        return value.text == "true" || value.text == "false" ? "" : valueText( value ) + " is neither true nor false";
    case CS_KEY_ENUM: {
        const std::vector<std::string> names = namesOf( key );
        const bool known = names.empty() || std::find( names.begin(), names.end(), value.text ) != names.end();
        return known ? "" : valueText( value ) + " is not known";
    }
    default:
        return !key.accepts || key.accepts( pb::string( value.text ).get() ) ? "" : valueText( value ) + " is not accepted";
    }
}

} // namespace

const struct csKey *findKey( Keys keys, std::string_view name )
{
    const auto found = std::find_if( keys.begin(), keys.end(), [&]( const auto &key ) { return name == key.key; } );
    return found == keys.end() ? nullptr : &*found;
}

Keys subKeys( const struct csKey *optionalKey )
{
    return optionalKey && optionalKey->keys ? Keys( optionalKey->keys, static_cast<size_t>( optionalKey->keyCount ) )
                                            : Keys();
}

const struct csKey *memberKey( Keys keys, const JsonValue &container, std::string_view name )
{
    if ( container.kind == JsonValue::Kind::Array )
        return keys.empty() ? nullptr : &keys[0];
    return findKey( keys, name );
}

std::string expectedText( const struct csKey &key )
{
    if ( key.expected )
        return key.expected;
    switch ( key.kind ) {
    case CS_KEY_INT:
        if ( !isRange( key ) )
            return "an integer";
        return std::to_string( key.minimum )
               + ( key.maximum == PB_INT_MAX ? " or more" : ".." + std::to_string( key.maximum ) );
    case CS_KEY_BOOL: return "true or false";
    case CS_KEY_ENUM: return "one of " + joined( namesOf( key ) );
    case CS_KEY_FLAGS: return "names joined by \"|\" of " + joined( namesOf( key ) );
    case CS_KEY_STORE: {
        const Keys keys = subKeys( &key );
        return keys.empty() ? "an object" : "an object of " + subKeysText( keys );
    }
    case CS_KEY_ARRAY: {
        const Keys keys = subKeys( &key );
        return keys.empty() ? "an array" : "an array, each entry " + expectedText( keys[0] );
    }
    default: return "a text that the sort accepts";
    }
}

Finding keyProblem( const struct csKey &key, const JsonValue &value )
{
    if ( const std::string problem = valueProblem( key, value ); !problem.empty() ) {
        const bool isNames = key.kind == CS_KEY_ENUM && !value.isContainer();
        const std::vector<std::string> near =
            isNames ? nearestNames( value.text, namesOf( key ) ) : std::vector<std::string>();
        return { problem, expectedText( key ), near.size() == 1 ? near[0] : "" }; // of two it may be either
    }
    return key.kind == CS_KEY_FLAGS ? flagsProblem( key, value.text ) : Finding();
}

std::vector<std::string> keyNames( Keys keys )
{
    std::vector<std::string> names;
    for ( const auto &key : keys )
        names.emplace_back( key.key );
    return names;
}

Finding unknownName( std::string_view kind, std::string_view name, const std::vector<std::string> &known )
{
    Finding finding{ "unknown " + std::string( kind ) };
    if ( !kind.starts_with( "key" ) ) // a key stands in the path
        finding.what += " \"" + printable( name ) + '"';
    finding.expected = known.empty() ? "none" : ( known.size() == 1 ? "" : "one of " ) + joined( known );
    if ( const std::vector<std::string> near = nearestNames( name, known ); !near.empty() )
        finding.nearest = near[0];
    return finding;
}

std::string repeatedFlag( std::string_view text )
{
    std::vector<std::string_view> names = flagNames( text );
    std::sort( names.begin(), names.end() );
    const auto twice = std::adjacent_find( names.begin(), names.end() );
    return twice == names.end() ? "" : std::string( *twice );
}

bool integerFromText( const std::string &text, pbInt &value )
{
    auto store = pb::adopt( pbStoreCreate() );
    pbStoreSetValueCstr( store.address(), "", 0, pb::string( text ).get() );
    return pbStoreValueIntCstr( store.get(), &value, "", 0 );
}

} // namespace cs
