// inctl tour: what the library does, shown on this host in a few seconds and without a network.
#include "inctl/command.hpp"
#include "inctl/configuration.hpp"
#include "inctl/endpoint.hpp"
#include "inctl/exchange.hpp"
#include "inctl/host.hpp"
#include "inctl/interface_view.hpp"
#include "inctl/marking.hpp"
#include "inctl/qos_choice.hpp"
#include "inctl/tour_example.hpp"
#include "inctl/tour_names.hpp"
#include "inctl/trace_catcher.hpp"
#include "inctl/udp_opening.hpp"

#include "in/qos/in_qos_options.h"

#include <fmt/format.h>

#include <memory>
#include <optional>

namespace inctl {
namespace {

constexpr pbInt datagramCount = 10'000;
constexpr pbInt datagramBytes = 172; // 20 ms of G.711 voice behind an RTP header (RFC 3551)
constexpr size_t traceLines = 12;

struct TourOptions {
    std::string file; // empty: the example
};

class Tour {
public:
    Tour( Output &output, const TourOptions &options, Record &record )
        : output_( output ), record_( record ),
          configuration_( options.file.empty() ? std::make_unique<Configuration>( tourExample, "examples/tour.json" )
                                               : std::make_unique<Configuration>( options.file ) ),
          file_( options.file.empty() ? "examples/tour.json" : options.file )
    {
    }

    bool run()
    {
        showInterfaces();
        showStacks();
        showPair();
        const bool returned = showExchange();
        const bool marked = showMarking();
        return showNames( output_, record_ ) && returned && marked;
    }

private:
    void heading( const std::string &text ) { output_.line( "\n" + output_.paint( Paint::Strong, text ) ); }

    void showInterfaces()
    {
        heading( "Interfaces of this host" );
        const std::vector<InterfaceView> views = interfaces();
        printInterfaces( output_, views );
        record_.set( "interfaces", interfacesRecord( views ) );
    }

    // Starts the file's objects; keeps a stack on an address of this host, one on loopback, and a QoS stack.
    void showStacks()
    {
        heading( fmt::format( "Objects of {}", file_ ) );
        configuration_->start();
        Table table{ { "NAME" }, { "SORT" }, { "STATE" }, { "ADDRESS" }, { "INTERFACE" } };
        Record list;
        for ( const Configuration::Object &object : configuration_->objects() ) {
            Record record = Record().set( "name", object.name ).set( "sort", object.sort );
            if ( object.object && pbObjSort( object.object.get() ) == inStackSort() )
                addStack( object, table, record );
            else {
                if ( object.object && !qos_ && pbObjSort( object.object.get() ) == inQosStackSort() )
                    qos_ = pb::share( inQosStackFrom( object.object.get() ) );
                table.add( { Cell( object.name, Paint::Strong ), Cell( object.sort ), Cell( "ready", Paint::Good ),
                             Cell( "-" ), Cell( "-" ) } );
            }
            list.append( record );
        }
        table.print( output_ );
        record_.set( "objects", list );
        if ( !own_ && !loopback_ )
            throw Failure{ Exit::No, fmt::format( "no stack of {} has an address on this host", file_ ) };
    }

    void addStack( const Configuration::Object &object, Table &table, Record &record )
    {
        const auto stack = pb::share( inStackFrom( object.object.get() ) );
        const bool up = inStackUp( stack.get() );
        const auto address = pb::adopt( inStackAddress( stack.get() ) );
        std::string interface = "-";
        if ( const auto primary = pb::adopt( inStackPrimaryInterface( stack.get() ) ) )
            interface = InterfaceView( primary ).name();
        if ( address )
            ( inAddressIsLoopback( address.get() ) ? loopback_ : own_ ) = stack;
        table.add( { Cell( object.name, Paint::Strong ), Cell( object.sort ),
                     up ? Cell( "up", Paint::Good ) : Cell( "down", Paint::Bad ),
                     Cell( address ? text( address ) : "-" ), Cell( interface ) } );
        record.set( "up", up ).set( "interface", interface );
        if ( address )
            record.set( "inStackAddress", text( address ) );
    }

    struct inStack *networkStack() const { return own_ ? own_.get() : loopback_.get(); }
    struct inStack *quietStack() const { return loopback_ ? loopback_.get() : own_.get(); }

    void showPair()
    {
        heading( "A pair for RTP and RTCP from the stack's port range" );
        const auto [rtp, rtcp] = openRtpPair( networkStack(), qos_.get() );
        const auto rtpAddress = pb::adopt( inUdpChannelLocalAddress( rtp.get() ) );
        const auto rtcpAddress = pb::adopt( inUdpChannelLocalAddress( rtcp.get() ) );
        output_.line( fmt::format( "RTP on {}, RTCP on {}", text( rtpAddress ), text( rtcpAddress ) ) );
        record_.set( "rtpUdpAddress", pb::adopt( inUdpAddressStore( rtpAddress.get() ) ) )
            .set( "rtcpUdpAddress", pb::adopt( inUdpAddressStore( rtcpAddress.get() ) ) );
    }

    bool showExchange()
    {
        const auto near = openChannel( quietStack(), qos_.get(), IN_UDP_PORT_INVALID, 0 );
        const auto far = openChannel( quietStack(), nullptr, IN_UDP_PORT_INVALID, 0 );
        const std::string nearText = text( pb::adopt( inUdpChannelLocalAddress( near.get() ) ) );
        const std::string farText = text( pb::adopt( inUdpChannelLocalAddress( far.get() ) ) );
        heading( fmt::format( "{} datagrams of {} bytes, {} to {} and back, one at a time", datagramCount,
                              datagramBytes, nearText, farText ) );
        const Exchange result = exchange( near.get(), far.get(), datagramCount, datagramBytes, waiter_ );
        output_.line(
            fmt::format( "{} sent, {} came back, {} lost; there and back p50 {:.0f} us, p99 {:.0f} us, max {:.0f} us; "
                         "{:.0f} datagrams/s",
                         result.sent, result.returned, result.lost(), result.median, result.percentile99,
                         result.maximum, result.perSecond() ) );
        record_.set( "exchange", Record()
                                     .set( "sent", result.sent )
                                     .set( "returned", result.returned )
                                     .set( "lost", result.lost() )
                                     .set( "medianMicroseconds", pbInt( result.median ) )
                                     .set( "percentile99Microseconds", pbInt( result.percentile99 ) )
                                     .set( "maximumMicroseconds", pbInt( result.maximum ) )
                                     .set( "datagramsPerSecond", pbInt( result.perSecond() ) ) );
        return result.returned > 0;
    }

    // True when the socket and a received datagram carry what the QoS stack asks for.
    bool showMarking()
    {
        if ( !qos_ )
            return true; // a file of the user's own may mark nothing
        heading( "The marking, read back" );
        const auto options = pb::adopt( inQosStackOptions( qos_.get() ) );
        const int wanted = static_cast<int>( inQosOptionsLayer3Tos( options.get() ) );
        const auto channel = openChannel( quietStack(), qos_.get(), IN_UDP_PORT_INVALID, 0 );
        const Marking marking = readMarking( channel.get() );
        const auto shown = []( const std::optional<int> &tos ) {
            return tos ? tosText( *tos ) : std::string( "unknown" );
        };
        output_.line( fmt::format( "asked for {}; the socket has {}, priority {}; a received datagram has {}",
                                   tosText( wanted ), shown( marking.socketTos ),
                                   marking.socketPriority ? std::to_string( *marking.socketPriority ) : "unknown",
                                   shown( marking.receivedTos ) ) );
        Record record = Record().set( "layer3Tos", wanted );
        if ( marking.socketTos )
            record.set( "socketLayer3Tos", *marking.socketTos );
        if ( marking.socketPriority )
            record.set( "socketLayer2Pcp", *marking.socketPriority );
        if ( marking.receivedTos )
            record.set( "receivedLayer3Tos", *marking.receivedTos );
        record_.set( "marking", record );
        return marking.socketTos.value_or( wanted ) == wanted && marking.receivedTos.value_or( wanted ) == wanted;
    }

    Output &output_;
    Record &record_;
    const std::unique_ptr<Configuration> configuration_;
    const std::string file_;
    pb::Ref<struct inStack> own_;
    pb::Ref<struct inStack> loopback_;
    pb::Ref<struct inQosStack> qos_;
    Waiter waiter_;
};

// At most so many bytes, cut between characters.
std::string shortened( const std::string &text, size_t bytes )
{
    if ( text.size() <= bytes )
        return text;
    size_t end = bytes - 3;
    while ( end > 0 && ( text[end] & 0xC0 ) == 0x80 )
        --end;
    return text.substr( 0, end ) + "...";
}

void showTraces( Output &output, const TraceCatcher &catcher, Record &record )
{
    output.line( fmt::format( "\n{}", output.paint( Paint::Strong, fmt::format( "What it traced, {} events; among them",
                                                                                catcher.count() ) ) ) );
    Record list;
    for ( const TraceCatcher::Caught &caught : catcher.handful( traceLines ) ) {
        const std::string text = shortened( caught.text, 110 );
        output.line( fmt::format(
            "{}  {}", output.paint( Paint::Faint, fmt::format( "{}#{}", caught.name, caught.stream ) ), text ) );
        list.append( Record().set( "name", caught.name ).set( "stream", caught.stream ).set( "text", caught.text ) );
    }
    record.set( "traces", list );
}

Exit tour( Output &output, const TourOptions &options )
{
    const TraceCatcher catcher;
    Record record;
    bool good = false;
    {
        const Host host;
        good = Tour( output, options, record ).run();
    }
    showTraces( output, catcher, record );
    output.line( "\nEverything is closed, every thread has ended." );
    output.record( record );
    return good ? Exit::Yes : Exit::No;
}

} // namespace

void addTour( CLI::App &root, Context &context )
{
    CLI::App *command = addCommand( root, context, "tour", "Show what the library does, on this host",
                                    "  inctl tour                      with the example that is built in\n"
                                    "  inctl tour examples/tour.json   the same from its file, to play with\n"
                                    "  inctl tour --json=pretty | jq .exchange\n" );
    auto options = std::make_shared<TourOptions>();
    command->add_option( "FILE", options->file, "A configuration with a stack or two" );
    command->callback(
        [&context, options] { context.run = [&context, options] { return tour( context.output, *options ); }; } );
}

} // namespace inctl
