// inDnsQuestionRecord: an entry of a question section.
#include "in/dns/in_dns_question_record.hpp"

#include "in/dns/in_dns_idna.h"
#include "in/dns/in_dns_record_type.h"

PB_OBJECT_DEFINE( inDnsQuestionRecord, in___sort_IN_DNS_QUESTION_RECORD )

struct inDnsQuestionRecord *inDnsQuestionRecordCreate( const struct pbString *optionalIdn, pbInt qtype, pbInt qclass )
{
    PB_ASSERT( !optionalIdn || inDnsIdnaDomainNameOk( optionalIdn ) );
    PB_ASSERT( IN_DNS_RECORD_TYPE_OK( qtype ) );
    PB_ASSERT( IN_DNS_RECORD_CLASS_OK( qclass ) );
    auto record = pb::make<struct inDnsQuestionRecord>();
    record->name = optionalIdn;
    record->qtype = qtype;
    record->qclass = qclass;
    return record.release();
}

struct inDnsQuestionRecord *inDnsQuestionRecordCreateFrom( const struct inDnsQuestionRecord *source )
{
    PB_ASSERT( source );
    return pb::make<struct inDnsQuestionRecord>( *source ).release();
}

struct pbString *inDnsQuestionRecordName( const struct inDnsQuestionRecord *record )
{
    PB_ASSERT( record );
    return record->name.text().release();
}

pbBool inDnsQuestionRecordHasName( const struct inDnsQuestionRecord *record )
{
    PB_ASSERT( record );
    return PB_BOOL_FROM( record->name );
}

void inDnsQuestionRecordSetName( struct inDnsQuestionRecord **record, const struct pbString *idn )
{
    PB_ASSERT( record );
    PB_ASSERT( *record );
    PB_ASSERT( inDnsIdnaDomainNameOk( idn ) );
    pb::edit( record ).name = idn;
}

void inDnsQuestionRecordDelName( struct inDnsQuestionRecord **record )
{
    PB_ASSERT( record );
    PB_ASSERT( *record );
    pb::edit( record ).name = {};
}

pbInt inDnsQuestionRecordType( const struct inDnsQuestionRecord *record )
{
    PB_ASSERT( record );
    return record->qtype;
}

void inDnsQuestionRecordSetType( struct inDnsQuestionRecord **record, pbInt qtype )
{
    PB_ASSERT( record );
    PB_ASSERT( *record );
    PB_ASSERT( IN_DNS_RECORD_TYPE_OK( qtype ) );
    pb::edit( record ).qtype = qtype;
}

pbInt inDnsQuestionRecordClass( const struct inDnsQuestionRecord *record )
{
    PB_ASSERT( record );
    return record->qclass;
}

void inDnsQuestionRecordSetClass( struct inDnsQuestionRecord **record, pbInt qclass )
{
    PB_ASSERT( record );
    PB_ASSERT( *record );
    PB_ASSERT( IN_DNS_RECORD_CLASS_OK( qclass ) );
    pb::edit( record ).qclass = qclass;
}
