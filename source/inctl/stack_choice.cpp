// The stack on which a command sends or receives.
#include "inctl/stack_choice.hpp"

#include "inctl/endpoint.hpp"
#include "inctl/exit_code.hpp"
#include "inctl/interface_view.hpp"

#include "in/base/in_address_version.h"
#include "in/base/in_flags.h"
#include "in/base/in_options.h"
#include "in/udp/in_udp_options.h"
#include "in/udp/in_udp_port_range.h"

#include <CLI/App.hpp>
#include <fmt/format.h>

namespace inctl {
namespace {

using Options = pb::Ref<struct inOptions>;

void setPorts( Options &options, const std::string &ports )
{
    const PortSpan span = parsePorts( "--ports", ports );
    auto udpOptions = pb::adopt( inUdpOptionsCreate() );
    inUdpOptionsSetPortRange( udpOptions.address(), pb::adopt( inUdpPortRangeCreate( span.first, span.count ) ).get() );
    inOptionsSetUdpOptions( options.address(), udpOptions.get() );
}

Options optionsOf( const StackChoice &choice, const struct inAddress *optionalPeer )
{
    Options options = pb::adopt( inOptionsCreate() );
    if ( !choice.interface.empty() ) {
        requireInterface( choice.interface );
        inOptionsSetInterface( options.address(), pb::string( choice.interface ).get() );
    }
    if ( !choice.address.empty() )
        inOptionsSetAddress( options.address(), parseAddress( "--address", choice.address ).get() );
    if ( !choice.ports.empty() )
        setPorts( options, choice.ports );
    if ( optionalPeer && choice.address.empty() ) {
        inOptionsSetAddressVersion( options.address(), inAddressVersion( optionalPeer ) );
        if ( inAddressIsLoopback( optionalPeer ) && choice.interface.empty() )
            inOptionsSetFlags( options.address(), IN_FLAG_LOOPBACK_ONLY );
    }
    return options;
}

} // namespace

pb::Ref<struct inStack> makeStack( const Configuration &configuration, const std::string &name )
{
    const auto stored = configuration.store( name, inStackSort() );
    return pb::adopt( inStackCreate( pb::adopt( inOptionsRestore( stored.get() ) ).get(), nullptr ) );
}

void addStackOptions( CLI::App &command, StackChoice &choice )
{
    CLI::Option *fromStack = command.add_option( "--from-stack", choice.fromStack, "A stack of a configuration file" );
    fromStack->type_name( "FILE:OBJECT" );
    command.add_option( "--interface", choice.interface, "Use an address of this interface" )
        ->type_name( "NAME" )
        ->excludes( fromStack );
    command.add_option( "--address", choice.address, "Use this address of the host" )
        ->type_name( "ADDRESS" )
        ->excludes( fromStack );
    command.add_option( "--ports", choice.ports, "Take the local port from this range" )
        ->type_name( "FIRST-LAST" )
        ->excludes( fromStack );
}

ChosenStack::ChosenStack( const StackChoice &choice, const struct inAddress *optionalPeer )
{
    if ( choice.fromStack.empty() ) {
        stack_ = pb::adopt( inStackCreate( optionsOf( choice, optionalPeer ).get(), nullptr ) );
        return;
    }
    const size_t colon = choice.fromStack.rfind( ':' );
    if ( colon == std::string::npos || colon == 0 || colon + 1 == choice.fromStack.size() )
        throw Failure{ Exit::Usage, fmt::format( "{}: {} is not FILE:OBJECT", choice.option, choice.fromStack ) };
    const Configuration configuration( choice.fromStack.substr( 0, colon ) );
    stack_ = makeStack( configuration, choice.fromStack.substr( colon + 1 ) );
}

} // namespace inctl
