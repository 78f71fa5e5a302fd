// inctl tour-names: the part of the tour that needs a host of its own. Not shown; the tour runs it as another process
// and shows what it prints.
#include "inctl/command.hpp"
#include "inctl/configuration.hpp"
#include "inctl/endpoint.hpp"
#include "inctl/host.hpp"
#include "inctl/items.hpp"
#include "inctl/look_up.hpp"
#include "inctl/own_host.hpp"
#include "inctl/tour_example.hpp"

#include "in/filter/in_filter.h"

#include <fmt/format.h>

namespace inctl {
namespace {

constexpr pbInt timeout = 5000; // milliseconds
constexpr const char *service = "_sip._udp.tour.test";
// A server of the service, a host of the network of the second entry, and one that is neither.
constexpr const char *peers[] = { "192.0.2.10", "198.51.100.7", "198.51.100.77" };

const std::vector<std::string> serverKnows = {
    "--local=/test/",
    "--srv-host=_sip._udp.tour.test,pbx.tour.test,5060,10,50",
    "--srv-host=_sip._udp.tour.test,spare.tour.test,5060,20,0",
    "--host-record=pbx.tour.test,192.0.2.10,2001:db8::10",
    "--host-record=spare.tour.test,192.0.2.11",
};

Record services( struct inStack *stack, Waiter &waiter )
{
    const LookUp lookUp = lookUpServices( stack, pb::string( service ), timeout, waiter );
    if ( !lookUp.found )
        throw Failure{ Exit::No, sentence( lookUp, service, "SRV records", "disableQuerySrv", timeout ) };
    Record list;
    for ( const auto &srv : items( lookUp.found, inDnsDataInSrvFrom ) ) {
        const auto target = pb::adopt( inDnsDataInSrvTarget( srv.get() ) );
        Record addresses;
        if ( const LookUp found = lookUpAddresses( stack, target, timeout, waiter ); found.found )
            for ( const auto &address : items( found.found, inAddressFrom ) )
                addresses.append( pb::adopt( inAddressToString( address.get() ) ) );
        list.append( Record()
                         .set( "priority", inDnsDataInSrvPriority( srv.get() ) )
                         .set( "weight", inDnsDataInSrvWeight( srv.get() ) )
                         .set( "port", inDnsDataInSrvPort( srv.get() ) )
                         .set( "target", target )
                         .set( "addresses", addresses ) );
    }
    return list;
}

// Waits for the list of the filter, whose names are looked up.
void awaitUp( const Configuration::Object &object, Waiter &waiter )
{
    const auto deadline = Waiter::Clock::now() + std::chrono::milliseconds( timeout );
    for ( ;; ) {
        csStatusReporterUpdateAddSignalable( object.status.get(), waiter.signalable() );
        if ( csStatusReporterUp( object.status.get() ) )
            break;
        if ( waiter.wait( deadline ) != Waiter::Woken::Library )
            throw Failure{ Exit::No, fmt::format( "the filter {} has no list yet", object.name ) };
    }
    csStatusReporterUpdateDelSignalable( object.status.get(), waiter.signalable() );
}

Record checks( const struct inFilter *filter )
{
    Record list;
    for ( const char *peer : peers ) {
        const auto address = parseAddress( "peer", peer );
        const auto why = pb::adopt( inFilterExplain( filter, address.get() ) );
        list.append( Record()
                         .set( "address", peer )
                         .set( "permitted", inFilterCheck( filter, address.get() ) != 0 )
                         .set( "text", pb::adopt( pbStoreValueCstr( why.get(), "text", -1 ) ) ) );
    }
    return list;
}

Record show()
{
    if ( const auto why = tryEnterOwnHost() )
        return Record().set( "leftOut", *why );
    const NameServer server( serverKnows );
    const Host host;
    Configuration configuration( namesExample, "examples/names.json" );
    configuration.start();
    Waiter waiter;
    const auto stack = pb::adopt( inStackFrom( configuration.object( "loopback", inStackSort() ).release() ) );
    Record record = Record().set( "service", service ).set( "srvs", services( stack.get(), waiter ) );
    for ( const Configuration::Object &object : configuration.objects() )
        if ( object.name == "peers" ) {
            awaitUp( object, waiter );
            const auto filter = pb::share( inFilterFrom( object.object.get() ) );
            record.set( "filter", object.name ).set( "checks", checks( filter.get() ) );
        }
    return record;
}

} // namespace

void addTourNames( CLI::App &root, Context &context )
{
    CLI::App *command = root.add_subcommand( "tour-names", "The part of the tour that has a host of its own" );
    command->group( "" );
    addJsonOption( *command, context );
    command->callback( [&context] {
        context.run = [&context] {
            context.output.record( show() );
            return Exit::Yes;
        };
    } );
}

} // namespace inctl
