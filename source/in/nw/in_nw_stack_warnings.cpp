// What a person should know about the configuration of an interface stack although it is valid.
#include "in/nw/in_nw_stack_warnings_internal.h"

#include "cs/cs_warnings.h"
#include "in/base/in_address.h"
#include "in/base/in_network.h"
#include "in/base/in_stack_warnings_internal.h"
#include "in/nw/in_nw_options.h"
#include "pb/pb_string.hpp"

#include <net/if.h>

namespace {

class Warner {
public:
    Warner( const struct pbStore *config, struct csWarnings *warnings )
        : options_( pb::adopt( inNwOptionsRestore( config ) ) ),
          identifier_( pb::adopt( inNwOptionsInterfaceIdentifier( options_.get() ) ) ),
          address_( pb::adopt( inNwOptionsLayer3UnicastAddress( options_.get() ) ) ),
          network_( pb::adopt( inNwOptionsLayer3Network( options_.get() ) ) ),
          status_( inNwOptionsStatus( options_.get() ) ), warnings_( warnings )
    {
    }

    void run( bool online )
    {
        warnOfInterface( online );
        if ( status_ )
            add( "status", "the stack sees to the interface's status: it takes the interface down when it lets go or "
                           "its condition is false, whether or not the interface was up before" );
        if ( address_ )
            warnOfAddress();
        else if ( network_ )
            add( "layer3Network", "has no effect without \"layer3UnicastAddress\"" );
        else if ( !status_ )
            add( "", "wishes for neither status nor address: nothing is configured" );
    }

private:
    void warnOfInterface( bool online )
    {
        if ( !identifier_ )
            add( "", "names no interface (\"interfaceIdentifier\"): nothing is configured" );
        else if ( pb::utf8( identifier_ ).size() >= IFNAMSIZ )
            add( "interfaceIdentifier", "longer than the 15 characters that the name of an interface has at most" );
        else if ( online )
            (void)in::warnOfAbsentInterface( identifier_.get(), "interfaceIdentifier", warnings_ ); // told there
    }
    void warnOfAddress()
    {
        if ( !inAddressIsUnicast( address_.get() ) )
            add( "layer3UnicastAddress", "is no unicast address" );
        const pbInt fullLength = inAddressLength( address_.get() ) * 8;
        const pbInt length = network_ ? inNetworkPrefixLength( network_.get() ) : -1;
        if ( inAddressIsV6( address_.get() ) && length != -1 && length != fullLength )
            add( "layer3Network", "the kernel keeps an IPv6 address that was added with a prefix length below 128: it "
                                  "is left behind when the stack lets go" );
    }
    void add( const char *key, const char *text ) { csWarningsAdd( warnings_, key, pb::string( text ).get() ); }

    const pb::Ref<struct inNwOptions> options_;
    const pb::String identifier_;
    const pb::Ref<struct inAddress> address_;
    const pb::Ref<struct inNetwork> network_;
    const bool status_;
    struct csWarnings *const warnings_;
};

} // namespace

void in___NwStackWarningsFunc( const struct pbStore *config, pbBool online, struct csWarnings *warnings )
{
    Warner( config, warnings ).run( online );
}
