// To 11.0: filter entries say how they match; so far all did by address and by what DNS says of a host.
#include "in/csupdate/in_csupdate.hpp"

#include "in/filter/in_filter.h"

using namespace in::csupdate;

static constinit in::csupdate::Backend in___Csupdate20190306Backend;

void in___Csupdate20190306Startup( void )
{
    in::csupdate::start( in___Csupdate20190306Backend, "2019-03-06", in___Csupdate20190306Func );
}

void in___Csupdate20190306Shutdown( void )
{
    in___Csupdate20190306Backend.invalidate();
}

static bool addFlags( Store &entry )
{
    if ( value( entry, "flags" ) )
        return false;
    setValue( entry, "flags", pb::string( "IN_FILTER_ENTRY_FLAG_ADDRESS|IN_FILTER_ENTRY_FLAG_DNS_QUERY_ADDRESSES" ) );
    return true;
}

static bool addEntryFlags( Store &config )
{
    Store entries = member( config, "entries" );
    if ( !entries || !rewriteMembers( entries, addFlags ) )
        return false;
    setMember( config, "entries", entries );
    return true;
}

void in___Csupdate20190306Func( struct csUpdateBackend *, struct csUpdate **update )
{
    PB_ASSERT( update );
    PB_ASSERT( *update );
    if ( !isAtMost( *update, 10 ) )
        return;
    rewriteObjects( update, pb::adopt( csUpdateObjectsBySort( *update, inFilterSort() ) ), addEntryFlags );
    setVersion( update, "11.0" );
}
