// inDnsDataMx: the data of an MX record.
#include "in/dns/in_dns_data_mx.hpp"

#include "in/dns/in_dns_idna.h"

PB_OBJECT_DEFINE( inDnsDataMx, in___sort_IN_DNS_DATA_MX )

struct inDnsDataMx *inDnsDataMxCreate( pbInt preference, const struct pbString *exchange )
{
    PB_ASSERT( preference>=0 && preference<=65535 );
    PB_ASSERT( inDnsIdnaDomainNameOk( exchange ) );
    auto mx = pb::make<struct inDnsDataMx>();
    mx->preference = preference;
    mx->exchange = exchange;
    return mx.release();
}

struct inDnsDataMx *inDnsDataMxCreateFrom( const struct inDnsDataMx *source )
{
    PB_ASSERT( source );
    return pb::make<struct inDnsDataMx>( *source ).release();
}

pbInt inDnsDataMxPreference( const struct inDnsDataMx *mx )
{
    PB_ASSERT( mx );
    return mx->preference;
}

void inDnsDataMxSetPreference( struct inDnsDataMx **mx, pbInt preference )
{
    PB_ASSERT( mx );
    PB_ASSERT( *mx );
    PB_ASSERT( preference>=0 && preference<=65535 );
    pb::edit( mx ).preference = preference;
}

struct pbString *inDnsDataMxExchange( const struct inDnsDataMx *mx )
{
    PB_ASSERT( mx );
    return mx->exchange.text().release();
}

void inDnsDataMxSetExchange( struct inDnsDataMx **mx, const struct pbString *exchange )
{
    PB_ASSERT( mx );
    PB_ASSERT( *mx );
    PB_ASSERT( inDnsIdnaDomainNameOk( exchange ) );
    pb::edit( mx ).exchange = exchange;
}
