// inDnsMessage: a DNS message (RFC 1035, 4.1), a value.
#ifndef IN_DNS_MESSAGE_H
#define IN_DNS_MESSAGE_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inDnsMessage;
struct inDnsQuestionRecord;
struct inDnsResourceRecord;
struct pbVector;

#define IN_DNS_OPERATION_OK( operation ) ( (uint64_t)( operation ) <= 15 )
#define IN_DNS_RESPONSE_OK( response ) ( (uint64_t)( response ) <= 15 )

IN_API const struct pbSort *inDnsMessageSort( void );
IN_API struct inDnsMessage *inDnsMessageRetain( const struct inDnsMessage *obj );
IN_API void inDnsMessageRelease( const struct inDnsMessage *obj );
IN_API struct pbObj *inDnsMessageObj( const struct inDnsMessage *obj );
IN_API struct inDnsMessage *inDnsMessageFrom( struct pbObj *obj );
IN_API struct pbString *inDnsMessageToString( const struct inDnsMessage *obj );
IN_API pbInt inDnsMessageCompare( const struct inDnsMessage *a, const struct inDnsMessage *b );
IN_API pbBool inDnsMessageEquals( const struct inDnsMessage *a, const struct inDnsMessage *b );

// A query with id 0, operation 0, response 0, no flag set and empty sections.
IN_API struct inDnsMessage *inDnsMessageCreate( void );
IN_API struct inDnsMessage *inDnsMessageCreateFrom( const struct inDnsMessage *source );

// 0..65535
IN_API pbInt inDnsMessageId( const struct inDnsMessage *msg );
IN_API void inDnsMessageSetId( struct inDnsMessage **msg, pbInt id );
IN_API pbBool inDnsMessageIsQuery( const struct inDnsMessage *msg );
IN_API void inDnsMessageSetQuery( struct inDnsMessage **msg, pbBool query );
// The kind of query: OPCODE, 0..15.
IN_API pbInt inDnsMessageOperation( const struct inDnsMessage *msg );
IN_API void inDnsMessageSetOperation( struct inDnsMessage **msg, pbInt operation );
IN_API pbBool inDnsMessageAuthoritativeAnswer( const struct inDnsMessage *msg );
IN_API void inDnsMessageSetAuthoritativeAnswer( struct inDnsMessage **msg, pbBool authoritativeAnswer );
IN_API pbBool inDnsMessageTruncation( const struct inDnsMessage *msg );
IN_API void inDnsMessageSetTruncation( struct inDnsMessage **msg, pbBool truncation );
IN_API pbBool inDnsMessageRecursionDesired( const struct inDnsMessage *msg );
IN_API void inDnsMessageSetRecursionDesired( struct inDnsMessage **msg, pbBool recursionDesired );
IN_API pbBool inDnsMessageRecursionAvailable( const struct inDnsMessage *msg );
IN_API void inDnsMessageSetRecursionAvailable( struct inDnsMessage **msg, pbBool recursionAvailable );
// The outcome: RCODE, 0..15.
IN_API pbInt inDnsMessageResponse( const struct inDnsMessage *msg );
IN_API void inDnsMessageSetResponse( struct inDnsMessage **msg, pbInt response );

// The sections: vectors of at most 65535 records.
IN_API pbInt inDnsMessageQuestionLength( const struct inDnsMessage *msg );
IN_API struct inDnsQuestionRecord *inDnsMessageQuestionRecordAt( const struct inDnsMessage *msg, pbInt index );
IN_API struct pbVector *inDnsMessageQuestionVector( const struct inDnsMessage *msg );
IN_API void inDnsMessageSetQuestionVector( struct inDnsMessage **msg, const struct pbVector *questionVector );
IN_API pbInt inDnsMessageAnswerLength( const struct inDnsMessage *msg );
IN_API struct inDnsResourceRecord *inDnsMessageAnswerResourceRecordAt( const struct inDnsMessage *msg, pbInt index );
IN_API struct pbVector *inDnsMessageAnswerVector( const struct inDnsMessage *msg );
IN_API void inDnsMessageSetAnswerVector( struct inDnsMessage **msg, const struct pbVector *answerVector );
IN_API pbInt inDnsMessageAuthorityLength( const struct inDnsMessage *msg );
IN_API struct inDnsResourceRecord *inDnsMessageAuthorityResourceRecordAt( const struct inDnsMessage *msg, pbInt index );
IN_API struct pbVector *inDnsMessageAuthorityVector( const struct inDnsMessage *msg );
IN_API void inDnsMessageSetAuthorityVector( struct inDnsMessage **msg, const struct pbVector *authorityVector );
IN_API pbInt inDnsMessageAdditionalLength( const struct inDnsMessage *msg );
IN_API struct inDnsResourceRecord *inDnsMessageAdditionalResourceRecordAt( const struct inDnsMessage *msg,
                                                                           pbInt index );
IN_API struct pbVector *inDnsMessageAdditionalVector( const struct inDnsMessage *msg );
IN_API void inDnsMessageSetAdditionalVector( struct inDnsMessage **msg, const struct pbVector *additionalVector );

PB_DECLS_END

#endif
