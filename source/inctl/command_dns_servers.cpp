// inctl dns-servers: the DNS servers of the host's resolver.
#include "inctl/command.hpp"
#include "inctl/items.hpp"

#include "in/base/in_address.h"
#include "in/dns/in_system_dns_servers.h"

namespace inctl {
namespace {

Exit showDnsServers( Output &output )
{
    const auto servers = items( pb::adopt( inSystemEnumerateDnsServers() ), inAddressFrom );
    Record list;
    for ( const auto &server : servers ) {
        const pb::String text = pb::adopt( inAddressToString( server.get() ) );
        output.line( pb::utf8( text ) );
        list.append( text );
    }
    output.record( Record().set( "dnsServers", list ) );
    if ( !servers.empty() )
        return Exit::Yes;
    output.line( "The host's resolver is configured with no DNS server." );
    return Exit::No;
}

} // namespace

void addDnsServers( CLI::App &root, Context &context )
{
    CLI::App *command = addCommand( root, context, "dns-servers", "List the DNS servers of the host's resolver",
                                    "  inctl dns-servers\n"
                                    "  inctl dns-servers --json | jq -r '.dnsServers[]'\n" );
    command->callback( [&context] { context.run = [&context] { return showDnsServers( context.output ); }; } );
}

} // namespace inctl
