// How the configuration service makes, reads and changes QoS stacks.
#include "cs/cs_sort_backend.h"
#include "cs/cs_warnings.h"
#include "in/qos/in_qos_options.h"
#include "in/qos/in_qos_options_internal.h"
#include "in/qos/in_qos_stack_internal.h"
#include "pb/pb_global.hpp"
#include "pb/pb_fd.hpp"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"

#include <sys/socket.h>

namespace {

constinit pb::Global<struct csSortBackend> backend;

struct pbObj *in___QosStackTryCreateFunc( struct pbStore *optionalStore, struct trAnchor *optionalAnchor )
{
    const auto options = pb::adopt( optionalStore ? inQosOptionsRestore( optionalStore ) : inQosOptionsCreate() );
    return inQosStackObj( inQosStackCreate( options.get(), optionalAnchor ) );
}

struct pbStore *in___QosStackConfigFunc( struct pbObj *obj, pbBool storeDefaults )
{
    return inQosOptionsStore( pb::adopt( inQosStackOptions( inQosStackFrom( obj ) ) ).get(), storeDefaults );
}

void in___QosStackSetConfigFunc( struct pbObj *obj, struct pbStore *store )
{
    inQosStackSetOptions( inQosStackFrom( obj ), pb::adopt( inQosOptionsRestore( store ) ).get() );
}

struct pbStore *in___QosStackNormalizeConfigFunc( struct pbStore *store, pbBool storeDefaults )
{
    return inQosOptionsStore( pb::adopt( inQosOptionsRestore( store ) ).get(), storeDefaults );
}

void in___QosStackTraceCompleteAnchorFunc( struct pbObj *obj, struct trAnchor *anchor )
{
    inQosStackTraceCompleteAnchor( inQosStackFrom( obj ), anchor );
}

// Channels take what the system gives: a priority that it refuses is not set, and nobody is told.
bool mayPrioritise( pbInt priority )
{
    const pb::Fd fd( ::socket( AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0 ) );
    const int value = static_cast<int>( priority );
    return !fd || ::setsockopt( fd.get(), SOL_SOCKET, SO_PRIORITY, &value, sizeof value ) == 0;
}

void in___QosStackWarningsFunc( const struct pbStore *config, pbBool online, struct csWarnings *warnings )
{
    const auto add = [&]( const char *key, const char *text ) {
        csWarningsAdd( warnings, key, pb::string( text ).get() );
    };
    const auto options = pb::adopt( inQosOptionsRestore( config ) );
    if ( inQosOptionsLayer3Tos( options.get() ) & 3 )
        add( "layer3Tos", "the two lowest bits are those of congestion notification (RFC 3168), not of the class" );
    if ( pbStoreHasValueCstr( config, "windowsTrafficType", -1 ) )
        add( "windowsTrafficType", "has no effect on this system" );
    if ( online && !mayPrioritise( inQosOptionsLayer2Pcp( options.get() ) ) )
        add( "layer2Pcp", "a priority above 6 needs CAP_NET_ADMIN, which this process lacks: the sockets keep theirs" );
}

} // namespace

void in___QosStackCsStartup( void )
{
    backend.set( pb::adopt( csSortBackendCreate( inQosStackSort(), in___QosStackTryCreateFunc, in___QosStackConfigFunc,
                                                 in___QosStackSetConfigFunc, in___QosStackNormalizeConfigFunc, nullptr,
                                                 in___QosStackTraceCompleteAnchorFunc ) ) );
    pbInt keyCount = 0;
    const struct csKey *keys = in___QosOptionsKeys( &keyCount );
    csSortBackendSetKeys( backend.get(), keys, keyCount );
    csSortBackendSetWarnings( backend.get(), in___QosStackWarningsFunc );
}

void in___QosStackCsShutdown( void )
{
    backend.invalidate();
}
