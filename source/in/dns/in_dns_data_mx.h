// inDnsDataMx: a mail exchange (RFC 1035, 3.3.9), a value.
#ifndef IN_DNS_DATA_MX_H
#define IN_DNS_DATA_MX_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inDnsDataMx;
struct pbString;

IN_API const struct pbSort *inDnsDataMxSort( void );
IN_API struct inDnsDataMx *inDnsDataMxRetain( const struct inDnsDataMx *obj );
IN_API void inDnsDataMxRelease( const struct inDnsDataMx *obj );
IN_API struct pbObj *inDnsDataMxObj( const struct inDnsDataMx *obj );
IN_API struct inDnsDataMx *inDnsDataMxFrom( struct pbObj *obj );
IN_API struct pbString *inDnsDataMxToString( const struct inDnsDataMx *obj );
IN_API pbInt inDnsDataMxCompare( const struct inDnsDataMx *a, const struct inDnsDataMx *b );
IN_API pbBool inDnsDataMxEquals( const struct inDnsDataMx *a, const struct inDnsDataMx *b );

// preference 0..65535; exchange is a valid domain name.
IN_API struct inDnsDataMx *inDnsDataMxCreate( pbInt preference, const struct pbString *exchange );
IN_API struct inDnsDataMx *inDnsDataMxCreateFrom( const struct inDnsDataMx *source );

IN_API pbInt inDnsDataMxPreference( const struct inDnsDataMx *mx );
IN_API void inDnsDataMxSetPreference( struct inDnsDataMx **mx, pbInt preference );
IN_API struct pbString *inDnsDataMxExchange( const struct inDnsDataMx *mx );
IN_API void inDnsDataMxSetExchange( struct inDnsDataMx **mx, const struct pbString *exchange );

PB_DECLS_END

#endif
