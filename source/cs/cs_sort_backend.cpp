// csSortBackend, and the registry of sorts and modules behind it.
#include "cs/cs_sort_backend.h"

#include "cs/cs_key.h"
#include "cs/cs_sort_backend_internal.h"
#include "pb/pb_assert.hpp"

#include <algorithm>

namespace cs {

Registry &Registry::instance()
{
    static Registry &registry = *new Registry; // never destroyed: a module may withdraw while the process ends
    return registry;
}

void Registry::addSort( const std::shared_ptr<Sort> &sort )
{
    pb::Guard guard( monitor_ );
    const bool registered = std::any_of( sorts_.begin(), sorts_.end(), [&]( const auto &other ) {
        return other->sort == sort->sort || !strcmp( pbSortName( other->sort ), pbSortName( sort->sort ) );
    } );
    PB_ASSERT( !registered );
    sorts_.push_back( sort );
}

void Registry::removeSort( const std::shared_ptr<Sort> &sort )
{
    pb::Guard guard( monitor_ );
    std::erase( sorts_, sort );
    withdraw( sort->callee );
}

void Registry::withdraw( Callee &callee )
{
    callee.module = nullptr;
    while ( callee.calls )
        callEnded_.wait( monitor_ );
}

void Registry::addStep( const std::shared_ptr<UpdateStep> &step )
{
    pb::Guard guard( monitor_ );
    const auto later =
        std::find_if( steps_.begin(), steps_.end(), [&]( const auto &other ) { return other->date > step->date; } );
    steps_.insert( later, step );
}

void Registry::removeStep( const std::shared_ptr<UpdateStep> &step )
{
    pb::Guard guard( monitor_ );
    std::erase( steps_, step );
    withdraw( step->callee );
}

std::vector<std::shared_ptr<Callee>> Registry::callees() const
{
    std::vector<std::shared_ptr<Callee>> callees;
    for ( const auto &sort : sorts_ )
        callees.emplace_back( sort, &sort->callee );
    for ( const auto &step : steps_ )
        callees.emplace_back( step, &step->callee );
    return callees;
}

void Registry::setKeys( Sort &sort, std::span<const struct csKey> keys )
{
    pb::Guard guard( monitor_ );
    sort.keys = keys;
}

void Registry::setWarnings( Sort &sort, csSortWarningsFunc *warnings )
{
    pb::Guard guard( monitor_ );
    sort.warnings = warnings;
}

void Registry::addModule( const std::shared_ptr<Module> &module )
{
    pb::Guard guard( monitor_ );
    modules_.push_back( module );
    for ( const auto &callee : callees() )
        if ( !callee->module )
            callee->module = module.get();
}

void Registry::removeModule( const std::shared_ptr<Module> &module )
{
    pb::Guard guard( monitor_ );
    std::erase( modules_, module );
    std::vector<std::shared_ptr<Callee>> vouched = callees(); // kept over the wait, in which they may be unregistered
    std::erase_if( vouched, [&]( const auto &callee ) { return callee->module != module.get(); } );
    for ( const auto &callee : vouched )
        callee->module = nullptr;
    const auto underWay = [&] {
        return module->calls ||
               std::any_of( vouched.begin(), vouched.end(), []( const auto &callee ) { return callee->calls; } );
    };
    while ( underWay() )
        callEnded_.wait( monitor_ );
}

std::shared_ptr<Sort> Registry::sortNamed( std::string_view name )
{
    pb::Guard guard( monitor_ );
    const auto found = std::find_if( sorts_.begin(), sorts_.end(),
                                     [&]( const auto &sort ) { return name == pbSortName( sort->sort ); } );
    return found == sorts_.end() ? nullptr : *found;
}

std::vector<std::string> Registry::sortNames()
{
    pb::Guard guard( monitor_ );
    std::vector<std::string> names;
    for ( const auto &sort : sorts_ )
        names.emplace_back( pbSortName( sort->sort ) );
    std::sort( names.begin(), names.end() );
    return names;
}

std::span<const struct csKey> Registry::keys( const Sort &sort )
{
    pb::Guard guard( monitor_ );
    return sort.keys;
}

std::vector<std::shared_ptr<UpdateStep>> Registry::steps()
{
    pb::Guard guard( monitor_ );
    return steps_;
}

csSortWarningsFunc *Registry::warnings( const Sort &sort )
{
    pb::Guard guard( monitor_ );
    return sort.warnings;
}

std::vector<std::shared_ptr<Module>> Registry::modules()
{
    pb::Guard guard( monitor_ );
    return modules_;
}

Call::Call( std::shared_ptr<Callee> callee )
{
    Registry &registry = Registry::instance();
    pb::Guard guard( registry.monitor_ );
    if ( !callee->module )
        return;
    calls_ = &callee->calls;
    ++*calls_;
    owner_ = std::move( callee );
}

Call::Call( std::shared_ptr<Module> module )
{
    Registry &registry = Registry::instance();
    pb::Guard guard( registry.monitor_ );
    if ( std::find( registry.modules_.begin(), registry.modules_.end(), module ) == registry.modules_.end() )
        return;
    calls_ = &module->calls;
    ++*calls_;
    owner_ = std::move( module );
}

Call::~Call()
{
    if ( !calls_ )
        return;
    Registry &registry = Registry::instance();
    pb::Guard guard( registry.monitor_ );
    if ( --*calls_ == 0 )
        registry.callEnded_.wakeAll();
}

} // namespace cs

PB_SORT_DECLARE( cs___sort_CS_SORT_BACKEND )

struct csSortBackend final : pb::Object<struct csSortBackend, cs___sort_CS_SORT_BACKEND> {
    explicit csSortBackend( std::shared_ptr<cs::Sort> registered ) : sort( std::move( registered ) )
    {
        cs::Registry::instance().addSort( sort );
    }
    ~csSortBackend() { cs::Registry::instance().removeSort( sort ); }

    const std::shared_ptr<cs::Sort> sort;
};

PB_OBJECT_DEFINE( csSortBackend, cs___sort_CS_SORT_BACKEND )

extern "C" struct csSortBackend *csSortBackendCreate( const struct pbSort *sort, csSortTryCreateFunc *tryCreate,
                                                      csSortConfigFunc *config, csSortSetConfigFunc *setConfig,
                                                      csSortNormalizeConfigFunc *normalizeConfig,
                                                      csSortStatusFunc *optionalStatus,
                                                      csSortTraceCompleteAnchorFunc *optionalTraceCompleteAnchor )
{
    PB_ASSERT( sort );
    PB_ASSERT( tryCreate );
    PB_ASSERT( config );
    PB_ASSERT( setConfig );
    PB_ASSERT( normalizeConfig );
    auto registered = std::make_shared<cs::Sort>(
        cs::Sort{ sort, tryCreate, config, setConfig, normalizeConfig, optionalStatus, optionalTraceCompleteAnchor } );
    return pb::make<struct csSortBackend>( std::move( registered ) ).release();
}

extern "C" void csSortBackendSetKeys( struct csSortBackend *backend, const struct csKey *keys, pbInt keyCount )
{
    PB_ASSERT( backend );
    PB_ASSERT( keyCount >= 0 );
    PB_ASSERT( keys || keyCount == 0 );
    cs::Registry::instance().setKeys( *backend->sort, { keys, static_cast<size_t>( keyCount ) } );
}

extern "C" void csSortBackendSetWarnings( struct csSortBackend *backend, csSortWarningsFunc *warn )
{
    PB_ASSERT( backend );
    PB_ASSERT( warn );
    cs::Registry::instance().setWarnings( *backend->sort, warn );
}
