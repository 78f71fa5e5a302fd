// To 9.0: the private key of a TLS stack need not be of RSA.
#include "in/csupdate/in_csupdate.hpp"

using namespace in::csupdate;

static constinit in::csupdate::Backend in___Csupdate20180703Backend;

void in___Csupdate20180703Startup( void )
{
    in::csupdate::start( in___Csupdate20180703Backend, "2018-07-03", in___Csupdate20180703Func );
}

void in___Csupdate20180703Shutdown( void )
{
    in___Csupdate20180703Backend.invalidate();
}

static bool renamePrivateKey( Store &config )
{
    const Store rsaPrivateKey = member( config, "rsaPrivateKey" );
    if ( !rsaPrivateKey || member( config, "privateKey" ) )
        return false;
    setMember( config, "privateKey", rsaPrivateKey );
    return remove( config, "rsaPrivateKey" );
}

void in___Csupdate20180703Func( struct csUpdateBackend *, struct csUpdate **update )
{
    PB_ASSERT( update );
    PB_ASSERT( *update );
    if ( !isAtMost( *update, 8 ) )
        return;
    rewriteObjects( update, pb::adopt( csUpdateObjectsBySortNameCstr( *update, "IN_TLS_STACK", -1 ) ), renamePrivateKey );
    setVersion( update, "9.0" );
}
