// inDnsDataInSrv: where a service is to be had (RFC 2782), a value. Orders by priority, the highest first, then by
// weight, target (a record without one first) and port.
#ifndef IN_DNS_DATA_IN_SRV_H
#define IN_DNS_DATA_IN_SRV_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inDnsDataInSrv;
struct pbString;
struct pbVector;

IN_API const struct pbSort *inDnsDataInSrvSort( void );
IN_API struct inDnsDataInSrv *inDnsDataInSrvRetain( const struct inDnsDataInSrv *obj );
IN_API void inDnsDataInSrvRelease( const struct inDnsDataInSrv *obj );
IN_API struct pbObj *inDnsDataInSrvObj( const struct inDnsDataInSrv *obj );
IN_API struct inDnsDataInSrv *inDnsDataInSrvFrom( struct pbObj *obj );
// "priority weight port target". Of a target of more than 1024 code points, which came with a message and which no
// resolver can ask for, the first 1024.
IN_API struct pbString *inDnsDataInSrvToString( const struct inDnsDataInSrv *obj );
IN_API pbInt inDnsDataInSrvCompare( const struct inDnsDataInSrv *a, const struct inDnsDataInSrv *b );
IN_API pbBool inDnsDataInSrvEquals( const struct inDnsDataInSrv *a, const struct inDnsDataInSrv *b );

// No target stands for the root: the service is decidedly not available. Creation takes any weight from 0 up.
IN_API struct inDnsDataInSrv *inDnsDataInSrvCreate( pbInt priority, pbInt weight, pbInt port,
                                                    const struct pbString *optionalTarget );
IN_API struct inDnsDataInSrv *inDnsDataInSrvCreateFrom( const struct inDnsDataInSrv *source );

// Priority, weight and port: 0..65535.
IN_API pbInt inDnsDataInSrvPriority( const struct inDnsDataInSrv *srv );
IN_API void inDnsDataInSrvSetPriority( struct inDnsDataInSrv **srv, pbInt priority );
IN_API pbInt inDnsDataInSrvWeight( const struct inDnsDataInSrv *srv );
IN_API void inDnsDataInSrvSetWeight( struct inDnsDataInSrv **srv, pbInt weight );
IN_API pbInt inDnsDataInSrvPort( const struct inDnsDataInSrv *srv );
IN_API void inDnsDataInSrvSetPort( struct inDnsDataInSrv **srv, pbInt port );
// A valid domain name, or null. Not every one can be asked for: see inDnsQueryNameOk.
IN_API struct pbString *inDnsDataInSrvTarget( const struct inDnsDataInSrv *srv );
IN_API pbBool inDnsDataInSrvHasTarget( const struct inDnsDataInSrv *srv );
IN_API void inDnsDataInSrvSetTarget( struct inDnsDataInSrv **srv, const struct pbString *target );
IN_API void inDnsDataInSrvDelTarget( struct inDnsDataInSrv **srv );

// The SRV data of vec in the order in which targets are to be tried: ascending by priority, and within a priority drawn
// by weight. Those of weight 0 come last, in random order.
IN_API struct pbVector *inDnsDataInSrvVectorOrder( const struct pbVector *vec );

PB_DECLS_END

#endif
