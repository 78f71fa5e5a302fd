// What clients that attach to a host cost its datagrams: the median time and the processor time of a datagram that goes
// through two channels, with no client and with 200 of a child process (50 subscribe and never read, 150 send garbage
// and come back), in turn. Fails when a datagram is lost.
#include "bench_udp.hpp"

#include "inctl/attach_server.hpp"
#include "inctl/configuration.hpp"
#include "inctl/run_board.hpp"

#include "pb/pb_alertable.h"
#include "pb/pb_time.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/un.h>

namespace {

constexpr int rounds = 3, batches = 12000, batch = 16;
constexpr int silent = 50, clients = 200;

// The child: abuses the host's socket between a 'g' and an 's' of its parent, and confirms each.
class Abusers {
  public:
    explicit Abusers( const std::string &path )
    {
        if ( pipe2( orders_, O_CLOEXEC ) != 0 || pipe2( reports_, O_CLOEXEC ) != 0 )
            bench::fail( "pipe" );
        child_ = fork();
        if ( child_ == 0 ) {
            close( orders_[1] );
            obey( path );
            _exit( 0 );
        }
        close( orders_[0] );
        close( reports_[1] );
    }
    ~Abusers()
    {
        close( orders_[1] );
        int status;
        waitpid( child_, &status, 0 );
    }
    void order( char letter )
    {
        char done;
        if ( write( orders_[1], &letter, 1 ) != 1 || read( reports_[0], &done, 1 ) != 1 )
            bench::fail( "abusers" );
    }

  private:
    void obey( const std::string &path )
    {
        signal( SIGPIPE, SIG_IGN );
        std::array<int, clients> connections;
        connections.fill( -1 );
        bool abuse = false;
        fcntl( orders_[0], F_SETFL, O_NONBLOCK );
        for ( ;; ) {
            char letter;
            const ssize_t count = read( orders_[0], &letter, 1 );
            if ( count == 0 )
                return;
            abuse = count > 0 ? letter == 'g' : abuse;
            for ( int i = 0; i < clients; ++i )
                if ( abuse )
                    step( connections[static_cast<size_t>( i )], i, path );
                else if ( int &connection = connections[static_cast<size_t>( i )]; connection >= 0 ) {
                    close( connection );
                    connection = -1;
                }
            if ( count > 0 && write( reports_[1], &letter, 1 ) != 1 )
                return;
            usleep( abuse ? 5000 : 20000 );
        }
    }
    static void step( int &connection, int number, const std::string &path )
    {
        const std::string greed = "{\"request\": \"watch\"}\n{\"request\": \"trace\"}\n{\"request\": \"status\"}\n";
        if ( connection < 0 ) {
            connection = socket( AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0 );
            const sockaddr_un address = inctl::socketAddress( path );
            if ( connect( connection, reinterpret_cast<const sockaddr *>( &address ), sizeof address ) != 0 ) {
                close( connection );
                connection = -1;
                return;
            }
        }
        const std::string bytes = number < silent ? greed : "\xFFgarbage" + std::string( 300, 'x' ) + "\n";
        char ignored[4096];
        if ( ( number < silent ? send( connection, bytes.data(), bytes.size(), MSG_NOSIGNAL ) < 0 && errno != EAGAIN
                               : send( connection, bytes.data(), bytes.size(), MSG_NOSIGNAL ) < 0 ||
                                     recv( connection, ignored, sizeof ignored, MSG_DONTWAIT ) == 0 ) ) {
            close( connection );
            connection = -1;
        }
    }

    int orders_[2], reports_[2];
    pid_t child_;
};

struct Cost {
    double medianNanoseconds, processorNanoseconds;
    double attachShare; // of one processor that the thread for clients took
    int lost;
};

// On processors so far, of the thread for clients.
double attachSeconds()
{
    double seconds = 0;
    for ( const auto &task : std::filesystem::directory_iterator( "/proc/self/task" ) ) {
        std::string name;
        double nanoseconds = 0;
        std::ifstream( task.path() / "comm" ) >> name;
        if ( name == "inctl-attach" && std::ifstream( task.path() / "schedstat" ) >> nanoseconds )
            seconds += nanoseconds / 1e9;
    }
    return seconds;
}

// Batches from one channel to the other.
class Path {
  public:
    Path()
        : barrier_( pb::adopt( pbBarrierCreate( 1 ) ) ),
          alertable_( pb::adopt( pbAlertableCreateBarrier( barrier_.get() ) ) )
    {
        inUdpChannelReceiveAddAlertable( to_.get(), alertable_.get() );
    }
    ~Path() { inUdpChannelReceiveDelAlertable( to_.get(), alertable_.get() ); }

    Cost measure()
    {
        std::vector<double> times;
        int lost = 0;
        const double processor = bench::seconds( CLOCK_PROCESS_CPUTIME_ID ), attach = attachSeconds();
        const double begin = bench::seconds( CLOCK_MONOTONIC );
        for ( int i = 0; i < batches; ++i ) {
            const double start = bench::seconds( CLOCK_MONOTONIC );
            lost += exchange();
            times.push_back( ( bench::seconds( CLOCK_MONOTONIC ) - start ) / batch );
        }
        const double used = bench::seconds( CLOCK_PROCESS_CPUTIME_ID ) - processor;
        std::nth_element( times.begin(), times.begin() + batches / 2, times.end() );
        const double share = ( attachSeconds() - attach ) / ( bench::seconds( CLOCK_MONOTONIC ) - begin );
        return { times[batches / 2] * 1e9, used * 1e9 / ( batches * batch ), share, lost };
    }

  private:
    // How many did not come within a second.
    int exchange()
    {
        const auto address = pb::adopt( inUdpChannelLocalAddress( to_.get() ) );
        const char bytes[bench::datagramSize] = {};
        for ( int i = 0; i < batch; ++i )
            inUdpChannelSendBytes( from_.get(), address.get(), bytes, sizeof bytes );
        int received = 0;
        while ( received < batch && pbBarrierPassTimed( barrier_.get(), 1000 ) ) {
            pbBarrierBlock( barrier_.get() );
            while ( pb::adopt( inUdpChannelReceive( to_.get() ) ) )
                ++received;
        }
        return batch - received;
    }

    const pb::Ref<struct inStack> stack_ = bench::loopbackStack();
    const pb::Ref<struct inUdpChannel> from_ = bench::openChannel( stack_.get() ),
                                       to_ = bench::openChannel( stack_.get() );
    const pb::Ref<struct pbBarrier> barrier_;
    const pb::Ref<struct pbAlertable> alertable_;
};

} // namespace

int main()
{
    char directory[] = "/tmp/inctl-bench-XXXXXX";
    if ( !mkdtemp( directory ) )
        bench::fail( "mkdtemp" );
    setenv( "RUNTIME_DIRECTORY", directory, 1 );
    Abusers abusers( std::string( directory ) + "/bench.sock" );
    int lost = 0;
    {
        const bench::Modules modules;
        inctl::Configuration configuration(
            R"({"objects": {"loop": {"sort": "IN_STACK"}, "c": {"sort": "CS_CONDITION"}}})", "bench.json" );
        configuration.start();
        inctl::RunBoard board;
        const inctl::AttachServer server( { .name = "bench" }, configuration, board );
        Path path;
        path.measure(); // warm
        std::printf( "%-8s %10s %14s %14s %14s %6s\n", "round", "clients", "median ns", "processor ns", "attach share",
                     "lost" );
        for ( int round = 1; round <= rounds; ++round )
            for ( const int count : { 0, clients } ) {
                abusers.order( count > 0 ? 'g' : 's' );
                const Cost cost = path.measure();
                abusers.order( 's' );
                lost += cost.lost;
                std::printf( "%-8d %10d %14.0f %14.0f %14.2f %6d\n", round, count, cost.medianNanoseconds,
                             cost.processorNanoseconds, cost.attachShare, cost.lost );
            }
    }
    rmdir( directory );
    return lost == 0 ? 0 : 1;
}
