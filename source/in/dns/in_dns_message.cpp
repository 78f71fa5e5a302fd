// inDnsMessage: a DNS message.
#include "in/dns/in_dns_message.hpp"

#include "in/dns/in_dns_question_record.h"
#include "in/dns/in_dns_resource_record.h"

PB_OBJECT_DEFINE( inDnsMessage, in___sort_IN_DNS_MESSAGE )

namespace {

using Section = pb::Ref<struct pbVector>;

pbInt length( const Section &section )
{
    return section ? pbVectorLength( section.get() ) : 0;
}

struct pbObj *recordAt( const Section &section, pbInt index )
{
    PB_ASSERT( index >= 0 && index < length( section ) );
    return pbVectorObjAt( section.get(), index );
}

struct pbVector *vector( const Section &section )
{
    return section ? section.share() : pbVectorCreate();
}

} // namespace

struct inDnsMessage *inDnsMessageCreate( void )
{
    return pb::make<struct inDnsMessage>().release();
}

struct inDnsMessage *inDnsMessageCreateFrom( const struct inDnsMessage *source )
{
    PB_ASSERT( source );
    return pb::make<struct inDnsMessage>( *source ).release();
}

pbInt inDnsMessageId( const struct inDnsMessage *msg )
{
    PB_ASSERT( msg );
    return msg->id;
}

void inDnsMessageSetId( struct inDnsMessage **msg, pbInt id )
{
    PB_ASSERT( msg );
    PB_ASSERT( *msg );
    PB_ASSERT( id>=0 && id<=65535 );
    pb::edit( msg ).id = id;
}

pbBool inDnsMessageIsQuery( const struct inDnsMessage *msg )
{
    PB_ASSERT( msg );
    return msg->query;
}

void inDnsMessageSetQuery( struct inDnsMessage **msg, pbBool query )
{
    PB_ASSERT( msg );
    PB_ASSERT( *msg );
    pb::edit( msg ).query = query != 0;
}

pbInt inDnsMessageOperation( const struct inDnsMessage *msg )
{
    PB_ASSERT( msg );
    return msg->operation;
}

void inDnsMessageSetOperation( struct inDnsMessage **msg, pbInt operation )
{
    PB_ASSERT( msg );
    PB_ASSERT( *msg );
    PB_ASSERT( IN_DNS_OPERATION_OK( operation ) );
    pb::edit( msg ).operation = operation;
}

pbBool inDnsMessageAuthoritativeAnswer( const struct inDnsMessage *msg )
{
    PB_ASSERT( msg );
    return msg->authoritativeAnswer;
}

void inDnsMessageSetAuthoritativeAnswer( struct inDnsMessage **msg, pbBool authoritativeAnswer )
{
    PB_ASSERT( msg );
    PB_ASSERT( *msg );
    pb::edit( msg ).authoritativeAnswer = authoritativeAnswer != 0;
}

pbBool inDnsMessageTruncation( const struct inDnsMessage *msg )
{
    PB_ASSERT( msg );
    return msg->truncation;
}

void inDnsMessageSetTruncation( struct inDnsMessage **msg, pbBool truncation )
{
    PB_ASSERT( msg );
    PB_ASSERT( *msg );
    pb::edit( msg ).truncation = truncation != 0;
}

pbBool inDnsMessageRecursionDesired( const struct inDnsMessage *msg )
{
    PB_ASSERT( msg );
    return msg->recursionDesired;
}

void inDnsMessageSetRecursionDesired( struct inDnsMessage **msg, pbBool recursionDesired )
{
    PB_ASSERT( msg );
    PB_ASSERT( *msg );
    pb::edit( msg ).recursionDesired = recursionDesired != 0;
}

pbBool inDnsMessageRecursionAvailable( const struct inDnsMessage *msg )
{
    PB_ASSERT( msg );
    return msg->recursionAvailable;
}

void inDnsMessageSetRecursionAvailable( struct inDnsMessage **msg, pbBool recursionAvailable )
{
    PB_ASSERT( msg );
    PB_ASSERT( *msg );
    pb::edit( msg ).recursionAvailable = recursionAvailable != 0;
}

pbInt inDnsMessageResponse( const struct inDnsMessage *msg )
{
    PB_ASSERT( msg );
    return msg->response;
}

void inDnsMessageSetResponse( struct inDnsMessage **msg, pbInt response )
{
    PB_ASSERT( msg );
    PB_ASSERT( *msg );
    PB_ASSERT( IN_DNS_RESPONSE_OK( response ) );
    pb::edit( msg ).response = response;
}

pbInt inDnsMessageQuestionLength( const struct inDnsMessage *msg )
{
    PB_ASSERT( msg );
    return length( msg->question );
}

struct inDnsQuestionRecord *inDnsMessageQuestionRecordAt( const struct inDnsMessage *msg, pbInt index )
{
    PB_ASSERT( msg );
    return inDnsQuestionRecordFrom( recordAt( msg->question, index ) );
}

struct pbVector *inDnsMessageQuestionVector( const struct inDnsMessage *msg )
{
    PB_ASSERT( msg );
    return vector( msg->question );
}

void inDnsMessageSetQuestionVector( struct inDnsMessage **msg, const struct pbVector *questionVector )
{
    PB_ASSERT( msg );
    PB_ASSERT( *msg );
    PB_ASSERT( questionVector );
    PB_ASSERT( pbVectorContainsOnly( questionVector, inDnsQuestionRecordSort() ) );
    PB_ASSERT( pbVectorLength( questionVector ) <= 65535 );
    pb::edit( msg ).question = pb::share( questionVector );
}

pbInt inDnsMessageAnswerLength( const struct inDnsMessage *msg )
{
    PB_ASSERT( msg );
    return length( msg->answer );
}

struct inDnsResourceRecord *inDnsMessageAnswerResourceRecordAt( const struct inDnsMessage *msg, pbInt index )
{
    PB_ASSERT( msg );
    return inDnsResourceRecordFrom( recordAt( msg->answer, index ) );
}

struct pbVector *inDnsMessageAnswerVector( const struct inDnsMessage *msg )
{
    PB_ASSERT( msg );
    return vector( msg->answer );
}

void inDnsMessageSetAnswerVector( struct inDnsMessage **msg, const struct pbVector *answerVector )
{
    PB_ASSERT( msg );
    PB_ASSERT( *msg );
    PB_ASSERT( answerVector );
    PB_ASSERT( pbVectorContainsOnly( answerVector, inDnsResourceRecordSort() ) );
    PB_ASSERT( pbVectorLength( answerVector ) <= 65535 );
    pb::edit( msg ).answer = pb::share( answerVector );
}

pbInt inDnsMessageAuthorityLength( const struct inDnsMessage *msg )
{
    PB_ASSERT( msg );
    return length( msg->authority );
}

struct inDnsResourceRecord *inDnsMessageAuthorityResourceRecordAt( const struct inDnsMessage *msg, pbInt index )
{
    PB_ASSERT( msg );
    return inDnsResourceRecordFrom( recordAt( msg->authority, index ) );
}

struct pbVector *inDnsMessageAuthorityVector( const struct inDnsMessage *msg )
{
    PB_ASSERT( msg );
    return vector( msg->authority );
}

void inDnsMessageSetAuthorityVector( struct inDnsMessage **msg, const struct pbVector *authorityVector )
{
    PB_ASSERT( msg );
    PB_ASSERT( *msg );
    PB_ASSERT( authorityVector );
    PB_ASSERT( pbVectorContainsOnly( authorityVector, inDnsResourceRecordSort() ) );
    PB_ASSERT( pbVectorLength( authorityVector ) <= 65535 );
    pb::edit( msg ).authority = pb::share( authorityVector );
}

pbInt inDnsMessageAdditionalLength( const struct inDnsMessage *msg )
{
    PB_ASSERT( msg );
    return length( msg->additional );
}

struct inDnsResourceRecord *inDnsMessageAdditionalResourceRecordAt( const struct inDnsMessage *msg, pbInt index )
{
    PB_ASSERT( msg );
    return inDnsResourceRecordFrom( recordAt( msg->additional, index ) );
}

struct pbVector *inDnsMessageAdditionalVector( const struct inDnsMessage *msg )
{
    PB_ASSERT( msg );
    return vector( msg->additional );
}

void inDnsMessageSetAdditionalVector( struct inDnsMessage **msg, const struct pbVector *additionalVector )
{
    PB_ASSERT( msg );
    PB_ASSERT( *msg );
    PB_ASSERT( additionalVector );
    PB_ASSERT( pbVectorContainsOnly( additionalVector, inDnsResourceRecordSort() ) );
    PB_ASSERT( pbVectorLength( additionalVector ) <= 65535 );
    pb::edit( msg ).additional = pb::share( additionalVector );
}
