// The registry of the host's interfaces, and the scheduled process that finds new ones and ends those that are gone.
#include "in/nw/in_nw_interface_imp_linux_internal.h"
#include "in/nw/in_nw_interface_internal.h"
#include "in/nw/in_nw_interface_name.hpp"
#include "in/nw/in_nw_interface_state.h"
#include "in/nw/in_nw_interfaces_internal.h"
#include "pb/pb_buffer.h"
#include "pb/pb_dict.h"
#include "pb/pb_global.hpp"
#include "pb/pb_line_source.h"
#include "pb/pb_monitor.hpp"
#include "pb/pb_signal.h"
#include "pb/pb_string.hpp"
#include "pb/pb_timer.h"
#include "pb/pb_vector.h"
#include "pr/pr_process.h"
#include "tr/tr.hpp"

#include <algorithm>
#include <ifaddrs.h>
#include <memory>

PB_SORT_DECLARE( in___sort_IN___NW_INTERFACES )

struct in___NwInterfaces final : pb::Object<struct in___NwInterfaces, in___sort_IN___NW_INTERFACES> {
    void run();
    void shutdown();
    void shutdownWait();

    // Fixed after construction.
    const pb::Ref<struct trStream> trace = pb::adopt( trStreamCreateCstr( "IN_NW_INTERFACES", -1 ) );
    const pb::Ref<struct prProcess> process = pb::adopt( prProcessCreateWithPriorityCstr(
        1, in___NwInterfacesProcessFunc, nullptr, "in___NwInterfacesProcessFunc", -1 ) );
    const pb::Ref<struct pbSignalable> signalable = pb::adopt( prProcessCreateSignalable( process.get() ) );
    const pb::Ref<struct pbTimer> timer = pb::adopt( prProcessCreateTimer( process.get() ) );

    // The interfaces' monitors are taken under it.
    pb::Monitor monitor{ 40 };
    // Guarded by the monitor.
    pb::Ref<struct pbSignal> update PB_GUARDED_BY( monitor ) = pb::adopt( pbSignalCreate() );
    pb::Ref<struct pbDict> interfaces PB_GUARDED_BY( monitor ) = pb::adopt( pbDictCreate() ); // name to inNwInterface
    pb::Ref<struct pbDict> imps PB_GUARDED_BY( monitor ) = pb::adopt( pbDictCreate() ); // inNwInterface to its imp
    bool shuttingDown PB_GUARDED_BY( monitor ) = false;

private:
    bool removeEnded() PB_REQUIRES( monitor );
    void endUnlisted( const struct pbDict *names ) PB_REQUIRES( monitor );
    bool addNew( const struct pbDict *names ) PB_REQUIRES( monitor );
    bool add( const struct pbString *name ) PB_REQUIRES( monitor );
    bool observe( struct inNwInterface *iface );
};

PB_OBJECT_DEFINE( in___NwInterfaces, in___sort_IN___NW_INTERFACES )

namespace {

constexpr pbInt enumerationIntervalMilliseconds = 5000;

constinit pb::Global<struct in___NwInterfaces> registry;

pb::Ref<struct inNwInterface> interfaceAt( const pb::Ref<struct pbDict> &interfaces, pbInt index )
{
    return pb::adopt( inNwInterfaceFrom( pbDictValueAt( interfaces.get(), index ) ) );
}

pb::Ref<struct in___NwInterfaceImp> impOf( const pb::Ref<struct pbDict> &imps, const struct inNwInterface *iface )
{
    return pb::adopt( in___NwInterfaceImpFrom( pbDictObjKey( imps.get(), inNwInterfaceObj( iface ) ) ) );
}

void addNamesWithAddresses( struct pbDict **names )
{
    ifaddrs *list = nullptr;
    if ( getifaddrs( &list ) != 0 )
        return;
    const std::unique_ptr<ifaddrs, void ( * )( ifaddrs * )> owner( list, freeifaddrs );
    for ( const ifaddrs *ifaa = list; ifaa; ifaa = ifaa->ifa_next ) {
        PB_ASSERT( ifaa->ifa_name );
        const pb::String name = in::identifierOfInterface( ifaa->ifa_name );
        pbDictSetStringKey( names, name.get(), pbStringObj( name.get() ) );
    }
}

} // namespace

void in___NwInterfaces::run()
{
    pb::Ref<struct pbSignal> over;
    pb::Ref<struct pbDict> interfacesBefore, impsBefore; // keep what the run removes until the monitor has been left
    pb::Guard guard( monitor ); // held over the enumeration and the first refresh of new interfaces on purpose
    if ( shuttingDown )
        return;
    interfacesBefore = interfaces;
    impsBefore = imps;
    bool changed = removeEnded();
    // While the timer is scheduled it was an interface that woke the process, and the host need not be asked.
    if ( !pbTimerScheduled( timer.get() ) ) {
        auto names = pb::adopt( pbDictCreate() );
        addNamesWithAddresses( names.address() );
        in___NwInterfacesAddNamesFromProcNetDev( names.address(), "/proc/net/dev" );
        endUnlisted( names.get() );
        changed |= addNew( names.get() );
        pbTimerSchedule( timer.get(), enumerationIntervalMilliseconds );
    }
    if ( changed ) {
        pbSignalAssert( update.get() );
        over = std::exchange( update, pb::adopt( pbSignalCreate() ) );
    }
}

// Has the interface wake the enumeration at its next change; false when it has ended. Registers before it reads: a
// change in between is then seen here or wakes.
bool in___NwInterfaces::observe( struct inNwInterface *iface )
{
    inNwInterfaceUpdateAddSignalable( iface, signalable.get() );
    const auto state = pb::adopt( inNwInterfaceState( iface ) );
    return !inNwInterfaceStateEnd( state.get() );
}

bool in___NwInterfaces::removeEnded()
{
    bool changed = false;
    for ( pbInt index = 0; index < pbDictLength( interfaces.get() ); ) {
        const auto iface = interfaceAt( interfaces, index );
        if ( observe( iface.get() ) ) {
            ++index;
            continue;
        }
        inNwInterfaceUpdateDelSignalable( iface.get(), signalable.get() );
        pbDictDelAt( interfaces.address(), index );
        pbDictDelObjKey( imps.address(), inNwInterfaceObj( iface.get() ) );
        changed = true;
    }
    return changed;
}

// An interface is asked to end here and leaves the dictionaries in a later run, when its end is published.
void in___NwInterfaces::endUnlisted( const struct pbDict *names )
{
    for ( pbInt index = 0; index < pbDictLength( interfaces.get() ); ++index ) {
        const auto name = pb::adopt( pbDictKeyAt( interfaces.get(), index ) );
        if ( !pbDictHasObjKey( names, name.get() ) )
            in___NwInterfaceImpSetEnd( impOf( imps, interfaceAt( interfaces, index ).get() ).get() );
    }
}

bool in___NwInterfaces::addNew( const struct pbDict *names )
{
    bool changed = false;
    for ( pbInt index = 0; index < pbDictLength( names ); ++index ) {
        const auto name = pb::adopt( pbStringFrom( pbDictKeyAt( names, index ) ) );
        if ( !pbDictHasObjKey( interfaces.get(), pbStringObj( name.get() ) ) )
            changed |= add( name.get() );
    }
    return changed;
}

bool in___NwInterfaces::add( const struct pbString *name )
{
    const auto anchor = pb::adopt( trAnchorCreate( trace.get(), TR_ANCHOR_KIND_PLAIN ) );
    const auto imp = pb::adopt( in___NwInterfaceImpCreate( name, true, anchor.get() ) );
    const auto iface = pb::adopt( in___NwInterfaceCreate( imp.get() ) );
    if ( !observe( iface.get() ) )
        return false;
    pbDictSetStringKey( interfaces.address(), name, inNwInterfaceObj( iface.get() ) );
    pbDictSetObjKey( imps.address(), inNwInterfaceObj( iface.get() ), in___NwInterfaceImpObj( imp.get() ) );
    return true;
}

void in___NwInterfaces::shutdown()
{
    pb::Guard guard( monitor );
    shuttingDown = true; // a run that waits for the monitor makes no interface any more
    prProcessHalt( process.get() );
    for ( pbInt index = 0; index < pbDictLength( imps.get() ); ++index ) {
        const auto imp = pb::adopt( in___NwInterfaceImpFrom( pbDictValueAt( imps.get(), index ) ) );
        in___NwInterfaceImpSetEnd( imp.get() );
    }
}

void in___NwInterfaces::shutdownWait()
{
    prProcessEndWait( process.get() );
    pb::Ref<struct pbDict> ending;
    {
        pb::Guard guard( monitor );
        ending = imps;
    }
    for ( pbInt index = 0; index < pbDictLength( ending.get() ); ++index )
        in___NwInterfaceImpEndWait(
            pb::adopt( in___NwInterfaceImpFrom( pbDictValueAt( ending.get(), index ) ) ).get() );
}

void in___NwInterfacesAddNamesFromProcNetDev( struct pbDict **names, const char *path )
{
    const auto source = pb::adopt( pbLineSourceTryOpenFileCstr( path ) );
    if ( !source )
        return;
    constexpr pbInt headerLines = 2;
    pbInt lineNumber = 0;
    while ( const auto bytes = pb::adopt( pbLineSourceTryReadLineBytes( source.get() ) ) ) {
        if ( ++lineNumber <= headerLines )
            continue;
        std::string_view line( reinterpret_cast<const char *>( pbBufferBacking( bytes.get() ) ),
                               static_cast<size_t>( pbBufferLength( bytes.get() ) ) );
        line.remove_prefix( std::min( line.find_first_not_of( " \t" ), line.size() ) );
        const size_t colon = line.find( ':' );
        if ( colon == line.npos || line.find( ':', colon + 1 ) != line.npos ) // a second one: the alias of an interface
            continue;
        const pb::String name = in::identifierOfInterface( line.substr( 0, colon ) );
        pbDictSetStringKey( names, name.get(), pbStringObj( name.get() ) );
    }
}

void in___NwInterfacesProcessFunc( struct pbObj *argument )
{
    PB_ASSERT( !argument );
    registry.get()->run();
}

void in___NwInterfacesStartup( void )
{
    registry.set( pb::make<struct in___NwInterfaces>() );
    in___NwInterfacesProcessFunc( nullptr );
}

void in___NwInterfacesShutdown( void )
{
    registry.get()->shutdown();
}

void in___NwInterfacesShutdownWait( void )
{
    registry.get()->shutdownWait();
    registry.invalidate();
}

struct pbVector *inNwInterfacesVector( void )
{
    auto &self = *registry.get();
    pb::Guard guard( self.monitor );
    return pbDictValuesVector( self.interfaces.get() );
}

struct inNwInterface *inNwInterfacesInterfaceByIdentifier( const struct pbString *identifier )
{
    PB_ASSERT( identifier );
    auto &self = *registry.get();
    pb::Guard guard( self.monitor );
    return inNwInterfaceFrom( pbDictStringKey( self.interfaces.get(), identifier ) );
}

void inNwInterfacesUpdateAddSignalable( struct pbSignalable *signalable )
{
    PB_ASSERT( signalable );
    auto &self = *registry.get();
    pb::Guard guard( self.monitor );
    pbSignalAddSignalable( self.update.get(), signalable );
}

void inNwInterfacesUpdateDelSignalable( struct pbSignalable *signalable )
{
    PB_ASSERT( signalable );
    auto &self = *registry.get();
    pb::Guard guard( self.monitor );
    pbSignalDelSignalable( self.update.get(), signalable );
}
