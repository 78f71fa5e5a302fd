// inDnsResourceRecord: an entry of an answer, authority or additional section.
#include "in/dns/in_dns_resource_record.hpp"

#include "in/base/in_address.h"
#include "in/dns/in_dns_data_in_srv.h"
#include "in/dns/in_dns_data_mx.h"
#include "in/dns/in_dns_data_soa.h"
#include "in/dns/in_dns_data_txt.h"
#include "in/dns/in_dns_idna.h"
#include "in/dns/in_dns_record_type.h"

PB_OBJECT_DEFINE( inDnsResourceRecord, in___sort_IN_DNS_RESOURCE_RECORD )

namespace {

using Record = pb::Ref<struct inDnsResourceRecord>;

Record create( const struct pbString *optionalIdn, pbInt type, pbInt cls, pbInt ttl )
{
    return pb::adopt( in___DnsResourceRecordCreate( optionalIdn, type, cls, ttl ) );
}

template <class Kind> struct pbString *nameData( const struct inDnsResourceRecord *record )
{
    const auto *data = std::get_if<Kind>( &record->data );
    return data ? data->name.text().release() : nullptr;
}

template <class Kind> Kind *objectData( const struct inDnsResourceRecord *record )
{
    const auto *data = std::get_if<pb::Ref<Kind>>( &record->data );
    return data ? data->share() : nullptr;
}

struct inAddress *address( const struct inDnsResourceRecord *record, bool v4 )
{
    const auto *data = std::get_if<pb::Ref<struct inAddress>>( &record->data );
    return data && bool( inAddressIsV4( data->get() ) ) == v4 ? data->share() : nullptr;
}

} // namespace

struct inDnsResourceRecord *in___DnsResourceRecordCreate( const struct pbString *optionalIdn, pbInt type, pbInt cls,
                                                          pbInt ttl )
{
    PB_ASSERT( !optionalIdn || inDnsIdnaDomainNameOk( optionalIdn ) );
    PB_ASSERT( IN_DNS_RECORD_TYPE_OK( type ) );
    PB_ASSERT( IN_DNS_RECORD_CLASS_OK( cls ) );
    PB_ASSERT( ttl >= 0 );
    PB_ASSERT( ttl <= 0x7FFFFFFF );
    auto record = pb::make<struct inDnsResourceRecord>();
    record->name = optionalIdn;
    record->type = type;
    record->cls = cls;
    record->ttl = ttl;
    return record.release();
}

struct inDnsResourceRecord *inDnsResourceRecordCreateCname( const struct pbString *optionalIdn, pbInt cls, pbInt ttl,
                                                            const struct pbString *cname )
{
    auto record = create( optionalIdn, IN_DNS_RECORD_TYPE_CNAME, cls, ttl );
    inDnsResourceRecordSetCname( record.address(), cls, cname );
    return record.release();
}

struct inDnsResourceRecord *inDnsResourceRecordCreateNs( const struct pbString *optionalIdn, pbInt cls, pbInt ttl,
                                                         const struct pbString *ns )
{
    auto record = create( optionalIdn, IN_DNS_RECORD_TYPE_NS, cls, ttl );
    inDnsResourceRecordSetNs( record.address(), cls, ns );
    return record.release();
}

struct inDnsResourceRecord *inDnsResourceRecordCreatePtr( const struct pbString *optionalIdn, pbInt cls, pbInt ttl,
                                                          const struct pbString *ptr )
{
    auto record = create( optionalIdn, IN_DNS_RECORD_TYPE_PTR, cls, ttl );
    inDnsResourceRecordSetPtr( record.address(), cls, ptr );
    return record.release();
}

struct inDnsResourceRecord *inDnsResourceRecordCreateMx( const struct pbString *optionalIdn, pbInt cls, pbInt ttl,
                                                         const struct inDnsDataMx *mx )
{
    auto record = create( optionalIdn, IN_DNS_RECORD_TYPE_MX, cls, ttl );
    inDnsResourceRecordSetMx( record.address(), cls, mx );
    return record.release();
}

struct inDnsResourceRecord *inDnsResourceRecordCreateSoa( const struct pbString *optionalIdn, pbInt cls, pbInt ttl,
                                                          const struct inDnsDataSoa *soa )
{
    auto record = create( optionalIdn, IN_DNS_RECORD_TYPE_SOA, cls, ttl );
    inDnsResourceRecordSetSoa( record.address(), cls, soa );
    return record.release();
}

struct inDnsResourceRecord *inDnsResourceRecordCreateTxt( const struct pbString *optionalIdn, pbInt cls, pbInt ttl,
                                                          const struct inDnsDataTxt *txt )
{
    auto record = create( optionalIdn, IN_DNS_RECORD_TYPE_TXT, cls, ttl );
    inDnsResourceRecordSetTxt( record.address(), cls, txt );
    return record.release();
}

struct inDnsResourceRecord *inDnsResourceRecordCreateInA( const struct pbString *optionalIdn, pbInt ttl,
                                                          const struct inAddress *ina )
{
    auto record = create( optionalIdn, IN_DNS_RECORD_TYPE_A, IN_DNS_RECORD_CLASS_IN, ttl );
    inDnsResourceRecordSetInA( record.address(), ina );
    return record.release();
}

struct inDnsResourceRecord *inDnsResourceRecordCreateInAaaa( const struct pbString *optionalIdn, pbInt ttl,
                                                             const struct inAddress *ina )
{
    auto record = create( optionalIdn, IN_DNS_RECORD_TYPE_AAAA, IN_DNS_RECORD_CLASS_IN, ttl );
    inDnsResourceRecordSetInAaaa( record.address(), ina );
    return record.release();
}

struct inDnsResourceRecord *inDnsResourceRecordCreateInSrv( const struct pbString *optionalIdn, pbInt ttl,
                                                            const struct inDnsDataInSrv *srv )
{
    auto record = create( optionalIdn, IN_DNS_RECORD_TYPE_SRV, IN_DNS_RECORD_CLASS_IN, ttl );
    inDnsResourceRecordSetInSrv( record.address(), srv );
    return record.release();
}

struct inDnsResourceRecord *inDnsResourceRecordCreateFrom( const struct inDnsResourceRecord *source )
{
    PB_ASSERT( source );
    return pb::make<struct inDnsResourceRecord>( *source ).release();
}

struct pbString *inDnsResourceRecordName( const struct inDnsResourceRecord *record )
{
    PB_ASSERT( record );
    return record->name.text().release();
}

pbBool inDnsResourceRecordHasName( const struct inDnsResourceRecord *record )
{
    PB_ASSERT( record );
    return PB_BOOL_FROM( record->name );
}

void inDnsResourceRecordSetName( struct inDnsResourceRecord **record, const struct pbString *idn )
{
    PB_ASSERT( record );
    PB_ASSERT( *record );
    PB_ASSERT( inDnsIdnaDomainNameOk( idn ) );
    pb::edit( record ).name = idn;
}

void inDnsResourceRecordDelName( struct inDnsResourceRecord **record )
{
    PB_ASSERT( record );
    PB_ASSERT( *record );
    pb::edit( record ).name = {};
}

pbInt inDnsResourceRecordType( const struct inDnsResourceRecord *record )
{
    PB_ASSERT( record );
    return record->type;
}

pbInt inDnsResourceRecordClass( const struct inDnsResourceRecord *record )
{
    PB_ASSERT( record );
    return record->cls;
}

pbInt inDnsResourceRecordTtl( const struct inDnsResourceRecord *record )
{
    PB_ASSERT( record );
    return record->ttl;
}

void inDnsResourceRecordSetTtl( struct inDnsResourceRecord **record, pbInt ttl )
{
    PB_ASSERT( record );
    PB_ASSERT( *record );
    PB_ASSERT( ttl >= 0 );
    PB_ASSERT( ttl <= 0x7FFFFFFF );
    pb::edit( record ).ttl = ttl;
}

struct pbString *inDnsResourceRecordCname( const struct inDnsResourceRecord *record )
{
    PB_ASSERT( record );
    return nameData<in::dns::Cname>( record );
}

struct pbString *inDnsResourceRecordNs( const struct inDnsResourceRecord *record )
{
    PB_ASSERT( record );
    return nameData<in::dns::Ns>( record );
}

struct pbString *inDnsResourceRecordPtr( const struct inDnsResourceRecord *record )
{
    PB_ASSERT( record );
    return nameData<in::dns::Ptr>( record );
}

struct inDnsDataMx *inDnsResourceRecordMx( const struct inDnsResourceRecord *record )
{
    PB_ASSERT( record );
    return objectData<struct inDnsDataMx>( record );
}

struct inDnsDataSoa *inDnsResourceRecordSoa( const struct inDnsResourceRecord *record )
{
    PB_ASSERT( record );
    return objectData<struct inDnsDataSoa>( record );
}

struct inDnsDataTxt *inDnsResourceRecordTxt( const struct inDnsResourceRecord *record )
{
    PB_ASSERT( record );
    return objectData<struct inDnsDataTxt>( record );
}

struct inAddress *inDnsResourceRecordInA( const struct inDnsResourceRecord *record )
{
    PB_ASSERT( record );
    return address( record, true );
}

struct inAddress *inDnsResourceRecordInAaaa( const struct inDnsResourceRecord *record )
{
    PB_ASSERT( record );
    return address( record, false );
}

struct inDnsDataInSrv *inDnsResourceRecordInSrv( const struct inDnsResourceRecord *record )
{
    PB_ASSERT( record );
    return objectData<struct inDnsDataInSrv>( record );
}

void inDnsResourceRecordSetCname( struct inDnsResourceRecord **record, pbInt cls, const struct pbString *cname )
{
    PB_ASSERT( record );
    PB_ASSERT( *record );
    PB_ASSERT( IN_DNS_RECORD_CLASS_OK( cls ) );
    PB_ASSERT( inDnsIdnaDomainNameOk( cname ) );
    pb::edit( record ).set( IN_DNS_RECORD_TYPE_CNAME, cls, in::dns::Cname{ cname } );
}

void inDnsResourceRecordSetNs( struct inDnsResourceRecord **record, pbInt cls, const struct pbString *ns )
{
    PB_ASSERT( record );
    PB_ASSERT( *record );
    PB_ASSERT( IN_DNS_RECORD_CLASS_OK( cls ) );
    PB_ASSERT( inDnsIdnaDomainNameOk( ns ) );
    // NS and PTR data alike: the type is what users of the library have always seen.
    pb::edit( record ).set( IN_DNS_RECORD_TYPE_CNAME, cls, in::dns::Ns{ ns } );
}

void inDnsResourceRecordSetPtr( struct inDnsResourceRecord **record, pbInt cls, const struct pbString *ptr )
{
    PB_ASSERT( record );
    PB_ASSERT( *record );
    PB_ASSERT( IN_DNS_RECORD_CLASS_OK( cls ) );
    PB_ASSERT( inDnsIdnaDomainNameOk( ptr ) );
    pb::edit( record ).set( IN_DNS_RECORD_TYPE_CNAME, cls, in::dns::Ptr{ ptr } );
}

void inDnsResourceRecordSetMx( struct inDnsResourceRecord **record, pbInt cls, const struct inDnsDataMx *mx )
{
    PB_ASSERT( record );
    PB_ASSERT( *record );
    PB_ASSERT( IN_DNS_RECORD_CLASS_OK( cls ) );
    PB_ASSERT( mx );
    pb::edit( record ).set( IN_DNS_RECORD_TYPE_MX, cls, pb::share( mx ) );
}

void inDnsResourceRecordSetSoa( struct inDnsResourceRecord **record, pbInt cls, const struct inDnsDataSoa *soa )
{
    PB_ASSERT( record );
    PB_ASSERT( *record );
    PB_ASSERT( IN_DNS_RECORD_CLASS_OK( cls ) );
    PB_ASSERT( soa );
    pb::edit( record ).set( IN_DNS_RECORD_TYPE_SOA, cls, pb::share( soa ) );
}

void inDnsResourceRecordSetTxt( struct inDnsResourceRecord **record, pbInt cls, const struct inDnsDataTxt *txt )
{
    PB_ASSERT( record );
    PB_ASSERT( *record );
    PB_ASSERT( IN_DNS_RECORD_CLASS_OK( cls ) );
    PB_ASSERT( txt );
    pb::edit( record ).set( IN_DNS_RECORD_TYPE_TXT, cls, pb::share( txt ) );
}

void inDnsResourceRecordSetInA( struct inDnsResourceRecord **record, const struct inAddress *ina )
{
    PB_ASSERT( record );
    PB_ASSERT( *record );
    PB_ASSERT( inAddressIsV4( ina ) );
    pb::edit( record ).set( IN_DNS_RECORD_TYPE_A, IN_DNS_RECORD_CLASS_IN, pb::share( ina ) );
}

void inDnsResourceRecordSetInAaaa( struct inDnsResourceRecord **record, const struct inAddress *ina )
{
    PB_ASSERT( record );
    PB_ASSERT( *record );
    PB_ASSERT( inAddressIsV6( ina ) );
    pb::edit( record ).set( IN_DNS_RECORD_TYPE_AAAA, IN_DNS_RECORD_CLASS_IN, pb::share( ina ) );
}

void inDnsResourceRecordSetInSrv( struct inDnsResourceRecord **record, const struct inDnsDataInSrv *srv )
{
    PB_ASSERT( record );
    PB_ASSERT( *record );
    PB_ASSERT( srv );
    pb::edit( record ).set( IN_DNS_RECORD_TYPE_SRV, IN_DNS_RECORD_CLASS_IN, pb::share( srv ) );
}
