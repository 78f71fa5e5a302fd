// AttachServer: the thread that serves a host's clients.
#include "inctl/attach_server.hpp"

#include "inctl/attach_client.hpp"
#include "inctl/attach_desk.hpp"
#include "inctl/attach_trace.hpp"
#include "inctl/attach_view.hpp"
#include "inctl/configuration.hpp"
#include "inctl/exit_code.hpp"
#include "inctl/output.hpp"
#include "inctl/record_keys.hpp"
#include "inctl/run_board.hpp"
#include "inctl/run_directory.hpp"
#include "inctl/signals_blocked.hpp"
#include "inctl/status_watch.hpp"

#include "pb/pb_wake.hpp"

#include <CLI/App.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <list>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <thread>

PB_SORT_DECLARE( inctl___sort_INCTL_ATTACH_WAKE )

namespace inctl {
namespace {

using Clock = AttachClient::Clock;
using std::chrono::milliseconds;

constexpr size_t mostClients = 64;
// A client that has said nothing for so long leaves its place to another when all are taken.
constexpr std::chrono::seconds yields( 1 );
// The objects are looked at no more often, whatever they do.
constexpr milliseconds lookInterval( 20 );
// Subscribers hear that the host lives, even when nothing happens.
constexpr std::chrono::seconds aliveInterval( 5 );
// Of time that clients may take: a quarter of one processor, at most so much at once.
constexpr int shareOfTime = 4;
constexpr milliseconds timeAtOnce( 100 );

// What library signals and tracing threads wake the thread with. An object, because signalables keep what they wake.
struct AttachWake final : pb::Object<AttachWake, inctl___sort_INCTL_ATTACH_WAKE> {
    const pb::Fd descriptor{ eventfd( 0, EFD_CLOEXEC | EFD_NONBLOCK ) };
    // What has happened since the thread has looked.
    std::atomic<bool> objectsChanged{ false }, statesChanged{ false }, fileChanged{ true };

    void wake() const
    {
        const uint64_t one = 1;
        // The count can only be full while a wake is pending anyway.
        [[maybe_unused]] const ssize_t ignored = write( descriptor.get(), &one, sizeof one );
    }
    void calm() const
    {
        uint64_t count;
        [[maybe_unused]] const ssize_t ignored = read( descriptor.get(), &count, sizeof count ); // 0: nothing was there
    }
    template <std::atomic<bool> AttachWake::*Flag> static void note( pbObj *target )
    {
        auto *self = static_cast<AttachWake *>( target );
        ( self->*Flag ).store( true );
        self->wake();
    }
    template <std::atomic<bool> AttachWake::*Flag> pb::Ref<struct pbSignalable> signalable()
    {
        return pb::adopt( pb___SignalableCreate( note<Flag>, this ) );
    }
};

bool isAllowed( int connection )
{
    ucred peer{};
    socklen_t length = sizeof peer;
    return getsockopt( connection, SOL_SOCKET, SO_PEERCRED, &peer, &length ) == 0 &&
           ( peer.uid == geteuid() || peer.uid == 0 );
}

// Processor time that the calling thread uses up and that comes back.
class TimeShare {
  public:
    bool isLeft( Clock::time_point now )
    {
        const Clock::duration processor = processorTime();
        used_ += processor - lastProcessor_;
        lastProcessor_ = processor;
        used_ = std::max( used_ - ( now - last_ ) / shareOfTime, Clock::duration::zero() );
        last_ = now;
        return used_ < timeAtOnce;
    }
    // As if so much had been used beside it.
    void use( Clock::duration time ) { used_ += time; }

  private:
    static Clock::duration processorTime()
    {
        timespec time{};
        (void)clock_gettime( CLOCK_THREAD_CPUTIME_ID, &time ); // fails for unknown clocks only
        return std::chrono::seconds( time.tv_sec ) + std::chrono::nanoseconds( time.tv_nsec );
    }

    Clock::duration used_{}, lastProcessor_{};
    Clock::time_point last_ = Clock::now();
};

} // namespace

class AttachServer::Thread {
  public:
    Thread( const AttachChoice &choice, const Configuration &configuration, RunBoard &board );
    ~Thread();

  private:
    void run();
    void serve( Clock::time_point now );
    milliseconds pause( Clock::time_point now, bool mayWork ) const;
    void accept( Clock::time_point now );
    void admit( pb::Fd connection, Clock::time_point now );
    void answer( AttachClient &client, Clock::time_point now );
    void lookAtObjects( Clock::time_point now );
    void askAboutFile();
    void tell( AttachClient &client, Clock::time_point now );
    void addNews( AttachClient &client );
    void beAlive( Clock::time_point now );
    void dismiss( std::list<AttachClient>::iterator client );
    void sayGoodbye();

    AttachSocket socket_;
    const pb::Ref<AttachWake> wake_ = pb::make<AttachWake>();
    const pb::Ref<struct pbSignalable> fileSignalable_ = wake_->signalable<&AttachWake::fileChanged>();
    RunBoard &board_;
    std::atomic<bool> stop_{ false };

    // Of the thread alone.
    AttachTrace trace_;
    AttachDesk desk_;
    StatusWatch view_;
    std::list<AttachClient> clients_;
    TimeShare time_;
    Clock::time_point lastLook_{};
    Clock::time_point lastAlive_ = Clock::now();

    std::thread thread_;
};

AttachServer::Thread::Thread( const AttachChoice &choice, const Configuration &configuration, RunBoard &board )
    : socket_( choice, configuration.path() ), board_( board ),
      trace_( configuration.configuration(), [wake = wake_] { wake->wake(); } ),
      desk_( socket_.name(), configuration, board, trace_ ),
      view_( configuration, wake_->signalable<&AttachWake::objectsChanged>().get(),
             wake_->signalable<&AttachWake::statesChanged>().get(), stateOf )
{
    if ( !wake_->descriptor )
        throw Failure{ Exit::System, fmt::format( "eventfd(): {}", std::strerror( errno ) ) };
    const SignalsBlocked blocked;
    try {
        thread_ = std::thread( [this] { run(); } );
    } catch ( const std::system_error &error ) {
        throw Failure{ Exit::System, fmt::format( "the thread for clients does not start: {}", error.what() ) };
    }
    (void)pthread_setname_np( thread_.native_handle(), "inctl-attach" ); // a help for people only
}

AttachServer::Thread::~Thread()
{
    stop_ = true;
    wake_->wake();
    thread_.join();
    board_.updateDelSignalable( fileSignalable_.get() );
}

void AttachServer::Thread::run()
{
    while ( !stop_ ) {
        Clock::time_point now = Clock::now();
        const bool mayWork = time_.isLeft( now );
        std::vector<pollfd> polled{ { wake_->descriptor.get(), POLLIN, 0 },
                                    { mayWork ? socket_.descriptor() : -1, POLLIN, 0 } };
        for ( const AttachClient &client : clients_ )
            polled.push_back( { mayWork ? client.descriptor() : -1, client.polledEvents(), 0 } );
        const int ready = poll( polled.data(), polled.size(), static_cast<int>( pause( now, mayWork ).count() ) );
        if ( ready < 0 && errno != EINTR && errno != ENOMEM )
            break; // for a wrong argument only: a host without clients is better than one that spins
        if ( polled[0].revents )
            wake_->calm();
        size_t i = 2;
        for ( AttachClient &client : clients_ )
            client.events = polled[i++].revents;
        now = Clock::now();
        if ( polled[1].revents )
            accept( now );
        if ( mayWork )
            serve( now );
    }
    sayGoodbye();
}

// One round: what each client sends, is told and takes.
void AttachServer::Thread::serve( Clock::time_point now )
{
    for ( auto client = clients_.begin(); client != clients_.end(); ) {
        const auto next = std::next( client );
        if ( client->events & ( POLLIN | POLLHUP | POLLERR ) )
            client->read();
        answer( *client, now );
        const bool hungUp = client->events & ( POLLHUP | POLLERR );
        if ( !client->write( now ) || hungUp || client->late( now ) || ( client->closing() && !client->hasOutput() ) )
            dismiss( client );
        client = next;
    }
    lookAtObjects( now );
    askAboutFile();
    beAlive( now );
    for ( AttachClient &client : clients_ )
        tell( client, now );
}

// Until something is due: a look at changed objects, a client's end, a sign of life; short while others' time is
// spared.
milliseconds AttachServer::Thread::pause( Clock::time_point now, bool mayWork ) const
{
    if ( !mayWork )
        return milliseconds( 10 );
    for ( const AttachClient &client : clients_ )
        if ( !client.hasOutput() && client.hasLine() )
            return milliseconds( 0 );
    if ( wake_->objectsChanged || wake_->statesChanged )
        return std::chrono::ceil<milliseconds>(
            std::clamp<Clock::duration>( lastLook_ + lookInterval - now, milliseconds( 0 ), lookInterval ) );
    return milliseconds( clients_.empty() ? 60'000 : 500 );
}

void AttachServer::Thread::accept( Clock::time_point now )
{
    for ( int i = 0; i < 16; ++i ) {
        pb::Fd connection( accept4( socket_.descriptor(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK ) );
        if ( !connection ) {
            // Without a descriptor to spare the connection stays, and would be found ready again at once.
            if ( errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM )
                time_.use( timeAtOnce );
            return;
        }
        admit( std::move( connection ), now );
    }
}

void AttachServer::Thread::admit( pb::Fd connection, Clock::time_point now )
{
    if ( clients_.size() >= mostClients ) {
        const auto silent = std::min_element( clients_.begin(), clients_.end(), []( const auto &a, const auto &b ) {
            return std::pair( a.subscribed(), a.lastRequest ) < std::pair( b.subscribed(), b.lastRequest );
        } );
        if ( !silent->subscribed() && now - silent->lastRequest > yields )
            dismiss( silent );
    }
    AttachClient &client = clients_.emplace_back( std::move( connection ), now );
    if ( !isAllowed( client.descriptor() ) )
        client.send( AttachDesk::error( "only the user that runs the host, and root, may attach to it",
                                        static_cast<int>( Exit::Permission ) ) );
    else if ( clients_.size() > mostClients )
        client.send(
            AttachDesk::error( fmt::format( "{} clients are attached to the host, and no more can be", mostClients ),
                               static_cast<int>( Exit::System ) ) );
    else {
        client.send( desk_.hello() );
        return;
    }
    (void)client.write( now ); // whether it hears or not
    clients_.pop_back();
}

// One request a round: who sends many at once waits for the others' in between.
void AttachServer::Thread::answer( AttachClient &client, Clock::time_point now )
{
    const std::optional<std::string> line =
        client.closing() || !client.hasRoom() ? std::nullopt : client.takeLine();
    if ( line ) {
        client.lastRequest = now;
        client.lastWrite = now;
        client.send( desk_.answer( client, *line ) );
    }
    if ( client.ended() && !client.subscribed() && !client.hasLine() )
        client.closeWhenWritten();
    if ( client.garbage() && !client.closing() ) {
        client.send( AttachDesk::error( fmt::format( "a line of more than {} bytes", AttachClient::longestLine ),
                                        static_cast<int>( Exit::Usage ) ) );
        client.closeWhenWritten();
    }
}

void AttachServer::Thread::lookAtObjects( Clock::time_point now )
{
    bool anyone = false, fresh = false;
    for ( const AttachClient &client : clients_ ) {
        anyone |= client.subscribed();
        fresh |= client.fresh;
    }
    if ( !anyone ) {
        view_.close();
        wake_->objectsChanged = wake_->statesChanged = false; // nothing is due any more
        return;
    }
    if ( !fresh && ( now - lastLook_ < lookInterval || !( wake_->objectsChanged || wake_->statesChanged ) ) )
        return;
    lastLook_ = now;
    const bool others = wake_->objectsChanged.exchange( false ) || !view_.isOpen();
    wake_->statesChanged = false; // before it is looked
    const std::vector<std::string> changed = view_.look();
    for ( AttachClient &client : clients_ ) {
        const bool isFresh = std::exchange( client.fresh, false );
        if ( client.watching )
            client.note( isFresh ? view_.names() : changed );
    }
    if ( others )
        trace_.followObjects();
}

void AttachServer::Thread::askAboutFile()
{
    if ( !wake_->fileChanged.exchange( false ) )
        return;
    board_.updateAddSignalable( fileSignalable_.get() ); // before it is read
    const std::string event = desk_.fileEvent();
    if ( event.empty() )
        return;
    for ( AttachClient &client : clients_ )
        if ( client.watching )
            client.note( event );
}

// As far as the client takes it. One that takes as fast as there is something does not keep the others waiting.
void AttachServer::Thread::tell( AttachClient &client, Clock::time_point now )
{
    for ( int turn = 0; turn < 16; ++turn ) {
        addNews( client );
        if ( !client.hasOutput() || !client.write( now ) || client.hasOutput() )
            return; // a peer that has gone is found next time
    }
    wake_->wake();
}

// What the client has subscribed to, as far as there is room for it.
void AttachServer::Thread::addNews( AttachClient &client )
{
    for ( ; client.hasRoom() && !client.notices.empty(); client.notices.pop_front() )
        client.send( client.notices.front() );
    while ( client.hasRoom() && !client.changed.empty() ) {
        const std::string name = std::move( client.changed.extract( client.changed.begin() ).value() );
        const ObjectState *state = view_.find( name );
        Record record = state ? recordOf( *state ) : Record().set( "name", name );
        record.set( "event", state ? "status" : "gone" ).set( "time", timeStamp() );
        client.send( jsonText( record, CS_JSON_SHORT ) + "\n" );
    }
    if ( client.trace && client.hasRoom() )
        trace_.take( *client.trace, client.output(), AttachClient::enoughWaiting );
}

void AttachServer::Thread::beAlive( Clock::time_point now )
{
    if ( now - lastAlive_ < aliveInterval )
        return;
    lastAlive_ = now;
    for ( AttachClient &client : clients_ )
        if ( client.subscribed() && !client.hasOutput() )
            client.send( jsonText( Record().set( "event", "alive" ).set( "time", timeStamp() ), CS_JSON_SHORT ) +
                         "\n" );
}

void AttachServer::Thread::dismiss( std::list<AttachClient>::iterator client )
{
    if ( client->trace )
        trace_.unsubscribe( client->trace );
    clients_.erase( client );
}

void AttachServer::Thread::sayGoodbye()
{
    for ( AttachClient &client : clients_ ) {
        client.send( jsonText( Record().set( "event", "end" ).set( "time", timeStamp() ), CS_JSON_SHORT ) + "\n" );
        (void)client.write( Clock::now() ); // whether it hears or not
    }
    while ( !clients_.empty() )
        dismiss( clients_.begin() );
    view_.close();
}

void addAttachOptions( CLI::App &command, AttachChoice &choice )
{
    CLI::Option *name = command.add_option(
        "--name", choice.name, "Name of the host for status, watch, trace and set; else that of the file" );
    name->type_name( "NAME" )->check( []( const std::string &text ) {
        return !text.empty() && text == hostName( text + ".x" )
                   ? ""
                   : text + " is not a name of letters, digits, \"_\", \"-\" and \".\"";
    } );
    CLI::Option *socket = command.add_option( "--socket", choice.socket,
                                              "The socket for these, in place of NAME.sock in the run directory" );
    socket->type_name( "PATH" );
    command.add_flag( "--no-socket", choice.none, "Let nobody attach" )->excludes( name )->excludes( socket );
}

AttachServer::AttachServer( const AttachChoice &choice, const Configuration &configuration, RunBoard &board )
{
    if ( !choice.none )
        thread_ = std::make_unique<Thread>( choice, configuration, board );
}

AttachServer::~AttachServer() = default;

} // namespace inctl

constinit const pbSort inctl___sort_INCTL_ATTACH_WAKE = pb::detail::makeSort<inctl::AttachWake>( "INCTL_ATTACH_WAKE" );
