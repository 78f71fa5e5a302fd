// inUdpMatch: a set of UDP addresses that packets are matched against, a value.
#ifndef IN_UDP_MATCH_H
#define IN_UDP_MATCH_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inUdpAddress;
struct inUdpMatch;
struct inUdpPacket;
struct pbString;

IN_API const struct pbSort *inUdpMatchSort( void );
IN_API struct inUdpMatch *inUdpMatchRetain( const struct inUdpMatch *obj );
IN_API void inUdpMatchRelease( const struct inUdpMatch *obj );
IN_API struct pbObj *inUdpMatchObj( const struct inUdpMatch *obj );
IN_API struct inUdpMatch *inUdpMatchFrom( struct pbObj *obj );
IN_API struct pbString *inUdpMatchToString( const struct inUdpMatch *obj );
IN_API pbInt inUdpMatchCompare( const struct inUdpMatch *a, const struct inUdpMatch *b );
IN_API pbBool inUdpMatchEquals( const struct inUdpMatch *a, const struct inUdpMatch *b );

// Empty.
IN_API struct inUdpMatch *inUdpMatchCreate( void );
IN_API struct inUdpMatch *inUdpMatchCreateFrom( const struct inUdpMatch *source );
IN_API pbBool inUdpMatchHas( const struct inUdpMatch *match, const struct inUdpAddress *address );
IN_API void inUdpMatchSet( struct inUdpMatch **match, const struct inUdpAddress *address );
IN_API void inUdpMatchDel( struct inUdpMatch **match, const struct inUdpAddress *address );
// True when the packet's remote address is in the set.
IN_API pbBool inUdpMatchMatchPacket( const struct inUdpMatch *match, const struct inUdpPacket *packet );

PB_DECLS_END

#endif
