// To 8.0: the stack of the access tool, bound to the loopback interface by name so far, is by flag. One that says more
// was made by somebody else.
#include "in/csupdate/in_csupdate.hpp"

using namespace in::csupdate;

static constinit in::csupdate::Backend in___Csupdate20171013Backend;

void in___Csupdate20171013Startup( void )
{
    in::csupdate::start( in___Csupdate20171013Backend, "2017-10-13", in___Csupdate20171013Func );
}

void in___Csupdate20171013Shutdown( void )
{
    in___Csupdate20171013Backend.invalidate();
}

static void keepToTheHost( struct csUpdate **update )
{
    const pb::String name = pb::string( "ipcAccessToolInitializeInStack" );
    auto object = pb::adopt( csUpdateObject( *update, name.get() ) );
    if ( !object )
        return;
    const Store old = pb::adopt( csUpdateObjectConfig( object.get() ) );
    if ( pbStoreLength( old.get() ) != 1 || !value( old, "interface" ) )
        return;
    Store config = pb::adopt( pbStoreCreate() );
    setValue( config, "flags", pb::string( "IN_FLAG_LOOPBACK_ONLY" ) );
    csUpdateObjectSetConfig( object.address(), config.get() );
    csUpdateSetObject( update, name.get(), object.get() );
}

void in___Csupdate20171013Func( struct csUpdateBackend *, struct csUpdate **update )
{
    PB_ASSERT( update );
    PB_ASSERT( *update );
    if ( !isAtMost( *update, 7 ) )
        return;
    keepToTheHost( update );
    setVersion( update, "8.0" );
}
