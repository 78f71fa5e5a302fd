// inDnsDataSoa: the start of a zone of authority (RFC 1035, 3.3.13), a value.
#ifndef IN_DNS_DATA_SOA_H
#define IN_DNS_DATA_SOA_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inDnsDataSoa;
struct pbString;

IN_API const struct pbSort *inDnsDataSoaSort( void );
IN_API struct inDnsDataSoa *inDnsDataSoaRetain( const struct inDnsDataSoa *obj );
IN_API void inDnsDataSoaRelease( const struct inDnsDataSoa *obj );
IN_API struct pbObj *inDnsDataSoaObj( const struct inDnsDataSoa *obj );
IN_API struct inDnsDataSoa *inDnsDataSoaFrom( struct pbObj *obj );
IN_API struct pbString *inDnsDataSoaToString( const struct inDnsDataSoa *obj );
IN_API pbInt inDnsDataSoaCompare( const struct inDnsDataSoa *a, const struct inDnsDataSoa *b );
IN_API pbBool inDnsDataSoaEquals( const struct inDnsDataSoa *a, const struct inDnsDataSoa *b );

// mname is the primary server, rname the mailbox of who is responsible; both are valid domain names. serial is taken as
// signed 32 bits; the times are seconds, 0..0x7FFFFFFF.
IN_API struct inDnsDataSoa *inDnsDataSoaCreate( const struct pbString *mname, const struct pbString *rname,
                                                pbInt serial, pbInt refresh, pbInt retry, pbInt expire, pbInt minimum );
IN_API struct inDnsDataSoa *inDnsDataSoaCreateFrom( const struct inDnsDataSoa *source );

IN_API struct pbString *inDnsDataSoaMname( const struct inDnsDataSoa *soa );
IN_API void inDnsDataSoaSetMname( struct inDnsDataSoa **soa, const struct pbString *mname );
IN_API struct pbString *inDnsDataSoaRname( const struct inDnsDataSoa *soa );
IN_API void inDnsDataSoaSetRname( struct inDnsDataSoa **soa, const struct pbString *rname );
IN_API pbInt inDnsDataSoaSerial( const struct inDnsDataSoa *soa );
IN_API void inDnsDataSoaSetSerial( struct inDnsDataSoa **soa, pbInt serial );
IN_API pbInt inDnsDataSoaRefresh( const struct inDnsDataSoa *soa );
IN_API void inDnsDataSoaSetRefresh( struct inDnsDataSoa **soa, pbInt refresh );
IN_API pbInt inDnsDataSoaRetry( const struct inDnsDataSoa *soa );
IN_API void inDnsDataSoaSetRetry( struct inDnsDataSoa **soa, pbInt retry );
IN_API pbInt inDnsDataSoaExpire( const struct inDnsDataSoa *soa );
IN_API void inDnsDataSoaSetExpire( struct inDnsDataSoa **soa, pbInt expire );
IN_API pbInt inDnsDataSoaMinimum( const struct inDnsDataSoa *soa );
IN_API void inDnsDataSoaSetMinimum( struct inDnsDataSoa **soa, pbInt minimum );

PB_DECLS_END

#endif
