// inDnsResourceRecord: an entry of a DNS message's answer, authority or additional section (RFC 1035, 4.1.3), a value.
#ifndef IN_DNS_RESOURCE_RECORD_H
#define IN_DNS_RESOURCE_RECORD_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inAddress;
struct inDnsDataInSrv;
struct inDnsDataMx;
struct inDnsDataSoa;
struct inDnsDataTxt;
struct inDnsResourceRecord;
struct pbString;

IN_API const struct pbSort *inDnsResourceRecordSort( void );
IN_API struct inDnsResourceRecord *inDnsResourceRecordRetain( const struct inDnsResourceRecord *obj );
IN_API void inDnsResourceRecordRelease( const struct inDnsResourceRecord *obj );
IN_API struct pbObj *inDnsResourceRecordObj( const struct inDnsResourceRecord *obj );
IN_API struct inDnsResourceRecord *inDnsResourceRecordFrom( struct pbObj *obj );
IN_API struct pbString *inDnsResourceRecordToString( const struct inDnsResourceRecord *obj );
IN_API pbInt inDnsResourceRecordCompare( const struct inDnsResourceRecord *a, const struct inDnsResourceRecord *b );
IN_API pbBool inDnsResourceRecordEquals( const struct inDnsResourceRecord *a, const struct inDnsResourceRecord *b );

// The owner name comes first, null for the root; cls is 0..65535, ttl seconds of 0..0x7FFFFFFF. A, AAAA and SRV are
// always of class 1 (IN).
IN_API struct inDnsResourceRecord *inDnsResourceRecordCreateCname( const struct pbString *optionalIdn, pbInt cls,
                                                                   pbInt ttl, const struct pbString *cname );
IN_API struct inDnsResourceRecord *inDnsResourceRecordCreateMx( const struct pbString *optionalIdn, pbInt cls,
                                                                pbInt ttl, const struct inDnsDataMx *mx );
IN_API struct inDnsResourceRecord *inDnsResourceRecordCreateNs( const struct pbString *optionalIdn, pbInt cls,
                                                                pbInt ttl, const struct pbString *ns );
IN_API struct inDnsResourceRecord *inDnsResourceRecordCreatePtr( const struct pbString *optionalIdn, pbInt cls,
                                                                 pbInt ttl, const struct pbString *ptr );
IN_API struct inDnsResourceRecord *inDnsResourceRecordCreateSoa( const struct pbString *optionalIdn, pbInt cls,
                                                                 pbInt ttl, const struct inDnsDataSoa *soa );
IN_API struct inDnsResourceRecord *inDnsResourceRecordCreateTxt( const struct pbString *optionalIdn, pbInt cls,
                                                                 pbInt ttl, const struct inDnsDataTxt *txt );
IN_API struct inDnsResourceRecord *inDnsResourceRecordCreateInA( const struct pbString *optionalIdn, pbInt ttl,
                                                                 const struct inAddress *ina );
IN_API struct inDnsResourceRecord *inDnsResourceRecordCreateInAaaa( const struct pbString *optionalIdn, pbInt ttl,
                                                                    const struct inAddress *ina );
IN_API struct inDnsResourceRecord *inDnsResourceRecordCreateInSrv( const struct pbString *optionalIdn, pbInt ttl,
                                                                   const struct inDnsDataInSrv *srv );
IN_API struct inDnsResourceRecord *inDnsResourceRecordCreateFrom( const struct inDnsResourceRecord *source );

// A valid domain name, or null.
IN_API struct pbString *inDnsResourceRecordName( const struct inDnsResourceRecord *record );
IN_API pbBool inDnsResourceRecordHasName( const struct inDnsResourceRecord *record );
IN_API void inDnsResourceRecordSetName( struct inDnsResourceRecord **record, const struct pbString *idn );
IN_API void inDnsResourceRecordDelName( struct inDnsResourceRecord **record );
IN_API pbInt inDnsResourceRecordType( const struct inDnsResourceRecord *record );
IN_API pbInt inDnsResourceRecordClass( const struct inDnsResourceRecord *record );
IN_API pbInt inDnsResourceRecordTtl( const struct inDnsResourceRecord *record );
IN_API void inDnsResourceRecordSetTtl( struct inDnsResourceRecord **record, pbInt ttl );

// The data, null when the record has none of that kind. At most one kind is there.
IN_API struct pbString *inDnsResourceRecordCname( const struct inDnsResourceRecord *record );
IN_API struct inDnsDataMx *inDnsResourceRecordMx( const struct inDnsResourceRecord *record );
IN_API struct pbString *inDnsResourceRecordNs( const struct inDnsResourceRecord *record );
IN_API struct pbString *inDnsResourceRecordPtr( const struct inDnsResourceRecord *record );
IN_API struct inDnsDataSoa *inDnsResourceRecordSoa( const struct inDnsResourceRecord *record );
IN_API struct inDnsDataTxt *inDnsResourceRecordTxt( const struct inDnsResourceRecord *record );
IN_API struct inAddress *inDnsResourceRecordInA( const struct inDnsResourceRecord *record );
IN_API struct inAddress *inDnsResourceRecordInAaaa( const struct inDnsResourceRecord *record );
IN_API struct inDnsDataInSrv *inDnsResourceRecordInSrv( const struct inDnsResourceRecord *record );

// Each takes the place of whatever data the record had and sets type and class as well. NS and PTR data, too, set the
// type of CNAME: tell records by the data that they have, not by their type.
IN_API void inDnsResourceRecordSetCname( struct inDnsResourceRecord **record, pbInt cls, const struct pbString *cname );
IN_API void inDnsResourceRecordSetMx( struct inDnsResourceRecord **record, pbInt cls, const struct inDnsDataMx *mx );
IN_API void inDnsResourceRecordSetNs( struct inDnsResourceRecord **record, pbInt cls, const struct pbString *ns );
IN_API void inDnsResourceRecordSetPtr( struct inDnsResourceRecord **record, pbInt cls, const struct pbString *ptr );
IN_API void inDnsResourceRecordSetSoa( struct inDnsResourceRecord **record, pbInt cls, const struct inDnsDataSoa *soa );
IN_API void inDnsResourceRecordSetTxt( struct inDnsResourceRecord **record, pbInt cls, const struct inDnsDataTxt *txt );
// An address of version 4.
IN_API void inDnsResourceRecordSetInA( struct inDnsResourceRecord **record, const struct inAddress *ina );
// An address of version 6.
IN_API void inDnsResourceRecordSetInAaaa( struct inDnsResourceRecord **record, const struct inAddress *ina );
IN_API void inDnsResourceRecordSetInSrv( struct inDnsResourceRecord **record, const struct inDnsDataInSrv *srv );

PB_DECLS_END

#endif
