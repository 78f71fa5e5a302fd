// inctl udp receive: datagrams in, a line each, and back again with --echo.
#include "inctl/command.hpp"
#include "inctl/ear.hpp"
#include "inctl/endpoint.hpp"
#include "inctl/help_formatter.hpp"
#include "inctl/host.hpp"
#include "inctl/interface_view.hpp"
#include "inctl/preview.hpp"
#include "inctl/qos_choice.hpp"
#include "inctl/stack_choice.hpp"
#include "inctl/udp_opening.hpp"
#include "inctl/waiter.hpp"

#include "pb/pb_buffer.h"

#include <fmt/format.h>

#include <memory>
#include <optional>
#include <set>

namespace inctl {
namespace {

struct ReceiveOptions {
    pbInt port = IN_UDP_PORT_INVALID;
    std::string group;
    bool echo = false;
    bool rtp = false;
    std::optional<pbInt> count;
    std::optional<pbInt> timeout;
    StackChoice stack;
    QosChoice qos;
};

// Receives until enough has come, the time is over or a person stops it, and keeps count.
class Listener {
public:
    Listener( Output &output, const ReceiveOptions &options ) : output_( output ), options_( options )
    {
        if ( options.group.empty() )
            openChannels();
        else
            openTheGroup();
    }

    Exit run()
    {
        for ( const NamedEar &named : ears_ )
            announce( named );
        const auto start = Waiter::Clock::now();
        std::optional<Waiter::Clock::time_point> deadline;
        if ( options_.timeout )
            deadline = start + std::chrono::milliseconds( *options_.timeout );
        bool inTime = true;
        while ( !enough() && !output_.broken() ) {
            // While datagrams come, only look: more may wait, but a flood must not keep this from ending.
            const bool flowing = drain();
            const Waiter::Woken woken = flowing ? waiter_.look( deadline ) : waiter_.wait( deadline );
            inTime = woken != Waiter::Woken::Time;
            if ( woken != Waiter::Woken::Library )
                break;
        }
        summary( std::chrono::duration_cast<std::chrono::milliseconds>( Waiter::Clock::now() - start ).count() );
        return inTime || ( !options_.count && datagrams_ > 0 ) ? Exit::Yes : Exit::No;
    }

private:
    struct NamedEar {
        const char *name; // "rtp" and "rtcp" of a pair, else ""
        std::unique_ptr<Ear> ear;
    };

    void openChannels()
    {
        StackChoice choice = options_.stack;
        if ( options_.rtp && options_.port != IN_UDP_PORT_INVALID )
            choice.ports = fmt::format( "{}-{}", options_.port, options_.port + 1 );
        stack_.emplace( choice, nullptr );
        qos_ = options_.qos.stack();
        if ( options_.rtp ) {
            auto [rtp, rtcp] = openRtpPair( stack_->get(), qos_.get() );
            ears_.push_back( { "rtp", makeEar( std::move( rtp ), waiter_ ) } );
            ears_.push_back( { "rtcp", makeEar( std::move( rtcp ), waiter_ ) } );
        }
        else
            ears_.push_back( { "", makeEar( openChannel( stack_->get(), qos_.get(), options_.port, 0 ), waiter_ ) } );
    }

    void openTheGroup()
    {
        const auto group = parseAddress( "--group", options_.group );
        if ( !inAddressIsMulticast( group.get() ) )
            throw Failure{ Exit::Usage, fmt::format( "--group: {} is no multicast address", options_.group ) };
        if ( !options_.stack.interface.empty() )
            requireInterface( options_.stack.interface );
        ears_.push_back(
            { "", makeEar( openGroup( group.get(), options_.stack.interface, options_.port ), waiter_ ) } );
    }

    bool enough() const { return options_.count && datagrams_ >= *options_.count; }

    void announce( const NamedEar &named )
    {
        const auto local = named.ear->local();
        output_.line( fmt::format( "Listening on {}{}{}", text( local ), *named.name ? " for " : "", named.name ) );
        Record record = Record()
                            .set( "event", "listening" )
                            .set( "localUdpAddress", pb::adopt( inUdpAddressStore( local.get() ) ) );
        if ( *named.name )
            record.set( "channel", named.name );
        output_.record( record );
    }

    // Takes a portion of what waits; true when something came.
    bool drain()
    {
        bool any = false;
        for ( const NamedEar &named : ears_ ) {
            for ( int portion = 0; portion < 64 && !enough(); ++portion ) {
                const auto packet = named.ear->receive();
                if ( !packet )
                    break;
                any = true;
                take( named, packet.get() );
            }
            if ( named.ear->failed() )
                throw Failure{ Exit::System, fmt::format( "the socket on {} has failed", text( named.ear->local() ) ) };
        }
        return any;
    }

    void take( const NamedEar &named, const struct inUdpPacket *packet )
    {
        const auto peer = pb::adopt( inUdpPacketRemoteAddress( packet ) );
        const auto payload = pb::adopt( inUdpPacketPayload( packet ) );
        if ( options_.echo )
            named.ear->send( packet );
        ++datagrams_;
        bytes_ += pbBufferLength( payload.get() );
        // Bounded, whoever sends: a count of peers is not worth any amount of memory.
        if ( peers_.size() < maximumPeers )
            peers_.insert( text( peer ) );
        output_.line( fmt::format( "{}  {}{:<21} {:>5} bytes  {}", timeOfDay(),
                                   *named.name ? fmt::format( "{:<5}", named.name ) : "", text( peer ),
                                   pbBufferLength( payload.get() ), preview( payload.get() ) ) );
        Record record = Record()
                            .set( "event", "received" )
                            .set( "time", timeStamp() )
                            .set( "remoteUdpAddress", pb::adopt( inUdpAddressStore( peer.get() ) ) )
                            .set( "byteCount", pbBufferLength( payload.get() ) )
                            .set( "payload", hexadecimal( payload.get() ) );
        if ( *named.name )
            record.set( "channel", named.name );
        output_.record( record );
    }

    void summary( pbInt milliseconds )
    {
        output_.line( fmt::format(
            "{} {}, {} bytes, from {}{} {}, in {:.1f} s", datagrams_, datagrams_ == 1 ? "datagram" : "datagrams",
            bytes_, peers_.size() < maximumPeers ? "" : "at least ", peers_.size(),
            peers_.size() == 1 ? "peer" : "peers", static_cast<double>( milliseconds ) / 1000 ) );
        output_.record( Record()
                            .set( "event", "summary" )
                            .set( "datagrams", datagrams_ )
                            .set( "byteCount", bytes_ )
                            .set( "peers", peers_.size() )
                            .set( "milliseconds", milliseconds ) );
    }

    static constexpr size_t maximumPeers = 10000;

    Output &output_;
    const ReceiveOptions &options_;
    Waiter waiter_;
    std::optional<ChosenStack> stack_;
    pb::Ref<struct inQosStack> qos_;
    std::vector<NamedEar> ears_;
    pbInt datagrams_ = 0;
    pbInt bytes_ = 0;
    std::set<std::string> peers_;
};

Exit receive( Output &output, const ReceiveOptions &options )
{
    if ( !options.group.empty() && options.port == IN_UDP_PORT_INVALID )
        throw Failure{ Exit::Usage, "--group needs --port: a group is received on one port" };
    if ( options.rtp && options.port != IN_UDP_PORT_INVALID && options.port % 2 != 0 )
        throw Failure{ Exit::Usage, "--rtp needs an even --port: RTCP takes the odd one behind it" };
    if ( options.rtp && options.port != IN_UDP_PORT_INVALID && !options.stack.fromStack.empty() )
        throw Failure{ Exit::Usage, "--rtp takes its ports from --port or from the range of --from-stack, not both" };
    const Host host;
    return Listener( output, options ).run();
}

} // namespace

void addUdpReceive( CLI::App &udp, Context &context )
{
    CLI::App *command =
        addCommand( udp, context, "receive", "Receive datagrams and show them",
                    "  inctl udp receive --port 7000 --echo           an echo server\n"
                    "  inctl udp receive --rtp --ports 16384-32767    a pair for RTP and RTCP\n"
                    "  inctl udp receive --group 239.1.2.3 --port 5004 --interface eth0\n"
                    "  inctl udp receive --count 1 --timeout 5000     exit 0 when a datagram came within 5 s\n" );
    auto options = std::make_shared<ReceiveOptions>();
    CLI::Option *port = command->add_option( "--port", options->port, "Listen on this port (else one that is free)" );
    port->type_name( "PORT" )->check( quiet( CLI::Range( 1, 65535 ) ) );
    CLI::Option *echo = command->add_flag( "--echo", options->echo, "Send every datagram back" );
    CLI::Option *rtp = command->add_flag( "--rtp", options->rtp, "Open an even port for RTP and the next for RTCP" );
    CLI::Option *group = command->add_option( "--group", options->group, "Receive this multicast group" );
    group->type_name( "ADDRESS" )->excludes( echo )->excludes( rtp );
    command->add_option( "--count", options->count, "End after so many datagrams" )
        ->type_name( "N" )
        ->check( quiet( CLI::Range( 1, 1'000'000'000 ) ) );
    command->add_option( "--timeout", options->timeout, "End after so many milliseconds" )
        ->type_name( "MS" )
        ->check( quiet( CLI::Range( 0, 2'000'000'000 ) ) );
    addStackOptions( *command, options->stack );
    addQosOptions( *command, options->qos );
    command->get_option( "--ports" )->excludes( port );
    // A group is received on its own address and port, and sends nothing that could be marked.
    for ( const char *other : { "--address", "--ports", "--from-stack", "--qos", "--tos" } )
        group->excludes( command->get_option( other ) );
    command->callback(
        [&context, options] { context.run = [&context, options] { return receive( context.output, *options ); }; } );
}

} // namespace inctl
