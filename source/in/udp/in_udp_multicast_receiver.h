// inUdpMulticastReceiver: a UDP socket that receives what is sent to a multicast group and port, without a stack.
// Threads:   any; calls on one receiver may run concurrently. Only ReceiveWait and BlockReceive block.
// Failures:  TryCreate returns null and traces the failed step. A failed socket shows in Error for good; after that
//            nothing is received any more.
#ifndef IN_UDP_MULTICAST_RECEIVER_H
#define IN_UDP_MULTICAST_RECEIVER_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inAddress;
struct inUdpAddress;
struct inUdpMulticastReceiver;
struct inUdpPacket;
struct pbAlertable;
struct pbSignal;
struct pbSignalable;
struct pbString;
struct trAnchor;

IN_API const struct pbSort *inUdpMulticastReceiverSort( void );
IN_API struct inUdpMulticastReceiver *inUdpMulticastReceiverRetain( const struct inUdpMulticastReceiver *obj );
IN_API void inUdpMulticastReceiverRelease( const struct inUdpMulticastReceiver *obj );
IN_API struct pbObj *inUdpMulticastReceiverObj( const struct inUdpMulticastReceiver *obj );
IN_API struct inUdpMulticastReceiver *inUdpMulticastReceiverFrom( struct pbObj *obj );
IN_API struct pbString *inUdpMulticastReceiverToString( const struct inUdpMulticastReceiver *obj );
IN_API pbInt inUdpMulticastReceiverCompare( const struct inUdpMulticastReceiver *a,
                                            const struct inUdpMulticastReceiver *b );
IN_API pbBool inUdpMulticastReceiverEquals( const struct inUdpMulticastReceiver *a,
                                            const struct inUdpMulticastReceiver *b );

// Joins the group on the named interface; without a name, or with one that no interface has, on one that the system
// chooses. Without a port (IN_UDP_PORT_INVALID) there is no socket to join with, and the result is null.
// When several receivers of a host have joined one group on different interfaces, the kernel hands each of them the
// group's datagrams of all those interfaces (IP_MULTICAST_ALL, on by default).
IN_API struct inUdpMulticastReceiver *inUdpMulticastReceiverTryCreate( const struct inAddress *multicastAddress,
                                                                       const struct pbString *optionalInterface,
                                                                       pbInt optionalLocalPort,
                                                                       struct trAnchor *optionalAnchor );

// The group and port.
IN_API struct inUdpAddress *inUdpMulticastReceiverLocalAddress( const struct inUdpMulticastReceiver *recv );
IN_API struct pbString *inUdpMulticastReceiverInterface( const struct inUdpMulticastReceiver *recv ); // or null
IN_API pbBool inUdpMulticastReceiverHasInterface( const struct inUdpMulticastReceiver *recv );
IN_API pbBool inUdpMulticastReceiverError( const struct inUdpMulticastReceiver *recv );
IN_API void inUdpMulticastReceiverErrorAddSignalable( struct inUdpMulticastReceiver *recv,
                                                      struct pbSignalable *signalable );
IN_API void inUdpMulticastReceiverErrorDelSignalable( struct inUdpMulticastReceiver *recv,
                                                      struct pbSignalable *signalable );

// The oldest packet that has arrived, or null.
IN_API struct inUdpPacket *inUdpMulticastReceiverReceive( struct inUdpMulticastReceiver *recv );
// The alert is set while packets wait, also after an error: look at Error before waiting for it.
IN_API void inUdpMulticastReceiverReceiveAddAlertable( struct inUdpMulticastReceiver *recv,
                                                       struct pbAlertable *alertable );
IN_API void inUdpMulticastReceiverReceiveDelAlertable( struct inUdpMulticastReceiver *recv,
                                                       struct pbAlertable *alertable );
// Blocks until a packet waits, the receiver has failed or the signal is asserted.
IN_API void inUdpMulticastReceiverReceiveWait( struct inUdpMulticastReceiver *recv,
                                               struct pbSignal *optionalAbortSignal );
// Blocks until a packet arrives; null after an error or an abort.
IN_API struct inUdpPacket *inUdpMulticastReceiverBlockReceive( struct inUdpMulticastReceiver *recv,
                                                               struct pbSignal *optionalAbortSignal );

PB_DECLS_END

#endif
