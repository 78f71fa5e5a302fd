// To 3.0: a stack that did not ask for the names of addresses says so among its DNS options.
#include "in/csupdate/in_csupdate.hpp"

#include "in/base/in_stack.h"

using namespace in::csupdate;

static constinit in::csupdate::Backend in___Csupdate20130104Backend;

void in___Csupdate20130104Startup( void )
{
    in::csupdate::start( in___Csupdate20130104Backend, "2013-01-04", in___Csupdate20130104Func );
}

void in___Csupdate20130104Shutdown( void )
{
    in___Csupdate20130104Backend.invalidate();
}

static bool moveIntoDnsOptions( Store &config )
{
    pbBool disabled = 0;
    if ( !pbStoreValueBoolCstr( config.get(), &disabled, "disableReverseDnsLookup", -1 ) )
        return false;
    Store dnsOptions = member( config, "dnsOptions" );
    if ( !dnsOptions )
        dnsOptions = pb::adopt( pbStoreCreate() );
    pbStoreSetValueBoolCstr( dnsOptions.address(), "disableQueryDomainNames", -1, disabled );
    setMember( config, "dnsOptions", dnsOptions );
    return remove( config, "disableReverseDnsLookup" );
}

void in___Csupdate20130104Func( struct csUpdateBackend *, struct csUpdate **update )
{
    PB_ASSERT( update );
    PB_ASSERT( *update );
    if ( !isAtMost( *update, 2 ) )
        return;
    rewriteObjects( update, pb::adopt( csUpdateObjectsBySort( *update, inStackSort() ) ), moveIntoDnsOptions );
    setVersion( update, "3.0" );
}
