// A C++20 program of a user: the values of the library behind the standard library's own ownership.
#include "cs/cs_module.h"
#include "in/in.h"
#include "iri/iri_module.h"
#include "pb/pb_module.h"
#include "pb/pb_string.h"
#include "pr/pr_module.h"
#include "rfc/rfc_module.h"
#include "tr/tr_module.h"
#include "unix/unix_module.h"

#include <cstdio>
#include <memory>

template <auto Release> struct Releaser {
    template <class T> void operator()( T *obj ) const { Release( obj ); }
};
using Address = std::unique_ptr<struct inAddress, Releaser<inAddressRelease>>;
using Network = std::unique_ptr<struct inNetwork, Releaser<inNetworkRelease>>;
using Text = std::unique_ptr<struct pbString, Releaser<pbStringRelease>>;

int main()
{
    const struct pbModule *modules[] = { pbModuleDescriptor(), trModule(), prModule(), unixModule(),
                                         rfcModule(),          iriModule(), csModule(), inModule() };
    std::unique_ptr<struct pbHost, Releaser<pbHostRelease>> host( pbHostTryStart( modules, PB_SIZEOF_ARRAY( modules ), nullptr ) );
    if ( !host )
        return 2;
    const Address address( inAddressTryCreateFromCstr( "2001:db8::1:2", -1 ) );
    const Network network( inNetworkCreate( address.get(), 32 ) );
    const Text text( inNetworkToString( network.get() ) );
    const bool right = pbStringEqualsCstr( text.get(), "2001:db8::/32", -1 ) && inNetworkContainsAddress( network.get(), address.get() );
    std::puts( right ? "2001:db8::/32 holds 2001:db8::1:2" : "wrong" );
    pbHostShutdown( host.get() );
    return right ? 0 : 1;
}
