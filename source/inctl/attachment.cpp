// Attachment: a client's connection to a running host.
#include "inctl/attachment.hpp"

#include "inctl/attach_socket.hpp"
#include "inctl/exit_code.hpp"
#include "inctl/help_formatter.hpp"
#include "inctl/nearest.hpp"
#include "inctl/object_state.hpp"
#include "inctl/record_keys.hpp"
#include "inctl/store_text.hpp"

#include "cs/cs_json.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>

namespace inctl {
namespace {

// A host that lives says so every 5 seconds.
constexpr std::chrono::seconds longestSilence( 15 );
constexpr size_t longestLine = 256 << 20; // of what claims to be a host

int millisecondsTo( Waiter::Clock::time_point deadline )
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>( deadline - Waiter::Clock::now() ).count();
    return static_cast<int>( std::clamp<int64_t>( left, 0, 3'600'000 ) );
}

// In /tmp anybody can pretend to be a host.
void requireTrusted( int connection, const HostPlace &place )
{
    ucred peer{};
    socklen_t length = sizeof peer;
    if ( getsockopt( connection, SOL_SOCKET, SO_PEERCRED, &peer, &length ) != 0 )
        throw Failure{ Exit::System, fmt::format( "{}: {}", place.socket, std::strerror( errno ) ) };
    if ( geteuid() != 0 && peer.uid != geteuid() && peer.uid != 0 )
        throw Failure{ Exit::Permission,
                       fmt::format( "the host {} belongs to the user {} and is not trusted", place.name, peer.uid ) };
}

std::vector<std::string> namesOf( const std::vector<HostPlace> &places )
{
    std::vector<std::string> names;
    for ( const HostPlace &place : places )
        names.push_back( place.name );
    return names;
}

// None of those that run, or several, are meant; there are others whose names are like the one that was given.
[[noreturn]] void failToChoose( const std::string &name, const std::string &directory,
                                const std::vector<HostPlace> &running, const std::vector<HostPlace> &others )
{
    if ( running.empty() )
        throw Failure{ Exit::No, name.empty() ? fmt::format( "no host runs (looked in {})", directory )
                                              : fmt::format( "no host named {} runs{}", name,
                                                             suggestion( name, namesOf( others ) ) ) };
    if ( name.empty() )
        throw Failure{ Exit::Usage, fmt::format( "several hosts run: {}; say which with --host",
                                                 fmt::join( namesOf( running ), ", " ) ) };
    std::vector<std::string> sockets;
    for ( const HostPlace &place : running )
        sockets.push_back( place.socket );
    throw Failure{ Exit::Usage, fmt::format( "several hosts named {} run; say which with its socket, --host {}", name,
                                             fmt::join( sockets, " or --host " ) ) };
}

} // namespace

void addHostOptions( CLI::App &command, HostChoice &choice )
{
    command
        .add_option( "--host", choice.host, "The host: its name, or the path of its socket; needed when several run" )
        ->type_name( "NAME|PATH" );
    command.add_option( "--timeout", choice.timeout, "Wait so long for a host that does not answer" )
        ->type_name( "MS" )
        ->capture_default_str()
        ->check( quiet( CLI::Range( PB_INT_FROM( 1 ), PB_INT_FROM( 3600000 ) ) ) );
}

Attachment::Attachment( const HostChoice &choice )
    : patience_( std::chrono::milliseconds( choice.timeout ) )
{
    const Clock::time_point deadline = Clock::now() + patience_;
    if ( choice.host.find( '/' ) != choice.host.npos ) {
        place_ = { hostName( choice.host ), choice.host };
        if ( !tryConnect( place_, deadline ) )
            throw Failure{ Exit::No, fmt::format( "no host runs at {}", choice.host ) };
        greet( deadline );
        return;
    }
    const std::string directory = runDirectory();
    std::vector<HostPlace> places = hostPlaces( directory );
    const auto isMeant = [&]( const HostPlace &place ) { return choice.host.empty() || place.name == choice.host; };
    // Sockets of hosts that are dead stay where they were killed; only those that live count.
    std::vector<HostPlace> running;
    for ( const HostPlace &place : places )
        if ( isMeant( place ) && tryConnect( place, deadline ) )
            running.push_back( place );
    std::erase_if( places, isMeant );
    if ( running.size() != 1 )
        failToChoose( choice.host, directory, running, places );
    place_ = running.front();
    greet( deadline );
}

// False where nobody listens.
bool Attachment::tryConnect( const HostPlace &place, Clock::time_point deadline )
{
    const sockaddr_un address = socketAddress( place.socket );
    for ( ;; ) {
        pb::Fd connection( socket( AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0 ) );
        if ( connection &&
             connect( connection.get(), reinterpret_cast<const sockaddr *>( &address ), sizeof address ) == 0 ) {
            requireTrusted( connection.get(), place );
            connection_ = std::move( connection );
            return true;
        }
        if ( errno == ENOENT || errno == ECONNREFUSED || errno == ENOTDIR || errno == ENOTSOCK )
            return false;
        if ( errno == EACCES || errno == EPERM )
            throw Failure{
                Exit::Permission,
                fmt::format( "not permitted to attach to {}: only the user that runs the host, and root, may",
                             place.socket ) };
        if ( errno != EAGAIN )
            throw Failure{ Exit::System, fmt::format( "{}: {}", place.socket, std::strerror( errno ) ) };
        // As many wait for the host as the system lets, and UNIX sockets do not tell when that changes.
        if ( Clock::now() >= deadline ) {
            place_ = place;
            failAsSilent();
        }
        (void)poll( nullptr, 0, 20 );
    }
}

void Attachment::greet( Clock::time_point deadline )
{
    const auto hello = awaitLine( deadline );
    if ( textIn( hello.get(), "event" ) != "hello" )
        throw Failure{ Exit::System, fmt::format( "{} is not the socket of a host of inctl", place_.socket ) };
    pbInt protocol = 0;
    if ( !pbStoreValueIntCstr( hello.get(), &protocol, "protocol", -1 ) || protocol != 1 )
        throw Failure{ Exit::System, fmt::format( "the host {} speaks another version ({}) than this inctl (1)",
                                                  place_.name, protocol ) };
    place_.name = printable( textIn( hello.get(), "host" ) );
}

void Attachment::failAsSilent() const
{
    throw Failure{ Exit::System, fmt::format( "the host {} does not answer: it hangs or is stopped", place_.name ) };
}

void Attachment::failAsEnded() const
{
    throw Failure{ Exit::No, fmt::format( "the host {} has ended", place_.name ) };
}

bool Attachment::readMore()
{
    char bytes[65536];
    const ssize_t count = recv( connection_.get(), bytes, sizeof bytes, MSG_DONTWAIT );
    if ( count < 0 && ( errno == EAGAIN || errno == EINTR ) )
        return false;
    if ( count <= 0 )
        failAsEnded();
    input_.append( bytes, static_cast<size_t>( count ) );
    if ( input_.size() > longestLine )
        throw Failure{ Exit::System, fmt::format( "the host {} says more on a line than can be read", place_.name ) };
    return true;
}

std::optional<pb::Ref<struct pbStore>> Attachment::takeLine()
{
    const size_t end = input_.find( '\n', searched_ );
    if ( end == input_.npos ) {
        searched_ = input_.size();
        return std::nullopt;
    }
    const std::string line = input_.substr( 0, end );
    input_.erase( 0, end + 1 );
    searched_ = 0;
    auto record = pb::adopt( csJsonTryToStoreWhole( pb::string( line ).get() ) );
    if ( !record )
        throw Failure{ Exit::System, fmt::format( "the host {} does not speak as a host of inctl does", place_.name ) };
    if ( const std::string error = textIn( record.get(), "error" ); !error.empty() ) {
        pbInt exit = static_cast<pbInt>( Exit::System );
        (void)pbStoreValueIntCstr( record.get(), &exit, "exit", -1 ); // a host that gives none: a system error
        throw Failure{ static_cast<Exit>( std::clamp<pbInt>( exit, 1, 5 ) ), printable( error ) };
    }
    return record;
}

pb::Ref<struct pbStore> Attachment::awaitLine( Clock::time_point deadline )
{
    for ( ;; ) {
        if ( auto record = takeLine() )
            return std::move( *record );
        if ( readMore() )
            continue;
        pollfd polled{ connection_.get(), POLLIN, 0 };
        if ( Clock::now() >= deadline )
            failAsSilent();
        if ( poll( &polled, 1, millisecondsTo( deadline ) ) < 0 && errno != EINTR )
            throw Failure{ Exit::System, fmt::format( "poll(): {}", std::strerror( errno ) ) };
    }
}

pb::Ref<struct pbStore> Attachment::ask( const Record &request )
{
    const Clock::time_point deadline = Clock::now() + patience_;
    const std::string line = jsonText( request, CS_JSON_SHORT ) + "\n";
    for ( size_t sent = 0; sent < line.size(); ) {
        const ssize_t count =
            send( connection_.get(), line.data() + sent, line.size() - sent, MSG_DONTWAIT | MSG_NOSIGNAL );
        if ( count >= 0 ) {
            sent += static_cast<size_t>( count );
            continue;
        }
        pollfd polled{ connection_.get(), POLLOUT, 0 };
        if ( errno != EAGAIN && errno != EINTR )
            failAsEnded();
        if ( Clock::now() >= deadline )
            failAsSilent();
        (void)poll( &polled, 1, millisecondsTo( deadline ) ); // sending tells what came of it
    }
    for ( ;; ) {
        auto record = awaitLine( deadline );
        if ( !textIn( record.get(), "answer" ).empty() )
            return record;
    }
}

void Attachment::follow( const Record &request, Output &output,
                         const std::function<std::string( const struct pbStore *event )> &lineOf )
{
    Waiter waiter;
    waiter.add( connection_.get() );
    (void)ask( request ); // an answer, or it throws
    while ( !output.broken() ) {
        const auto event = next( waiter );
        if ( !event )
            return;
        output.record( Record( event ) );
        output.line( lineOf( event.get() ) );
    }
}

pb::Ref<struct pbStore> Attachment::next( Waiter &waiter )
{
    Clock::time_point deadline = Clock::now() + longestSilence;
    for ( ;; ) {
        if ( auto record = takeLine() ) {
            const std::string event = textIn( record->get(), "event" );
            if ( event == "end" )
                failAsEnded();
            if ( event != "alive" )
                return waiter.look( {} ) == Waiter::Woken::Stop ? nullptr : std::move( *record );
            deadline = Clock::now() + longestSilence;
            continue;
        }
        if ( readMore() )
            continue;
        switch ( waiter.wait( deadline ) ) {
        case Waiter::Woken::Stop:
            return nullptr;
        case Waiter::Woken::Time:
            failAsSilent();
        case Waiter::Woken::Library:
            break;
        }
    }
}

} // namespace inctl
