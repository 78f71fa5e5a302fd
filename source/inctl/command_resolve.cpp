// inctl resolve: asks a stack, as the objects of a configuration do, for addresses, a name or a service.
#include "inctl/asking_host.hpp"
#include "inctl/command.hpp"
#include "inctl/domain_name.hpp"
#include "inctl/endpoint.hpp"
#include "inctl/help_formatter.hpp"
#include "inctl/items.hpp"
#include "inctl/look_up.hpp"
#include "inctl/object_state.hpp"
#include "inctl/stack_choice.hpp"
#include "inctl/table.hpp"

#include <fmt/format.h>

namespace inctl {
namespace {

// Characters of a target that are shown. No name has so many, but a chain of labels in one answer, which thousands of
// records may share, has tens of thousands.
constexpr pbInt longestTarget = 1024;

struct ResolveOptions {
    std::string name, address, service; // one of them
    StackChoice stack;
    std::optional<pbInt> timeout; // milliseconds
};

std::string counted( size_t count, const std::string &one, const std::string &many )
{
    return fmt::format( "{} {}", count, count == 1 ? one : many );
}

pb::String failureOf( const LookUp &lookUp )
{
    if ( !lookUp.interruptedBy )
        return pb::adopt( inDnsQueryFailureToString( lookUp.failure ) );
    return pb::string( *lookUp.interruptedBy == Waiter::Woken::Time ? "timeout" : "interrupted" );
}

class Resolution {
  public:
    Resolution( Output &output, const ResolveOptions &options )
        : output_( output ), options_( options ), stack_( options.stack, nullptr ),
          timeout_( options.timeout.value_or( defaultTimeout( stack_.get() ) ) )
    {
    }

    void addresses( const pb::String &name )
    {
        record_.set( "domainName", name );
        const LookUp lookUp = lookUpAddresses( stack_.get(), name, timeout_, waiter_ );
        require( lookUp, options_.name, "addresses", "disableQueryAddresses" );
        Record list;
        const auto found = items( lookUp.found, inAddressFrom );
        for ( const auto &address : found ) {
            output_.line( text( address ) );
            list.append( pb::adopt( inAddressToString( address.get() ) ) );
        }
        record_.set( "addresses", list );
        finish( lookUp, counted( found.size(), "address", "addresses" ) );
    }

    void domainNames( const pb::Ref<struct inAddress> &address )
    {
        record_.set( "address", text( address ) );
        const LookUp lookUp = lookUpDomainNames( stack_.get(), address, timeout_, waiter_ );
        require( lookUp, options_.address, "name", "disableQueryDomainNames" );
        Record list;
        bool numeric = false;
        const auto found = items( lookUp.found, pbStringFrom );
        for ( const auto &name : found ) {
            list.append( name );
            numeric |= static_cast<bool>( pb::adopt( inAddressTryCreateFromString( name.get() ) ) );
        }
        record_.set( "domainNames", list ).set( "numeric", numeric );
        if ( numeric ) {
            record( lookUp );
            throw Failure{ Exit::No, fmt::format( "there is no name for {}: the resolver gives the address itself",
                                                  options_.address ) };
        }
        for ( const auto &name : found )
            output_.line( printable( pb::utf8( name ) ) );
        finish( lookUp, counted( found.size(), "name", "names" ) );
    }

    void services( const pb::String &service )
    {
        record_.set( "service", service );
        const LookUp lookUp = lookUpServices( stack_.get(), service, timeout_, waiter_ );
        require( lookUp, options_.service, "SRV records", "disableQuerySrv" );
        Record list;
        Table table{ { "TRY", true }, { "PRIORITY", true }, { "WEIGHT", true }, { "PORT", true }, { "TARGET" } };
        const auto found = items( lookUp.found, inDnsDataInSrvFrom );
        for ( size_t i = 0; i < found.size(); ++i ) {
            const pbInt priority = inDnsDataInSrvPriority( found[i].get() ),
                        weight = inDnsDataInSrvWeight( found[i].get() ), port = inDnsDataInSrvPort( found[i].get() );
            const auto target = pb::adopt( inDnsDataInSrvTarget( found[i].get() ) );
            const pbInt length = target ? pbStringLength( target.get() ) : 0;
            Record record = Record().set( "priority", priority ).set( "weight", weight ).set( "port", port );
            if ( length > longestTarget )
                record.set( "targetLength", length );
            else if ( target )
                record.set( "target", target );
            list.append( record );
            table.add( { Cell( std::to_string( i + 1 ) ), Cell( std::to_string( priority ) ),
                         Cell( std::to_string( weight ) ), Cell( std::to_string( port ) ),
                         length > longestTarget
                             ? Cell( fmt::format( "too long for a name ({} characters)", length ), Paint::Bad )
                         : target ? Cell( printable( pb::utf8( target ) ), Paint::Strong )
                                  : Cell( ". (not available here)", Paint::Bad ) } );
        }
        table.print( output_ );
        record_.set( "srvs", list );
        finish( lookUp, counted( found.size(), "record", "records" ) );
    }

  private:
    void require( const LookUp &lookUp, const std::string &subject, const std::string &what,
                  const std::string &disabledBy )
    {
        if ( lookUp.found )
            return;
        record_.set( "failure", failureOf( lookUp ) );
        record( lookUp );
        throw Failure{ Exit::No, sentence( lookUp, subject, what, disabledBy, timeout_ ) };
    }

    void finish( const LookUp &lookUp, const std::string &summary )
    {
        output_.line( output_.paint( Paint::Faint, fmt::format( "{} in {:.1f} ms", summary, lookUp.milliseconds ) ) );
        record( lookUp );
    }

    void record( const LookUp &lookUp )
    {
        output_.record( record_.set( "milliseconds", static_cast<pbInt>( lookUp.milliseconds ) ) );
    }

    Output &output_;
    const ResolveOptions &options_;
    Record record_;
    const ChosenStack stack_;
    const pbInt timeout_;
    Waiter waiter_;
};

Exit resolve( Output &output, const ResolveOptions &options )
{
    startAskingHost();
    if ( !options.name.empty() ) {
        if ( pb::adopt( inAddressTryCreateFromCstr( options.name.c_str(), -1 ) ) )
            throw Failure{ Exit::Usage, fmt::format( "{0} is an address; for its name: inctl resolve --ptr {0}",
                                                     options.name ) };
        const pb::String name = parseDomainName( options.name );
        Resolution( output, options ).addresses( name );
    }
    else if ( !options.service.empty() ) {
        const pb::String service = parseDomainName( options.service );
        Resolution( output, options ).services( service );
    }
    else {
        const auto address = parseAddress( "--ptr", options.address );
        Resolution( output, options ).domainNames( address );
    }
    return Exit::Yes;
}

} // namespace

void addResolve( CLI::App &root, Context &context )
{
    CLI::App *command = addCommand( root, context, "resolve", "Ask DNS as the objects of a configuration do",
                                    "  inctl resolve www.example.com\n"
                                    "  inctl resolve --ptr 192.0.2.1\n"
                                    "  inctl resolve --srv _sip._udp.example.com --json | jq -r '.srvs[].target'\n"
                                    "  inctl resolve pbx.example.com --stack server.json:sip --timeout 500\n" );
    auto options = std::make_shared<ResolveOptions>();
    options->stack.option = "--stack";
    CLI::Option *name = command->add_option( "NAME", options->name, "A domain name: find its addresses" );
    CLI::Option *ptr = command->add_option( "--ptr", options->address, "Find the name of this address" )
                           ->type_name( "ADDRESS" )
                           ->excludes( name );
    command
        ->add_option( "--srv", options->service, "Find where a service is to be had, such as _sip._udp.example.com" )
        ->type_name( "SERVICE" )
        ->excludes( name )
        ->excludes( ptr );
    command->add_option( "--stack", options->stack.fromStack, "Ask on this stack of a configuration file" )
        ->type_name( "FILE:OBJECT" );
    command->add_option( "--timeout", options->timeout, "Wait so long, not as long as the stack's options say" )
        ->type_name( "MS" )
        ->check( quiet( CLI::Range( PB_INT_FROM( 0 ), PB_INT_FROM( 3600000 ) ) ) );
    command->callback( [&context, options] {
        if ( options->name.empty() && options->address.empty() && options->service.empty() )
            throw CLI::RequiredError( "NAME, --ptr or --srv" );
        context.run = [&context, options] { return resolve( context.output, *options ); };
    } );
}

} // namespace inctl
