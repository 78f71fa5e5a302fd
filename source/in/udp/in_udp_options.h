// inUdpOptions: the UDP part of a stack's options, a value. Orders by port range, absent first.
#ifndef IN_UDP_OPTIONS_H
#define IN_UDP_OPTIONS_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inUdpOptions;
struct inUdpPortRange;
struct pbStore;
struct pbString;

IN_API const struct pbSort *inUdpOptionsSort( void );
IN_API struct inUdpOptions *inUdpOptionsRetain( const struct inUdpOptions *obj );
IN_API void inUdpOptionsRelease( const struct inUdpOptions *obj );
IN_API struct pbObj *inUdpOptionsObj( const struct inUdpOptions *obj );
IN_API struct inUdpOptions *inUdpOptionsFrom( struct pbObj *obj );
IN_API struct pbString *inUdpOptionsToString( const struct inUdpOptions *obj );
IN_API pbInt inUdpOptionsCompare( const struct inUdpOptions *a, const struct inUdpOptions *b );
IN_API pbBool inUdpOptionsEquals( const struct inUdpOptions *a, const struct inUdpOptions *b );

// No port range.
IN_API struct inUdpOptions *inUdpOptionsCreate( void );
IN_API struct inUdpOptions *inUdpOptionsCreateFrom( const struct inUdpOptions *source );

// Where channels without a port of their own take their local port; null: the system's ephemeral ports.
IN_API struct inUdpPortRange *inUdpOptionsPortRange( const struct inUdpOptions *options );
IN_API pbBool inUdpOptionsHasPortRange( const struct inUdpOptions *options );
IN_API void inUdpOptionsSetPortRange( struct inUdpOptions **options, const struct inUdpPortRange *portRange );
IN_API void inUdpOptionsDelPortRange( struct inUdpOptions **options );

// Key "portRange", when there is one.
IN_API struct pbStore *inUdpOptionsStore( const struct inUdpOptions *options );
// A bad range is ignored.
IN_API struct inUdpOptions *inUdpOptionsRestore( const struct pbStore *store );

PB_DECLS_END

#endif
