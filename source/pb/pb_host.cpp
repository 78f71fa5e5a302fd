// pbHost: the order of modules, their start and their end.
#include "pb/pb_format.hpp"
#include "pb/pb_module.h"
#include "pb/pb_string.hpp"

#include <algorithm>
#include <span>
#include <sstream>
#include <vector>

PB_SORT_DECLARE( pb___sort_PB_HOST )

namespace {

using Modules = std::vector<const pbModule *>;

void shutDown( const Modules &started )
{
    for ( auto module = started.rbegin(); module != started.rend(); ++module )
        ( *module )->shutdown();
    for ( auto module = started.rbegin(); module != started.rend(); ++module )
        ( *module )->shutdownWait();
}

// Puts modules in an order in which each stands behind those that it requires, else in the order given.
class Order {
public:
    explicit Order( std::span<const pbModule *const> modules ) : modules_( modules ) {}

    // False with the reason.
    bool tryMake( Modules &ordered, pb::String &reason )
    {
        for ( size_t i = 0; i < modules_.size(); ++i )
            if ( find( modules_[i]->record->name ) != modules_[i] ) {
                reason = pb::format( "two modules are named \"%s\"", pb::string( modules_[i]->record->name ) );
                return false;
            }
        return std::all_of( modules_.begin(), modules_.end(),
                            [&]( const pbModule *module ) { return tryAdd( module, ordered, reason ); } );
    }

private:
    // The first module of the name, or null.
    const pbModule *find( std::string_view name ) const
    {
        const auto found = std::find_if( modules_.begin(), modules_.end(),
                                         [=]( const pbModule *module ) { return module->record->name == name; } );
        return found == modules_.end() ? nullptr : *found;
    }

    bool tryAdd( const pbModule *module, Modules &ordered, pb::String &reason )
    {
        if ( std::find( ordered.begin(), ordered.end(), module ) != ordered.end() )
            return true;
        if ( const auto begin = std::find( path_.begin(), path_.end(), module ); begin != path_.end() ) {
            reason = pb::format( "modules require each other: %s", circle( begin ) );
            return false;
        }
        path_.push_back( module );
        std::istringstream required( module->record->requiredModules );
        for ( std::string name; required >> name; ) {
            const pbModule *other = find( name );
            if ( !other )
                reason = pb::format( "module \"%s\" requires \"%s\", which is not there",
                                     pb::string( module->record->name ), pb::string( name ) );
            if ( !other || !tryAdd( other, ordered, reason ) )
                return false;
        }
        path_.pop_back();
        ordered.push_back( module );
        return true;
    }

    // "a, b, a" for a circle of two.
    pb::String circle( Modules::const_iterator begin ) const
    {
        std::string names;
        for ( auto module = begin; module != path_.end(); ++module )
            names.append( ( *module )->record->name ).append( ", " );
        return pb::string( names.append( ( *begin )->record->name ) );
    }

    const std::span<const pbModule *const> modules_;
    Modules path_; // from a module to what it requires, that requires, and so on
};

// False with the reason; what had started is then shut down.
bool tryStart( const Modules &ordered, pb::String &reason )
{
    // Modules release their globals to a marker that faults, so they cannot start a second time.
    static std::atomic<bool> once{ false };
    if ( once.exchange( true ) ) {
        reason = pb::string( "modules start once per process" );
        return false;
    }
    Modules started;
    for ( const pbModule *module : ordered ) {
        if ( !module->startup() ) {
            shutDown( started );
            reason = pb::format( "module \"%s\" cannot start", pb::string( module->record->name ) );
            return false;
        }
        started.push_back( module );
    }
    return true;
}

} // namespace

struct pbHost final : pb::Object<struct pbHost, pb___sort_PB_HOST> {
    const Modules modules; // in the order of their start
    bool running = true;

    explicit pbHost( Modules modules ) : modules( std::move( modules ) ) {}
};

PB_OBJECT_DEFINE( pbHost, pb___sort_PB_HOST )

extern "C" {

struct pbHost *pbHostTryStart( const struct pbModule *const *modules, pbInt moduleCount,
                               struct pbString **optionalReason )
{
    PB_ASSERT( moduleCount >= 0 );
    PB_ASSERT( modules || moduleCount == 0 );
    Modules ordered;
    pb::String reason;
    Order order( { modules, static_cast<size_t>( moduleCount ) } );
    if ( order.tryMake( ordered, reason ) && tryStart( ordered, reason ) )
        return new pbHost( std::move( ordered ) );
    if ( optionalReason )
        pb::adopt( std::exchange( *optionalReason, reason.release() ) ).reset();
    return nullptr;
}

void pbHostShutdown( struct pbHost *host )
{
    PB_ASSERT( host );
    PB_ASSERT( host->running );
    host->running = false;
    shutDown( host->modules );
}

} // extern "C"
