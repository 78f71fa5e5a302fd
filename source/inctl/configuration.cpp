// Configuration: a configuration file and its live objects.
#include "inctl/configuration.hpp"

#include "inctl/exit_code.hpp"
#include "inctl/items.hpp"
#include "inctl/nearest.hpp"
#include "inctl/object_state.hpp"
#include "inctl/records.hpp"
#include "inctl/store_text.hpp"

#include "cs/cs_diagnosis.h"
#include "pb/pb_store.h"

#include <fmt/format.h>

namespace inctl {
namespace {

// At least one line, since a file was refused.
std::vector<std::string> problemLines( struct pbVector *problems, const std::string &name )
{
    std::vector<std::string> lines;
    for ( const pb::String &problem : items( pb::adopt( problems ), pbStringFrom ) )
        lines.push_back( pb::utf8( problem ) );
    if ( lines.empty() )
        lines.push_back( name + ":1:1: error: the file cannot be used" );
    return lines;
}

} // namespace

pb::String pathOf( const std::string &path )
{
    auto text = pb::adopt( pbStringTryCreateFromUtf8( path.data(), static_cast<pbInt>( path.size() ) ) );
    if ( !text )
        throw Failure{ Exit::Usage, printable( pb::utf8( pb::string( path ) ) ) +
                                        ": the path is not UTF-8; give the file another name or a link to it" };
    return text;
}

Configuration::Configuration( std::string path ) : path_( std::move( path ) )
{
    struct pbVector *diagnoses = nullptr;
    configuration_ = pb::adopt( csConfigurationTryLoadDiagnosed( pathOf( path_ ).get(), &diagnoses ) );
    if ( const auto told = pb::adopt( diagnoses ); !configuration_ )
        refuse( told );
}

Configuration::Configuration( std::string_view text, const std::string &name )
{
    struct pbVector *problems = nullptr;
    configuration_ = pb::adopt(
        csConfigurationTryParse( text.data(), static_cast<pbInt>( text.size() ), pb::string( name ).get(), &problems ) );
    if ( configuration_ )
        pbVectorRelease( problems );
    else
        throw Failure{ Exit::Configuration, fmt::format( "{}", fmt::join( problemLines( problems, name ), "\n" ) ) };
}

Exit exitOf( pbInt origin )
{
    switch ( origin ) {
    case CS_DIAGNOSIS_OF_SYSTEM:
        return Exit::System;
    case CS_DIAGNOSIS_OF_PERMISSION:
        return Exit::Permission;
    default:
        return Exit::Configuration;
    }
}

void refuse( const pb::Ref<struct pbVector> &diagnoses )
{
    std::string lines;
    Exit exit = Exit::Configuration;
    for ( const auto &diagnosis : items( diagnoses, csDiagnosisFrom ) ) {
        lines += ( lines.empty() ? "" : "\n" ) + pb::utf8( pb::adopt( csDiagnosisToString( diagnosis.get() ) ) );
        exit = exitOf( csDiagnosisOrigin( diagnosis.get() ) ); // one that says why the file was not read is the only one
    }
    throw Failure{ exit, lines };
}

Configuration::~Configuration()
{
    if ( started_ )
        csConfigurationStop( configuration_.get() );
}

void Configuration::start()
{
    csConfigurationStart( configuration_.get() );
    started_ = true;
}

Configuration::Reload Configuration::reload()
{
    struct pbVector *problems = nullptr;
    struct pbVector *changes = nullptr;
    if ( !csConfigurationTryReload( configuration_.get(), pathOf( path_ ).get(), &problems, &changes ) )
        return { problemLines( problems, path_ ), {} };
    pbVectorRelease( problems );
    Reload reload;
    for ( const auto &change : items( pb::adopt( changes ), pbStoreFrom ) )
        reload.changes.push_back(
            { textIn( change, "name" ), textIn( change, "sort" ), textIn( change, "change" ) } );
    return reload;
}

Configuration::Object::Object( const struct csRecord *record )
    : name( pb::utf8( pb::adopt( csRecordName( record ) ) ) ),
      sort( pb::utf8( pb::adopt( csRecordSortName( record ) ) ) ), object( pb::adopt( csRecordObject( record ) ) ),
      status( pb::adopt( csRecordStatus( record ) ) )
{
}

std::vector<Configuration::Object> Configuration::objects() const
{
    std::vector<Object> result;
    for ( const auto &record : recordsOf( configuration_.get() ) )
        result.emplace_back( record.get() );
    return result;
}

pb::Ref<struct pbObj> Configuration::object( const std::string &name, const struct pbSort *sort ) const
{
    if ( auto found = pb::adopt( csConfigurationObject( configuration_.get(), pb::string( name ).get(), sort ) ) )
        return found;
    failToFind( name, sort );
}

pb::Ref<struct pbStore> Configuration::store( const std::string &name, const struct pbSort *sort ) const
{
    const std::vector<Object> all = objects();
    for ( size_t i = 0; i < all.size(); ++i )
        if ( all[i].name == name && all[i].sort == pbSortName( sort ) )
            return pb::adopt( csConfigurationStoreAt( configuration_.get(), static_cast<pbInt>( i ) ) );
    failToFind( name, sort );
}

void Configuration::failToFind( const std::string &name, const struct pbSort *sort ) const
{
    std::vector<std::string> names;
    for ( const Object &object : objects() )
        if ( object.sort == pbSortName( sort ) )
            names.push_back( object.name );
    throw Failure{ Exit::No,
                   fmt::format( "no {} is named {}{}", pbSortName( sort ), name, suggestion( name, names ) ) };
}

} // namespace inctl
