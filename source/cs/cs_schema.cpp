// What the registered sorts say of their keys, as a JSON schema (draft 2020-12).
#include "cs/cs_schema.h"

#include "cs/cs_integer_pattern_internal.h"
#include "cs/cs_key_internal.h"
#include "cs/cs_sort_backend_internal.h"
#include "pb/pb_assert.hpp"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"

namespace cs {
namespace {

// JSON text is put together from finished pieces; indented() makes it readable at the end.

std::string quoted( std::string_view text )
{
    std::string json = "\"";
    for ( const char c : text ) {
        if ( c == '"' || c == '\\' )
            json += '\\';
        json += c;
    }
    return json + '"';
}

using Members = std::vector<std::pair<std::string, std::string>>; // keys and JSON text

std::string object( const Members &members )
{
    std::string json;
    for ( const auto &[key, value] : members )
        json += ( json.empty() ? "" : "," ) + quoted( key ) + ":" + value;
    return "{" + json + "}";
}

std::string array( const std::vector<std::string> &entries )
{
    std::string json;
    for ( const std::string &entry : entries )
        json += ( json.empty() ? "" : "," ) + entry;
    return "[" + json + "]";
}

std::string texts( std::vector<std::string> entries )
{
    for ( std::string &entry : entries )
        entry = quoted( entry );
    return array( entries );
}

std::string indented( std::string_view json )
{
    std::string text;
    size_t depth = 0;
    bool inString = false;
    const auto newLine = [&] { text += "\n" + std::string( 2 * depth, ' ' ); };
    for ( size_t i = 0; i < json.size(); ++i ) {
        const char c = json[i];
        if ( inString ) {
            text += c;
            if ( c == '\\' )
                text += json[++i];
            inString = c != '"';
            continue;
        }
        inString = c == '"';
        const bool opens = c == '{' || c == '[', closes = c == '}' || c == ']';
        const bool empty = closes && ( text.back() == '{' || text.back() == '[' );
        depth -= closes ? 1 : 0;
        if ( closes && !empty )
            newLine();
        text += c;
        depth += opens ? 1 : 0;
        if ( ( opens && json[i + 1] != '}' && json[i + 1] != ']' ) || c == ',' )
            newLine();
        else if ( c == ':' )
            text += ' ';
    }
    return text;
}

// The blanks that the reader of flags skips.
constexpr const char *Blanks = "[ \\t\\n\\v\\f\\r]*";
const std::string RecordNamePattern = "^[0-9A-Za-z_.-]{1,255}$";
const std::string AnyText = R"(["string","number","boolean"])"; // all are kept as text
const std::string EmptyObject = object( { { "type", quoted( "object" ) }, { "maxProperties", "0" } } );

// Nothing at all, or at least one name.
std::string flagsPattern( const std::vector<std::string> &names )
{
    std::string name;
    for ( const std::string &known : names )
        name += ( name.empty() ? "" : "|" ) + known;
    const std::string blanks = Blanks;
    name = "(?:" + name + ")" + blanks;
    return "^(?:[ \\t\\n\\v\\f\\r|]*" + name + "(?:\\|" + blanks + "(?:" + name + ")?)*)?$";
}

std::string configSchema( Keys keys, bool whole );

// The members that say which values fit.
Members valueSchema( const struct csKey &key )
{
    std::vector<std::string> names;
    for ( auto name = key.names; name && *name; ++name )
        names.emplace_back( *name );
    switch ( key.kind ) {
    case CS_KEY_INT: {
        const bool isRange = key.minimum != 0 || key.maximum != 0;
        const pbInt minimum = isRange ? key.minimum : PB_INT_MIN, maximum = isRange ? key.maximum : PB_INT_MAX;
        return { { "anyOf", array( { object( { { "type", quoted( "integer" ) },
                                               { "minimum", std::to_string( minimum ) },
                                               { "maximum", std::to_string( maximum ) } } ),
                                     object( { { "type", quoted( "string" ) },
                                               { "pattern", quoted( integerPattern( minimum, maximum ) ) } } ) } ) } };
    }
    case CS_KEY_BOOL: return { { "enum", R"([true,false,"true","false"])" } };
    case CS_KEY_ENUM:
        if ( names.empty() )
            return { { "type", AnyText } };
        return { { "enum", texts( names ) } };
    case CS_KEY_FLAGS: return { { "type", quoted( "string" ) }, { "pattern", quoted( flagsPattern( names ) ) } };
    case CS_KEY_STORE:
        return { { "allOf", array( { configSchema( subKeys( &key ), key.flags & CS_KEY_FLAG_WHOLE ) } ) } };
    case CS_KEY_ARRAY: {
        Members entries{ { "type", quoted( "array" ) } };
        if ( const Keys entry = subKeys( &key ); !entry.empty() )
            entries.emplace_back( "items", object( valueSchema( entry[0] ) ) );
        return { { "anyOf", array( { object( entries ), EmptyObject } ) } };
    }
    default:
        if ( key.recordSort )
            return { { "type", quoted( "string" ) }, { "pattern", quoted( RecordNamePattern ) } };
        if ( key.pattern )
            return { { "type", quoted( "string" ) }, { "pattern", quoted( key.pattern ) } };
        return { { "type", AnyText } };
    }
}

std::string keySchema( const struct csKey &key )
{
    Members members;
    if ( key.description )
        members.emplace_back( "description", quoted( key.description + ( ": " + expectedText( key ) ) ) );
    for ( auto &member : valueSchema( key ) )
        members.push_back( std::move( member ) );
    return object( members );
}

std::string configSchema( Keys keys, bool whole )
{
    Members members{ { "type", quoted( "object" ) } };
    if ( keys.empty() )
        return object( members );
    Members properties;
    for ( const auto &key : keys )
        properties.emplace_back( key.key, keySchema( key ) );
    members.emplace_back( "properties", object( properties ) );
    members.emplace_back( "additionalProperties", "false" );
    std::vector<std::string> required;
    for ( const auto &key : keys )
        if ( key.flags & CS_KEY_FLAG_REQUIRED )
            required.emplace_back( key.key );
    if ( !required.empty() )
        members.emplace_back( "required", texts( required ) );
    if ( whole ) // an empty one says nothing and is let through
        members.emplace_back( "anyOf",
                              array( { object( { { "required", texts( keyNames( keys ) ) } } ), EmptyObject } ) );
    return object( members );
}

// What saving notes of the modules.
std::string modulesSchema()
{
    const Members module{ { "version", object( { { "type", quoted( "string" ) },
                                                 { "pattern", quoted( "^[0-9]+[.][0-9]+$" ) } } ) },
                          { "info", object( { { "type", quoted( "object" ) } } ) } };
    const std::string entry = object( { { "type", quoted( "object" ) },
                                        { "properties", object( module ) },
                                        { "additionalProperties", "false" } } );
    return object( { { "description", quoted( "The modules that have saved the file; not for people" ) },
                     { "type", quoted( "object" ) },
                     { "additionalProperties", entry } } );
}

std::string schema()
{
    Registry &registry = Registry::instance();
    const std::vector<std::string> names = registry.sortNames();
    Members definitions;
    std::vector<std::string> choices;
    for ( const std::string &name : names ) {
        const auto sort = registry.sortNamed( name );
        if ( !sort )
            continue; // withdrawn meanwhile
        definitions.emplace_back( name, configSchema( registry.keys( *sort ), false ) );
        const Members isSort{ { "sort", object( { { "const", quoted( name ) } } ) } };
        const Members config{ { "config", object( { { "$ref", quoted( "#/$defs/" + name ) } } ) } };
        choices.push_back(
            object( { { "if", object( { { "properties", object( isSort ) }, { "required", texts( { "sort" } ) } } ) },
                      { "then", object( { { "properties", object( config ) } } ) } } ) );
    }
    const Members frame{ { "sort", object( { { "enum", texts( names ) } } ) },
                         { "config", object( { { "type", quoted( "object" ) } } ) } };
    Members record{ { "type", quoted( "object" ) },
                    { "properties", object( frame ) },
                    { "required", texts( { "sort" } ) },
                    { "additionalProperties", "false" } };
    if ( !choices.empty() )
        record.emplace_back( "allOf", array( choices ) );
    definitions.emplace_back( "record", object( record ) );
    const Members objects{ { "description", quoted( "The objects by their names" ) },
                           { "type", quoted( "object" ) },
                           { "propertyNames", object( { { "pattern", quoted( RecordNamePattern ) } } ) },
                           { "additionalProperties", object( { { "$ref", quoted( "#/$defs/record" ) } } ) } };
    return object( { { "$schema", quoted( "https://json-schema.org/draft/2020-12/schema" ) },
                     { "title", quoted( "Configuration of Internetworking" ) },
                     { "type", quoted( "object" ) },
                     { "properties", object( { { "objects", object( objects ) }, { "modules", modulesSchema() } } ) },
                     { "required", texts( { "objects" } ) },
                     { "additionalProperties", "false" },
                     { "$defs", object( definitions ) } } );
}

} // namespace
} // namespace cs

extern "C" struct pbString *csSchema( void )
{
    return pb::string( cs::indented( cs::schema() ) ).release();
}

extern "C" struct pbVector *csSchemaSortNames( void )
{
    auto names = pb::adopt( pbVectorCreate() );
    for ( const std::string &name : cs::Registry::instance().sortNames() )
        pbVectorAppend( names.address(), pbStringObj( pb::string( name ).get() ) );
    return names.release();
}

extern "C" const struct csKey *csSchemaKeys( const struct pbString *sortName, pbInt *keyCount )
{
    PB_ASSERT( sortName );
    PB_ASSERT( keyCount );
    const auto sort = cs::Registry::instance().sortNamed( pb::utf8( sortName ) );
    const cs::Keys keys = sort ? cs::Registry::instance().keys( *sort ) : cs::Keys();
    *keyCount = static_cast<pbInt>( keys.size() );
    return keys.empty() ? nullptr : keys.data();
}

extern "C" struct pbString *csSchemaExpected( const struct csKey *key )
{
    PB_ASSERT( key );
    return pb::string( cs::expectedText( *key ) ).release();
}
