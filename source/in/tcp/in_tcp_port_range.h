// inTcpPortRange: the TCP ports firstPort..firstPort + count - 1, a value; what lies above 65535 is not used.
// Orders by first port, then by count.
#ifndef IN_TCP_PORT_RANGE_H
#define IN_TCP_PORT_RANGE_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inTcpPortRange;
struct pbStore;
struct pbString;

IN_API const struct pbSort *inTcpPortRangeSort( void );
IN_API struct inTcpPortRange *inTcpPortRangeRetain( const struct inTcpPortRange *obj );
IN_API void inTcpPortRangeRelease( const struct inTcpPortRange *obj );
IN_API struct pbObj *inTcpPortRangeObj( const struct inTcpPortRange *obj );
IN_API struct inTcpPortRange *inTcpPortRangeFrom( struct pbObj *obj );
IN_API struct pbString *inTcpPortRangeToString( const struct inTcpPortRange *obj );
IN_API pbInt inTcpPortRangeCompare( const struct inTcpPortRange *a, const struct inTcpPortRange *b );
IN_API pbBool inTcpPortRangeEquals( const struct inTcpPortRange *a, const struct inTcpPortRange *b );

// firstPort 1..65535, count 0..65535; a range of count 0 is valid and empty.
IN_API struct inTcpPortRange *inTcpPortRangeCreate( pbInt firstPort, pbInt count );
IN_API struct inTcpPortRange *inTcpPortRangeCreateFrom( const struct inTcpPortRange *source );

IN_API pbInt inTcpPortRangeFirstPort( const struct inTcpPortRange *range );
IN_API void inTcpPortRangeSetFirstPort( struct inTcpPortRange **range, pbInt firstPort );
IN_API pbInt inTcpPortRangeCount( const struct inTcpPortRange *range );
IN_API void inTcpPortRangeSetCount( struct inTcpPortRange **range, pbInt count );

// Keys "firstPort" and "count".
IN_API struct pbStore *inTcpPortRangeStore( const struct inTcpPortRange *range );
// Null unless both keys are present and valid.
IN_API struct inTcpPortRange *inTcpPortRangeTryRestore( const struct pbStore *store );

PB_DECLS_END

#endif
