// inDnsDataInSrv: the data of an SRV record.
#include "in/dns/in_dns_data_in_srv.hpp"

#include "in/dns/in_dns_idna.h"
#include "pb/pb_format.hpp"

#include <tuple>

// The highest priority value first.
std::strong_ordering inDnsDataInSrv::operator<=>( const inDnsDataInSrv &other ) const
{
    return std::tie( other.priority, weight, target, port ) <=>
           std::tie( priority, other.weight, other.target, other.port );
}

// A target that no one can ask for anyway is not shown whole: an answer may hold thousands.
pb::String inDnsDataInSrv::toString() const
{
    return pb::format( "%i %i %i %s", priority, weight, port, target.shownText() );
}

PB_OBJECT_DEFINE( inDnsDataInSrv, in___sort_IN_DNS_DATA_IN_SRV )

struct inDnsDataInSrv *inDnsDataInSrvCreate( pbInt priority, pbInt weight, pbInt port,
                                             const struct pbString *optionalTarget )
{
    PB_ASSERT( priority >= 0 && priority <= 65535 );
    PB_ASSERT_TEXT( weight >= 0, "weight >= 0 && priority <= 65535" );
    PB_ASSERT( port >= 0 && port <= 65535 );
    PB_ASSERT( !optionalTarget || inDnsIdnaDomainNameOk( optionalTarget ) );
    auto srv = pb::make<struct inDnsDataInSrv>();
    srv->priority = priority;
    srv->weight = weight;
    srv->port = port;
    srv->target = optionalTarget;
    return srv.release();
}

struct inDnsDataInSrv *inDnsDataInSrvCreateFrom( const struct inDnsDataInSrv *source )
{
    PB_ASSERT( source );
    return pb::make<struct inDnsDataInSrv>( *source ).release();
}

pbInt inDnsDataInSrvPriority( const struct inDnsDataInSrv *srv )
{
    PB_ASSERT( srv );
    return srv->priority;
}

void inDnsDataInSrvSetPriority( struct inDnsDataInSrv **srv, pbInt priority )
{
    PB_ASSERT( srv );
    PB_ASSERT( *srv );
    PB_ASSERT( priority >= 0 && priority <= 65535 );
    pb::edit( srv ).priority = priority;
}

pbInt inDnsDataInSrvWeight( const struct inDnsDataInSrv *srv )
{
    PB_ASSERT( srv );
    return srv->weight;
}

void inDnsDataInSrvSetWeight( struct inDnsDataInSrv **srv, pbInt weight )
{
    PB_ASSERT( srv );
    PB_ASSERT( *srv );
    PB_ASSERT( weight >= 0 && weight <= 65535 );
    pb::edit( srv ).weight = weight;
}

pbInt inDnsDataInSrvPort( const struct inDnsDataInSrv *srv )
{
    PB_ASSERT( srv );
    return srv->port;
}

void inDnsDataInSrvSetPort( struct inDnsDataInSrv **srv, pbInt port )
{
    PB_ASSERT( srv );
    PB_ASSERT( *srv );
    PB_ASSERT( port >= 0 && port <= 65535 );
    pb::edit( srv ).port = port;
}

struct pbString *inDnsDataInSrvTarget( const struct inDnsDataInSrv *srv )
{
    PB_ASSERT( srv );
    return srv->target.text().release();
}

pbBool inDnsDataInSrvHasTarget( const struct inDnsDataInSrv *srv )
{
    PB_ASSERT( srv );
    return PB_BOOL_FROM( srv->target );
}

void inDnsDataInSrvSetTarget( struct inDnsDataInSrv **srv, const struct pbString *target )
{
    PB_ASSERT( srv );
    PB_ASSERT( *srv );
    PB_ASSERT( inDnsIdnaDomainNameOk( target ) );
    pb::edit( srv ).target = target;
}

void inDnsDataInSrvDelTarget( struct inDnsDataInSrv **srv )
{
    PB_ASSERT( srv );
    PB_ASSERT( *srv );
    pb::edit( srv ).target = {};
}
