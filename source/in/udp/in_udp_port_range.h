// inUdpPortRange: the UDP ports firstPort..firstPort + count - 1, a value; what lies above 65535 is not used.
// Orders by first port, then by count.
#ifndef IN_UDP_PORT_RANGE_H
#define IN_UDP_PORT_RANGE_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inUdpPortRange;
struct pbStore;
struct pbString;

IN_API const struct pbSort *inUdpPortRangeSort( void );
IN_API struct inUdpPortRange *inUdpPortRangeRetain( const struct inUdpPortRange *obj );
IN_API void inUdpPortRangeRelease( const struct inUdpPortRange *obj );
IN_API struct pbObj *inUdpPortRangeObj( const struct inUdpPortRange *obj );
IN_API struct inUdpPortRange *inUdpPortRangeFrom( struct pbObj *obj );
IN_API struct pbString *inUdpPortRangeToString( const struct inUdpPortRange *obj );
IN_API pbInt inUdpPortRangeCompare( const struct inUdpPortRange *a, const struct inUdpPortRange *b );
IN_API pbBool inUdpPortRangeEquals( const struct inUdpPortRange *a, const struct inUdpPortRange *b );

// firstPort 1..65535, count 0..65535; a range of count 0 is valid and empty.
IN_API struct inUdpPortRange *inUdpPortRangeCreate( pbInt firstPort, pbInt count );
IN_API struct inUdpPortRange *inUdpPortRangeCreateFrom( const struct inUdpPortRange *source );

IN_API pbInt inUdpPortRangeFirstPort( const struct inUdpPortRange *range );
IN_API void inUdpPortRangeSetFirstPort( struct inUdpPortRange **range, pbInt firstPort );
IN_API pbInt inUdpPortRangeCount( const struct inUdpPortRange *range );
IN_API void inUdpPortRangeSetCount( struct inUdpPortRange **range, pbInt count );

// Keys "firstPort" and "count".
IN_API struct pbStore *inUdpPortRangeStore( const struct inUdpPortRange *range );
// Null unless both keys are present and valid.
IN_API struct inUdpPortRange *inUdpPortRangeTryRestore( const struct pbStore *store );

PB_DECLS_END

#endif
