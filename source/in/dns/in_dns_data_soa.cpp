// inDnsDataSoa: the data of an SOA record.
#include "in/dns/in_dns_data_soa.hpp"

#include "in/dns/in_dns_idna.h"

PB_OBJECT_DEFINE( inDnsDataSoa, in___sort_IN_DNS_DATA_SOA )

struct inDnsDataSoa *inDnsDataSoaCreate( const struct pbString *mname, const struct pbString *rname, pbInt serial,
                                         pbInt refresh, pbInt retry, pbInt expire, pbInt minimum )
{
    PB_ASSERT( inDnsIdnaDomainNameOk( mname ) );
    PB_ASSERT( inDnsIdnaDomainNameOk( rname ) );
    PB_ASSERT( serial>=(PB_INT_FROM(-2147483647)-PB_INT_FROM(1)) && serial<=(PB_INT_FROM(2147483647)) );
    PB_ASSERT( refresh>=0 && refresh<=0x7FFFFFFF );
    PB_ASSERT( retry>=0 && retry<=0x7FFFFFFF );
    PB_ASSERT( expire>=0 && expire<=0x7FFFFFFF );
    PB_ASSERT( minimum>=0 && minimum<=0x7FFFFFFF );
    auto soa = pb::make<struct inDnsDataSoa>();
    soa->mname = mname;
    soa->rname = rname;
    soa->serial = serial;
    soa->refresh = refresh;
    soa->retry = retry;
    soa->expire = expire;
    soa->minimum = minimum;
    return soa.release();
}

struct inDnsDataSoa *inDnsDataSoaCreateFrom( const struct inDnsDataSoa *source )
{
    PB_ASSERT( source );
    return pb::make<struct inDnsDataSoa>( *source ).release();
}

struct pbString *inDnsDataSoaMname( const struct inDnsDataSoa *soa )
{
    PB_ASSERT( soa );
    return soa->mname.text().release();
}

void inDnsDataSoaSetMname( struct inDnsDataSoa **soa, const struct pbString *mname )
{
    PB_ASSERT( soa );
    PB_ASSERT( *soa );
    PB_ASSERT( inDnsIdnaDomainNameOk( mname ) );
    pb::edit( soa ).mname = mname;
}

struct pbString *inDnsDataSoaRname( const struct inDnsDataSoa *soa )
{
    PB_ASSERT( soa );
    return soa->rname.text().release();
}

void inDnsDataSoaSetRname( struct inDnsDataSoa **soa, const struct pbString *rname )
{
    PB_ASSERT( soa );
    PB_ASSERT( *soa );
    PB_ASSERT( inDnsIdnaDomainNameOk( rname ) );
    pb::edit( soa ).rname = rname;
}

pbInt inDnsDataSoaSerial( const struct inDnsDataSoa *soa )
{
    PB_ASSERT( soa );
    return soa->serial;
}

void inDnsDataSoaSetSerial( struct inDnsDataSoa **soa, pbInt serial )
{
    PB_ASSERT( soa );
    PB_ASSERT( *soa );
    PB_ASSERT( serial>=(PB_INT_FROM(-2147483647)-PB_INT_FROM(1)) && serial<=(PB_INT_FROM(2147483647)) );
    pb::edit( soa ).serial = serial;
}

pbInt inDnsDataSoaRefresh( const struct inDnsDataSoa *soa )
{
    PB_ASSERT( soa );
    return soa->refresh;
}

void inDnsDataSoaSetRefresh( struct inDnsDataSoa **soa, pbInt refresh )
{
    PB_ASSERT( soa );
    PB_ASSERT( *soa );
    PB_ASSERT( refresh>=0 && refresh<=0x7FFFFFFF );
    pb::edit( soa ).refresh = refresh;
}

pbInt inDnsDataSoaRetry( const struct inDnsDataSoa *soa )
{
    PB_ASSERT( soa );
    return soa->retry;
}

void inDnsDataSoaSetRetry( struct inDnsDataSoa **soa, pbInt retry )
{
    PB_ASSERT( soa );
    PB_ASSERT( *soa );
    PB_ASSERT( retry>=0 && retry<=0x7FFFFFFF );
    pb::edit( soa ).retry = retry;
}

pbInt inDnsDataSoaExpire( const struct inDnsDataSoa *soa )
{
    PB_ASSERT( soa );
    return soa->expire;
}

void inDnsDataSoaSetExpire( struct inDnsDataSoa **soa, pbInt expire )
{
    PB_ASSERT( soa );
    PB_ASSERT( *soa );
    PB_ASSERT( expire>=0 && expire<=0x7FFFFFFF );
    pb::edit( soa ).expire = expire;
}

pbInt inDnsDataSoaMinimum( const struct inDnsDataSoa *soa )
{
    PB_ASSERT( soa );
    return soa->minimum;
}

void inDnsDataSoaSetMinimum( struct inDnsDataSoa **soa, pbInt minimum )
{
    PB_ASSERT( soa );
    PB_ASSERT( *soa );
    PB_ASSERT( minimum>=0 && minimum<=0x7FFFFFFF );
    pb::edit( soa ).minimum = minimum;
}
