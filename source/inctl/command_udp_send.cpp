// inctl udp send: datagrams out, and replies when they are awaited.
#include "inctl/command.hpp"
#include "inctl/endpoint.hpp"
#include "inctl/help_formatter.hpp"
#include "inctl/host.hpp"
#include "inctl/preview.hpp"
#include "inctl/qos_choice.hpp"
#include "inctl/stack_choice.hpp"
#include "inctl/udp_opening.hpp"
#include "inctl/waiter.hpp"

#include "in/udp/in_udp_flags.h"
#include "in/udp/in_udp_packet.h"
#include "pb/pb_buffer.h"
#include "pb/pb_fd.hpp"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <memory>
#include <optional>
#include <unistd.h>

namespace inctl {
namespace {

using Milliseconds = std::chrono::milliseconds;

// What one datagram can carry: 65535 less the headers of IP and UDP (RFC 768, RFC 791); IPv6 does not count its own.
constexpr pbInt largestV4 = 65507;
constexpr pbInt largestV6 = 65527;

struct SendOptions {
    std::string destination;
    std::optional<std::string> text;
    std::string file;
    std::optional<pbInt> size;
    pbInt count = 1;
    pbInt interval = 20;
    pbInt port = IN_UDP_PORT_INVALID;
    std::optional<pbInt> waitReply;
    StackChoice stack;
    QosChoice qos;
};

// Reads no more than tells that the file is too long: it may be endless.
std::string readFile( const std::string &path, pbInt maximum )
{
    const pb::Fd file( open( path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY ) );
    std::string bytes( static_cast<size_t>( maximum ), '\0' );
    size_t length = 0;
    while ( length < bytes.size() ) {
        const ssize_t count = file ? read( file.get(), &bytes[length], bytes.size() - length ) : -1;
        if ( count < 0 )
            throw Failure{ Exit::System, fmt::format( "{} cannot be read: {}", path, std::strerror( errno ) ) };
        if ( count == 0 )
            break;
        length += static_cast<size_t>( count );
    }
    bytes.resize( length );
    return bytes;
}

std::string payloadBytes( const SendOptions &options, pbInt largest )
{
    if ( !options.file.empty() )
        return readFile( options.file, largest + 1 );
    std::string bytes = options.text.value_or( "" );
    if ( options.size ) // counting bytes, so that a receiver sees what is missing
        for ( pbInt i = 0; i < *options.size; ++i )
            bytes.push_back( static_cast<char>( i ) );
    return bytes;
}

pb::Ref<struct pbBuffer> payloadOf( const SendOptions &options, const pb::Ref<struct inAddress> &destination )
{
    const pbInt largest = inAddressIsV4( destination.get() ) ? largestV4 : largestV6;
    const std::string bytes = payloadBytes( options, largest );
    const pbInt length = static_cast<pbInt>( bytes.size() );
    if ( length > largest )
        throw Failure{ Exit::Usage,
                       fmt::format( "a datagram to {} carries at most {} bytes, not {}{}", text( destination ), largest,
                                    length, options.file.empty() ? "" : " or more" ) };
    return pb::adopt( pbBufferCreateFromBytes( bytes.data(), length ) );
}

// Sends what the options say and keeps count.
class Sender {
public:
    Sender( Output &output, const SendOptions &options )
        : output_( output ), options_( options ), remote_( parseEndpoint( options.destination ) ),
          address_( pb::adopt( inUdpAddressAddress( remote_.get() ) ) ), payload_( payloadOf( options, address_ ) ),
          stack_( options.stack, address_.get() ), qos_( options.qos.stack() ),
          channel_(
              openChannel( stack_.get(), qos_.get(), options.port, options.waitReply ? 0 : IN_UDP_FLAG_NO_RECEIVE ) ),
          local_( pb::adopt( inUdpChannelLocalAddress( channel_.get() ) ) )
    {
        inUdpChannelReceiveAddAlertable( channel_.get(), waiter_.alertable() );
    }
    ~Sender() { inUdpChannelReceiveDelAlertable( channel_.get(), waiter_.alertable() ); }

    Exit run()
    {
        while ( sent_ < options_.count && !output_.broken() ) {
            const auto next = Waiter::Clock::now() + Milliseconds( options_.interval );
            sendOne();
            if ( options_.waitReply && !awaitReply() )
                break;
            if ( sent_ < options_.count && !pass( next ) )
                break;
        }
        summary();
        return options_.waitReply && replies_ == 0 ? Exit::No : Exit::Yes;
    }

private:
    void sendOne()
    {
        sentAt_ = Waiter::Clock::now();
        inUdpChannelSendBytes( channel_.get(), remote_.get(), pbBufferBacking( payload_.get() ),
                               pbBufferLength( payload_.get() ) );
        ++sent_;
        output_.line( fmt::format( "{}  sent {} bytes  {} -> {}", timeOfDay(), pbBufferLength( payload_.get() ),
                                   text( local_ ), text( remote_ ) ) );
        output_.record( Record()
                            .set( "event", "sent" )
                            .set( "time", timeStamp() )
                            .set( "localUdpAddress", pb::adopt( inUdpAddressStore( local_.get() ) ) )
                            .set( "remoteUdpAddress", pb::adopt( inUdpAddressStore( remote_.get() ) ) )
                            .set( "byteCount", pbBufferLength( payload_.get() ) ) );
    }

    // False when it is time to stop.
    bool awaitReply()
    {
        const auto deadline = sentAt_ + Milliseconds( *options_.waitReply );
        for ( ;; ) {
            if ( const auto packet = pb::adopt( inUdpChannelReceive( channel_.get() ) ) ) {
                showReply( packet );
                return true;
            }
            if ( inUdpChannelError( channel_.get() ) )
                throw Failure{ Exit::System, "the socket has failed" };
            switch ( waiter_.wait( deadline ) ) {
            case Waiter::Woken::Library:
                break;
            case Waiter::Woken::Stop:
                return false;
            case Waiter::Woken::Time:
                output_.line( fmt::format( "{}  no reply within {} ms", timeOfDay(), *options_.waitReply ) );
                output_.record( Record().set( "event", "noReply" ).set( "time", timeStamp() ) );
                return true;
            }
        }
    }

    void showReply( const pb::Ref<struct inUdpPacket> &packet )
    {
        const auto elapsed = std::chrono::duration_cast<std::chrono::microseconds>( Waiter::Clock::now() - sentAt_ );
        const auto peer = pb::adopt( inUdpPacketRemoteAddress( packet.get() ) );
        const auto payload = pb::adopt( inUdpPacketPayload( packet.get() ) );
        ++replies_;
        output_.line( fmt::format( "{}  reply {} bytes from {} after {:.3f} ms  {}", timeOfDay(),
                                   pbBufferLength( payload.get() ), text( peer ),
                                   static_cast<double>( elapsed.count() ) / 1000.0, preview( payload.get() ) ) );
        output_.record( Record()
                            .set( "event", "reply" )
                            .set( "time", timeStamp() )
                            .set( "remoteUdpAddress", pb::adopt( inUdpAddressStore( peer.get() ) ) )
                            .set( "byteCount", pbBufferLength( payload.get() ) )
                            .set( "microseconds", elapsed.count() )
                            .set( "payload", hexadecimal( payload.get() ) ) );
    }

    // Waits out the interval; what arrives meanwhile is a late reply and is shown with the next. False when to stop.
    bool pass( Waiter::Clock::time_point next )
    {
        for ( ;; )
            switch ( waiter_.wait( next ) ) {
            case Waiter::Woken::Library:
                break;
            case Waiter::Woken::Stop:
                return false;
            case Waiter::Woken::Time:
                return true;
            }
    }

    void summary()
    {
        if ( sent_ != 1 || options_.waitReply )
            output_.line( fmt::format( "{} {} sent{}", sent_, sent_ == 1 ? "datagram" : "datagrams",
                                       options_.waitReply ? fmt::format( ", {} answered", replies_ ) : "" ) );
        Record record;
        record.set( "event", "summary" )
            .set( "datagrams", sent_ )
            .set( "byteCount", sent_ * pbBufferLength( payload_.get() ) );
        if ( options_.waitReply )
            record.set( "replies", replies_ );
        output_.record( record );
    }

    Output &output_;
    const SendOptions &options_;
    const pb::Ref<struct inUdpAddress> remote_;
    const pb::Ref<struct inAddress> address_;
    const pb::Ref<struct pbBuffer> payload_;
    const ChosenStack stack_;
    const pb::Ref<struct inQosStack> qos_;
    const pb::Ref<struct inUdpChannel> channel_;
    const pb::Ref<struct inUdpAddress> local_;
    Waiter waiter_; // behind what may take long to find out, during which a signal ends the program at once
    Waiter::Clock::time_point sentAt_;
    pbInt sent_ = 0;
    pbInt replies_ = 0;
};

Exit send( Output &output, const SendOptions &options )
{
    if ( options.text.has_value() + !options.file.empty() + options.size.has_value() != 1 )
        throw Failure{ Exit::Usage, "say what to send: TEXT, --file FILE or --size BYTES, one of them" };
    const Host host;
    return Sender( output, options ).run();
}

} // namespace

void addUdpSend( CLI::App &udp, Context &context )
{
    CLI::App *command =
        addCommand( udp, context, "send", "Send datagrams",
                    "  inctl udp send 192.0.2.7:5060 'OPTIONS sip:192.0.2.7 SIP/2.0'\n"
                    "  inctl udp send [::1]:5004 --size 172 --count 50 --qos voice\n"
                    "  inctl udp send localhost:7000 ping --count 3 --wait-reply 1000    like ping, against --echo\n" );
    auto options = std::make_shared<SendOptions>();
    command->add_option( "HOST:PORT", options->destination, "Where to; IPv6 in brackets" )->required();
    command->add_option( "TEXT", options->text, "What to send" );
    command->add_option( "--file", options->file, "Send the content of this file as one datagram" )
        ->type_name( "FILE" );
    command->add_option( "--size", options->size, "Send this many counting bytes" )
        ->type_name( "BYTES" )
        ->check( quiet( CLI::Range( 0, 65527 ) ) );
    command->add_option( "--count", options->count, "How many datagrams (1)" )
        ->type_name( "N" )
        ->check( quiet( CLI::Range( 1, 1'000'000'000 ) ) );
    command->add_option( "--interval", options->interval, "Milliseconds between two (20, the pace of voice)" )
        ->type_name( "MS" )
        ->check( quiet( CLI::Range( 0, 86'400'000 ) ) );
    command->add_option( "--wait-reply", options->waitReply, "Wait so many milliseconds for a reply to each" )
        ->type_name( "MS" )
        ->check( quiet( CLI::Range( 0, 86'400'000 ) ) );
    CLI::Option *port = command->add_option( "--port", options->port, "Send from this local port" );
    port->type_name( "PORT" )->check( quiet( CLI::Range( 1, 65535 ) ) );
    addStackOptions( *command, options->stack );
    addQosOptions( *command, options->qos );
    command->get_option( "--ports" )->excludes( port );
    command->callback(
        [&context, options] { context.run = [&context, options] { return send( context.output, *options ); }; } );
}

} // namespace inctl
