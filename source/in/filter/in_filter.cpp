// inFilter: the public address filter, over its imp. Its last release ends the imp.
#include "in/filter/in_filter.h"

#include "in/filter/in_filter_imp_internal.h"
#include "in/raw/in_raw_address_internal.h"
#include "in/tcp/in_tcp_address_internal.h"
#include "in/udp/in_udp_address_internal.h"
#include "pb/pb_object.hpp"

PB_SORT_DECLARE( in___sort_IN_FILTER )

struct inFilter final : pb::Object<struct inFilter, in___sort_IN_FILTER> {
    const pb::Ref<struct in___FilterImp> imp;

    explicit inFilter( struct in___FilterImp *imp ) : imp( pb::adopt( imp ) ) {}
    ~inFilter() { in___FilterImpHalt( imp.get() ); }
};

PB_OBJECT_DEFINE( inFilter, in___sort_IN_FILTER )

struct inFilter *inFilterCreate( const struct inFilterOptions *options, struct trAnchor *optionalAnchor )
{
    PB_ASSERT( options );
    return pb::make<struct inFilter>( in___FilterImpCreate( options, optionalAnchor ) ).release();
}

struct inFilterOptions *inFilterOptions( const struct inFilter *filter )
{
    PB_ASSERT( filter );
    return in___FilterImpOptions( filter->imp.get() );
}

void inFilterSetOptions( struct inFilter *filter, const struct inFilterOptions *options )
{
    PB_ASSERT( filter );
    PB_ASSERT( options );
    in___FilterImpSetOptions( filter->imp.get(), options );
}

pbBool inFilterCheck( const struct inFilter *filter, const struct inAddress *address )
{
    PB_ASSERT( filter );
    PB_ASSERT( address );
    return in___FilterImpCheck( filter->imp.get(), address );
}

pbBool inFilterCheckTcpAddress( const struct inFilter *filter, const struct inTcpAddress *tcpAddress )
{
    PB_ASSERT( tcpAddress );
    return inFilterCheck( filter, in___TcpAddressAddressBorrowed( tcpAddress ) );
}

pbBool inFilterCheckUdpAddress( const struct inFilter *filter, const struct inUdpAddress *udpAddress )
{
    PB_ASSERT( udpAddress );
    return inFilterCheck( filter, in___UdpAddressAddressBorrowed( udpAddress ) );
}

pbBool inFilterCheckRawAddress( const struct inFilter *filter, const struct inRawAddress *rawAddress )
{
    PB_ASSERT( rawAddress );
    return inFilterCheck( filter, in___RawAddressAddressBorrowed( rawAddress ) );
}

struct pbStore *inFilterExplain( const struct inFilter *filter, const struct inAddress *optionalAddress )
{
    PB_ASSERT( filter );
    return in___FilterImpExplain( filter->imp.get(), optionalAddress );
}

struct csStatusReporter *inFilterCsStatus( const struct inFilter *filter )
{
    PB_ASSERT( filter );
    return in___FilterImpCsStatus( filter->imp.get() );
}

void inFilterTraceCompleteAnchor( struct inFilter *filter, struct trAnchor *anchor )
{
    PB_ASSERT( filter );
    PB_ASSERT( anchor );
    in___FilterImpTraceCompleteAnchor( filter->imp.get(), anchor );
}
