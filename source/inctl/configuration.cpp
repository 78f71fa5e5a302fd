// Configuration: a configuration file and its live objects.
#include "inctl/configuration.hpp"

#include "inctl/exit_code.hpp"
#include "inctl/items.hpp"
#include "inctl/nearest.hpp"

#include "cs/cs_diagnosis.h"

#include <fmt/format.h>

namespace inctl {

Configuration::Configuration( const std::string &path )
{
    struct pbVector *diagnoses = nullptr;
    configuration_ = pb::adopt( csConfigurationTryLoadDiagnosed( pb::string( path ).get(), &diagnoses ) );
    if ( const auto told = pb::adopt( diagnoses ); !configuration_ )
        refuse( told );
}

Configuration::Configuration( std::string_view text, const std::string &name )
{
    struct pbVector *problems = nullptr;
    configuration_ = pb::adopt(
        csConfigurationTryParse( text.data(), static_cast<pbInt>( text.size() ), pb::string( name ).get(), &problems ) );
    const auto told = pb::adopt( problems );
    if ( configuration_ )
        return;
    std::string lines;
    for ( const pb::String &problem : items( told, pbStringFrom ) )
        lines += ( lines.empty() ? "" : "\n" ) + pb::utf8( problem );
    throw Failure{ Exit::Configuration, lines };
}

void refuse( const pb::Ref<struct pbVector> &diagnoses )
{
    std::string lines;
    Exit exit = Exit::Configuration;
    for ( const auto &diagnosis : items( diagnoses, csDiagnosisFrom ) ) {
        lines += ( lines.empty() ? "" : "\n" ) + pb::utf8( pb::adopt( csDiagnosisToString( diagnosis.get() ) ) );
        if ( csDiagnosisOfSystem( diagnosis.get() ) )
            exit = Exit::System;
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

std::vector<Configuration::Object> Configuration::objects() const
{
    const struct csConfiguration *configuration = configuration_.get();
    std::vector<Object> result;
    for ( pbInt i = 0; i < csConfigurationLength( configuration ); ++i )
        result.push_back( { pb::utf8( pb::adopt( csConfigurationNameAt( configuration, i ) ) ),
                            pb::utf8( pb::adopt( csConfigurationSortNameAt( configuration, i ) ) ),
                            pb::adopt( csConfigurationObjectAt( configuration, i ) ),
                            pb::adopt( csConfigurationStatusAt( configuration, i ) ) } );
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
