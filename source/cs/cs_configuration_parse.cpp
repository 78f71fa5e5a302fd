// Reads the records of a configuration: {"objects": {NAME: {"sort": ..., "config": {...}}}, "modules": {...}}.
#include "cs/cs_config_check_internal.h"
#include "cs/cs_configuration_internal.h"
#include "cs/cs_key_internal.h"
#include "cs/cs_migrate_tree_internal.h"
#include "cs/cs_update_internal.h"
#include "pb/pb_module_version.h"

#include <algorithm>

namespace cs {
namespace {

class ConfigurationParser {
public:
    explicit ConfigurationParser( Problems &problems ) : problems_( problems ) {}

    void parse( JsonValue &root )
    {
        if ( !isObject( root, {}, "an object with the key \"objects\"" ) )
            return;
        JsonMember *objects = nullptr;
        for ( JsonMember &member : root.members )
            if ( isKnownOnce( member, { "", printable( member.key ) }, { TreeObjects, TreeModules } ) ) {
                if ( member.key == TreeObjects )
                    objects = &member;
                else if ( isObject( member.value, { "", TreeModules }, "an object of module names" ) )
                    parseModules( member.value );
            }
        if ( !objects && root.complete )
            problems_.add( root.offset, {}, { "the key \"objects\" is missing", "{\"objects\": {...}}" } );
        if ( !objects || !isObject( objects->value, { "", "objects" }, "an object of named objects" ) )
            return;
        for ( JsonMember &record : objects->value.members )
            parseRecord( record );
        checkTogether( subjects_, root.complete, problems_ );
    }

    ParsedConfiguration parsed{ {}, pb::adopt( pbStoreCreate() ) };

private:
    void parseModules( JsonValue &modules )
    {
        for ( JsonMember &module : modules.members ) {
            const std::string path = TreeModules + ( "." + printable( module.key ) );
            if ( module.duplicate )
                problems_.add( module.keyOffset, { "", path }, { "the name stands twice", "once" } );
            if ( !isObject( module.value, { "", path }, "an object of \"version\" and \"info\"" ) )
                continue;
            for ( JsonMember &member : module.value.members ) {
                const Subject subject{ "", path + "." + printable( member.key ) };
                if ( !isKnownOnce( member, subject, { TreeVersion, TreeInfo } ) )
                    continue;
                if ( member.key == TreeInfo )
                    (void)isObject( member.value, subject, "an object" ); // told; its content is the module's own
                else if ( const std::string &text = member.value.text;
                          member.value.complete && !pb::adopt( pbModuleVersionTryCreateFromCstr(
                                                       text.data(), static_cast<pbInt>( text.size() ) ) ) )
                    problems_.add( member.value.offset, subject, { "no version", "\"MAJOR.MINOR\"" } );
            }
        }
        parsed.modules = storeFromJson( modules );
    }
    void parseRecord( JsonMember &record )
    {
        const std::string path = record.key.empty() ? "\"\"" : printable( record.key );
        if ( record.duplicate )
            problems_.add( record.keyOffset, { path }, { "the name stands twice", "once" } );
        if ( !recordNameOk( record.key ) )
            problems_.add( record.keyOffset, { path },
                           { "bad name", "1 to 255 letters, digits, \"_\", \"-\", \".\"" } );
        if ( !isObject( record.value, { path }, "an object of \"sort\" and \"config\"" ) )
            return;

        JsonMember *sort = nullptr, *config = nullptr;
        for ( JsonMember &member : record.value.members )
            if ( isKnownOnce( member, { path, printable( member.key ) }, { "sort", "config" } ) )
                ( member.key == "sort" ? sort : config ) = &member;
        if ( !sort && record.value.complete )
            problems_.add( record.value.offset, { path }, { "the key \"sort\" is missing", expectedSort() } );
        const bool configOk = !config || isObject( config->value, { path, "config" }, "an object" );
        const std::shared_ptr<Sort> known = sort ? findSort( sort->value, { path, "sort" } ) : nullptr;
        subjects_.push_back(
            { record.key, path, known, record.keyOffset, configOk && config ? &config->value : nullptr } );
        if ( !known || !configOk )
            return;
        if ( const Call call( known ); !call )
            problems_.add( sort->value.offset, { path, "sort" },
                           { "the module of this sort is not running", "it started" } );
        else if ( config )
            checkConfig( *known, config->value, path, problems_ );
        parsed.records.push_back( { record.key, known, config ? storeFromJson( config->value ) : nullptr } );
    }

    std::shared_ptr<Sort> findSort( const JsonValue &value, const Subject &subject )
    {
        if ( !value.complete && !value.isContainer() )
            return nullptr;
        if ( value.kind != JsonValue::Kind::String ) {
            problems_.add( value.offset, subject, { "not a string", expectedSort() } );
            return nullptr;
        }
        std::shared_ptr<Sort> sort = Registry::instance().sortNamed( value.text );
        if ( !sort )
            problems_.add( value.offset, subject,
                           problems_.full() ? Finding()
                                            : unknownName( "sort", value.text, Registry::instance().sortNames() ) );
        return sort;
    }
    static std::string expectedSort()
    {
        std::string text;
        for ( const std::string &name : Registry::instance().sortNames() )
            text += ( text.empty() ? "one of " : ", " ) + name;
        return text.empty() ? "the name of a sort" : text;
    }

    bool isKnownOnce( const JsonMember &member, const Subject &subject, const std::vector<std::string> &known )
    {
        if ( std::find( known.begin(), known.end(), member.key ) == known.end() ) {
            problems_.add( member.keyOffset, subject,
                           problems_.full() ? Finding() : unknownName( "key", member.key, known ) );
            return false;
        }
        if ( member.duplicate )
            problems_.add( member.keyOffset, subject, { "the key stands twice", "once" } );
        return !member.duplicate;
    }
    // Where the text ends before the value the reader has told it.
    bool isObject( const JsonValue &value, const Subject &subject, const char *expected )
    {
        if ( value.kind == JsonValue::Kind::Object )
            return true;
        if ( value.complete || value.isContainer() )
            problems_.add( value.offset, subject, { "not an object", expected } );
        return false;
    }

    Problems &problems_;
    std::vector<CheckedRecord> subjects_; // all that have a name
};

} // namespace

bool recordNameOk( std::string_view name )
{
    const auto ok = []( char c ) {
        return ( c >= '0' && c <= '9' ) || ( c >= 'a' && c <= 'z' ) || ( c >= 'A' && c <= 'Z' ) || c == '_' ||
               c == '-' || c == '.';
    };
    return !name.empty() && name.size() <= 255 && std::all_of( name.begin(), name.end(), ok );
}

ParsedConfiguration parseConfiguration( std::string_view bytes, Problems &problems )
{
    JsonValue root;
    const JsonError error = readJson( bytes, root );
    migrate( root );
    ConfigurationParser parser( problems );
    parser.parse( root );
    if ( !error.text.empty() )
        problems.add( error.offset, {}, { error.text } );
    return std::move( parser.parsed );
}

} // namespace cs
