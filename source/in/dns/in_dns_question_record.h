// inDnsQuestionRecord: an entry of a DNS message's question section (RFC 1035, 4.1.2), a value.
#ifndef IN_DNS_QUESTION_RECORD_H
#define IN_DNS_QUESTION_RECORD_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inDnsQuestionRecord;
struct pbString;

IN_API const struct pbSort *inDnsQuestionRecordSort( void );
IN_API struct inDnsQuestionRecord *inDnsQuestionRecordRetain( const struct inDnsQuestionRecord *obj );
IN_API void inDnsQuestionRecordRelease( const struct inDnsQuestionRecord *obj );
IN_API struct pbObj *inDnsQuestionRecordObj( const struct inDnsQuestionRecord *obj );
IN_API struct inDnsQuestionRecord *inDnsQuestionRecordFrom( struct pbObj *obj );
IN_API struct pbString *inDnsQuestionRecordToString( const struct inDnsQuestionRecord *obj );
IN_API pbInt inDnsQuestionRecordCompare( const struct inDnsQuestionRecord *a, const struct inDnsQuestionRecord *b );
IN_API pbBool inDnsQuestionRecordEquals( const struct inDnsQuestionRecord *a, const struct inDnsQuestionRecord *b );

// No name stands for the root. Any type and class of 16 bits.
IN_API struct inDnsQuestionRecord *inDnsQuestionRecordCreate( const struct pbString *optionalIdn, pbInt qtype,
                                                              pbInt qclass );
IN_API struct inDnsQuestionRecord *inDnsQuestionRecordCreateFrom( const struct inDnsQuestionRecord *source );

// A valid domain name, or null.
IN_API struct pbString *inDnsQuestionRecordName( const struct inDnsQuestionRecord *record );
IN_API pbBool inDnsQuestionRecordHasName( const struct inDnsQuestionRecord *record );
IN_API void inDnsQuestionRecordSetName( struct inDnsQuestionRecord **record, const struct pbString *idn );
IN_API void inDnsQuestionRecordDelName( struct inDnsQuestionRecord **record );
IN_API pbInt inDnsQuestionRecordType( const struct inDnsQuestionRecord *record );
IN_API void inDnsQuestionRecordSetType( struct inDnsQuestionRecord **record, pbInt qtype );
IN_API pbInt inDnsQuestionRecordClass( const struct inDnsQuestionRecord *record );
IN_API void inDnsQuestionRecordSetClass( struct inDnsQuestionRecord **record, pbInt qclass );

PB_DECLS_END

#endif
