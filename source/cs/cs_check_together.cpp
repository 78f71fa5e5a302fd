// Judges what shows only when all records of a configuration are known: references, values that meet, warnings.
#include "cs/cs_config_check_internal.h"

#include "cs/cs_key_internal.h"
#include "cs/cs_nearest.hpp"
#include "cs/cs_warnings.h"
#include "pb/pb_assert.hpp"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"

#include <algorithm>
#include <map>
#include <unordered_map>

// The members of the configuration that the warnings are about.
struct csWarnings {
    const cs::CheckedRecord &record;
    cs::Problems &problems;

    struct Place {
        size_t offset;
        std::string key;
    };
    // The place of the key, or of the nearest thing around it that the text has, and the key as the text has it: the
    // entries of an array move when one before them is refused.
    Place placeOf( std::string_view key ) const
    {
        size_t offset = record.offset;
        std::string found;
        for ( const cs::JsonValue *value = record.config; value && !key.empty(); ) {
            const std::string_view name = key.substr( 0, key.find( '.' ) );
            key.remove_prefix( std::min( key.size(), name.size() + 1 ) );
            size_t entries = 0;
            const auto member = std::find_if( value->members.begin(), value->members.end(), [&]( const auto &candidate ) {
                return value->kind == cs::JsonValue::Kind::Array
                           ? candidate.usable() && std::to_string( entries++ ) == name
                           : candidate.key == name;
            } );
            found += ( found.empty() ? "" : "." ) + ( member == value->members.end() ? std::string( name ) : member->key );
            if ( member == value->members.end() )
                return { offset, found + ( key.empty() ? "" : "." ) + std::string( key ) };
            value = &member->value;
            offset = key.empty() && !value->isContainer() ? value->offset : member->keyOffset;
        }
        return { offset, found + ( found.empty() || key.empty() ? "" : "." ) + std::string( key ) };
    }
};

namespace cs {
namespace {

class TogetherCheck {
public:
    TogetherCheck( const std::vector<CheckedRecord> &records, Problems &problems )
        : records_( records ), problems_( problems )
    {
        for ( const CheckedRecord &record : records_ )
            byName_.emplace( record.name, &record ); // of two with one name the first
    }

    void checkValues()
    {
        for ( const CheckedRecord &record : records_ )
            if ( record.sort && record.config )
                walk( record, *record.config, Registry::instance().keys( *record.sort ), "" );
    }
    void askSorts()
    {
        for ( const CheckedRecord &record : records_ )
            if ( record.sort )
                askSort( record );
    }

private:
    void walk( const CheckedRecord &record, const JsonValue &container, Keys keys, const std::string &path )
    {
        for ( const JsonMember &member : container.members ) {
            const struct csKey *key = member.usable() ? memberKey( keys, container, member.key ) : nullptr;
            if ( !key || !member.value.complete )
                continue;
            const std::string place = path + ( path.empty() ? "" : "." ) + member.key;
            if ( member.value.isContainer() )
                walk( record, member.value, subKeys( key ), place );
            else if ( key->recordSort )
                checkReference( record, *key, member.value, place );
            if ( ( key->flags & CS_KEY_FLAG_UNIQUE ) && problems_.wantsWarnings() )
                checkUnique( record, *key, member.value, place );
        }
    }
    void checkReference( const CheckedRecord &record, const struct csKey &key, const JsonValue &value,
                         const std::string &path )
    {
        const auto found = byName_.find( value.text );
        const CheckedRecord *const meant = found == byName_.end() ? nullptr : found->second;
        if ( meant && ( !meant->sort || sortName( *meant ) == key.recordSort ) )
            return;
        Finding finding{ .what = "unknown record \"" + printable( value.text ) + '"',
                         .expected = "the name of a record of the sort " + std::string( key.recordSort ) };
        if ( meant )
            finding.what =
                "the record \"" + printable( value.text ) + "\" is of the sort " + std::string( sortName( *meant ) );
        finding.nearest = nearestRecord( value.text, key.recordSort );
        problems_.add( value.offset, { record.printableName, printable( path ) }, finding );
    }
    // Each comparison of two names costs, and many wrong references may meet many records: the first get a proposal.
    std::string nearestRecord( const std::string &name, std::string_view sort )
    {
        auto &names = namesBySort_[sort];
        if ( names.empty() )
            for ( const CheckedRecord &other : records_ )
                if ( other.sort && sortName( other ) == sort )
                    names.push_back( other.name );
        if ( names.size() > comparisonsLeft_ )
            return "";
        comparisonsLeft_ -= names.size();
        const std::vector<std::string> near = nearestNames( name, names );
        return near.empty() ? "" : near[0];
    }
    void checkUnique( const CheckedRecord &record, const struct csKey &key, const JsonValue &value,
                      const std::string &path )
    {
        const auto [first, isNew] =
            uniques_.emplace( std::string( sortName( record ) ) + " " + key.key + " " + value.text, &record );
        if ( !isNew )
            problems_.warn( value.offset, { record.printableName, printable( path ) },
                            { "\"" + printable( value.text ) + "\" stands in \"" + first->second->printableName
                              + "\", too: where one of them lets go it is gone for both" } );
    }
    void askSort( const CheckedRecord &record )
    {
        const Call call( record.sort );
        csSortWarningsFunc *const warn = Registry::instance().warnings( *record.sort );
        if ( !call || !warn )
            return;
        const auto store = record.config ? storeFromJson( *record.config ) : pb::adopt( pbStoreCreate() );
        struct csWarnings warnings { record, problems_ };
        warn( store.get(), problems_.online(), &warnings );
    }

    static std::string_view sortName( const CheckedRecord &record ) { return pbSortName( record.sort->sort ); }

    const std::vector<CheckedRecord> &records_;
    Problems &problems_;
    std::unordered_map<std::string_view, const CheckedRecord *> byName_;
    std::map<std::string, const CheckedRecord *> uniques_; // by sort, key and value
    std::map<std::string_view, std::vector<std::string>> namesBySort_;
    size_t comparisonsLeft_ = 500'000;
};

} // namespace

void checkTogether( const std::vector<CheckedRecord> &records, bool whole, Problems &problems )
{
    TogetherCheck check( records, problems );
    if ( whole )
        check.checkValues();
    if ( problems.wantsWarnings() )
        check.askSorts();
}

} // namespace cs

extern "C" void csWarningsAdd( struct csWarnings *warnings, const char *key, const struct pbString *text )
{
    PB_ASSERT( warnings );
    PB_ASSERT( key );
    PB_ASSERT( text );
    if ( warnings->problems.full( cs::Severity::Warning ) )
        return warnings->problems.warn( 0, {}, {} );
    const csWarnings::Place place = warnings->placeOf( key );
    warnings->problems.warn( place.offset, { warnings->record.printableName, place.key }, { pb::utf8( text ) } );
}
