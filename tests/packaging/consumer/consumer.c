// A C11 program of a user: starts the modules, reads the interfaces, sends a datagram to itself, and ends.
#include "cs/cs_module.h"
#include "in/in.h"
#include "iri/iri_module.h"
#include "pb/pb_alertable.h"
#include "pb/pb_barrier.h"
#include "pb/pb_buffer.h"
#include "pb/pb_module.h"
#include "pb/pb_string.h"
#include "pb/pb_vector.h"
#include "pr/pr_module.h"
#include "rfc/rfc_module.h"
#include "tr/tr_module.h"
#include "unix/unix_module.h"

#include <stdio.h>
#include <string.h>

static int exchange( void )
{
    struct inOptions *options = inOptionsCreate();
    inOptionsSetFlags( &options, IN_FLAG_LOOPBACK_ONLY );
    struct inStack *stack = inStackCreate( options, NULL );
    struct inUdpChannel *channel = inUdpChannelTryCreate( stack, NULL, NULL, NULL, IN_UDP_PORT_INVALID, 0, NULL );
    if ( !channel )
        return 1;

    struct pbBarrier *barrier = pbBarrierCreate( 1 );
    struct pbAlertable *alertable = pbAlertableCreateBarrier( barrier );
    struct inUdpAddress *address = inUdpChannelLocalAddress( channel );
    inUdpChannelSendBytes( channel, address, "hello", 5 );
    inUdpChannelReceiveAddAlertable( channel, alertable );
    pbBarrierPassTimed( barrier, 5000 );
    inUdpChannelReceiveDelAlertable( channel, alertable );

    struct inUdpPacket *packet = inUdpChannelReceive( channel );
    int result = 1;
    if ( packet ) {
        struct pbBuffer *payload = inUdpPacketPayload( packet );
        result = pbBufferLength( payload ) == 5 && memcmp( pbBufferBacking( payload ), "hello", 5 ) == 0 ? 0 : 1;
        pbBufferRelease( payload );
    }
    inUdpPacketRelease( packet );
    inUdpAddressRelease( address );
    pbAlertableRelease( alertable );
    pbBarrierRelease( barrier );
    inUdpChannelRelease( channel );
    inStackRelease( stack );
    inOptionsRelease( options );
    return result;
}

int main( void )
{
    const struct pbModule *modules[] = { pbModuleDescriptor(), trModule(), prModule(),  unixModule(),
                                         rfcModule(),          iriModule(), csModule(), inModule() };
    struct pbString *reason = NULL;
    struct pbHost *host = pbHostTryStart( modules, PB_SIZEOF_ARRAY( modules ), &reason );
    if ( !host )
        return 2;
    struct pbVector *interfaces = inNwInterfacesVector();
    printf( "%s %s, %d interfaces\n", modules[7]->record->name, modules[7]->record->version, (int)pbVectorLength( interfaces ) );
    pbVectorRelease( interfaces );
    const int result = exchange();
    pbHostShutdown( host );
    pbHostRelease( host );
    return result;
}
