// Attaching to a running host: what is answered and told, what bad clients get, where the socket is, and that clients
// of any kind leave the host alone.
#include "attach_support.hpp"

#include "inctl/attach_socket.hpp"
#include "inctl/attach_trace.hpp"
#include "inctl/exit_code.hpp"
#include "inctl/run_directory.hpp"

#include "cs/cs_condition.h"
#include "in/base/in_stack.h"
#include "tr/tr.hpp"
#include "tr/tr_system.h"

#include <atomic>
#include <cstring>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>

using test::greeted;
using test::Peer;
using test::Running;
using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

namespace {

TEST( Attach, AnswersRequests )
{
    const Running running;
    Peer peer( running.socket() );
    EXPECT_THAT( peer.line().value_or( "" ), AllOf( HasSubstr( R"("event": "hello", "protocol": 1, "host": "test")" ),
                                                    HasSubstr( R"("process": )" + std::to_string( getpid() ) ) ) );
    const struct {
        const char *request;
        const char *answer;
    } rows[] = {
        { R"({"request": "status"})", R"("objects": [{"state": "up", "name": "loop", "sort": "IN_STACK")" },
        { R"({"request": "status"})", R"({"state": "true", "name": "active", "sort": "CS_CONDITION")" },
        { R"({"request": "status", "object": "loop"})",
          R"("address": "127.0.0.1", "primaryInterface": "lo", "interfaces": ["lo"], "dns": {"length": 0, "queries": []}})" },
        { R"({"request": "status", "object": "peers"})",
          R"("entries": [{"entry": 1, "host": "192.0.2.0", "addresses": [{"address": "192.0.2.0", "bits": 24}], "notes": []}])" },
        { R"({"request": "status", "object": "loop"})", R"("config": {"interface": "lo",)" },
        { R"({"request": "status", "object": "lop"})",
          R"("error": "the host test has no object lop; did you mean loop?", "exit": 1)" },
        { R"({"request": "set", "condition": "active", "value": false})",
          R"({"answer": "set", "condition": "active", "state": "false"})" },
        { R"({"request": "status", "object": "active"})", R"("state": "false")" },
        { R"({"request": "set", "condition": "voice", "value": true})",
          "is of the sort IN_QOS_STACK, not a condition" },
        { R"({"request": "set", "condition": "none", "value": true})", R"("exit": 1)" },
        { R"({"request": "set", "value": true})", R"(\"condition\" is missing, the name of an object", "exit": 2)" },
        { R"({"request": "status", "object": {}})", R"(\"object\" must be a text", "exit": 2)" },
        { R"({"request": "trace", "packets": []})", R"(\"packets\" must be true or false", "exit": 2)" },
        { R"({"request": "set", "condition": "active"})", R"(\"value\" is missing, true or false", "exit": 2)" },
        { R"({"request": "set", "condition": "active", "value": 1})", R"(\"value\" must be true or false)" },
        { R"({"request": "trace", "tree": true})", "needs an" },
        { R"({"request": "trace", "object": "none"})", R"("exit": 1)" },
        { R"({"request": "statuz"})", "unknown request statuz; did you mean status?" },
        { R"({})", "unknown request (none)" },
        { R"([])", "unknown request (none)" },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.request );
        EXPECT_THAT( peer.ask( row.request ), HasSubstr( row.answer ) );
    }
    // Two at once, and who has said its last is still answered.
    Peer last = greeted( running.socket() );
    EXPECT_TRUE( last.send( "{\"request\": \"status\"}\n{\"request\": \"set\"}\n" ) );
    EXPECT_THAT( last.line().value_or( "" ), HasSubstr( "\"answer\": \"status\"" ) );
    EXPECT_THAT( last.line().value_or( "" ), HasSubstr( "\"error\"" ) );
}

TEST( Attach, SendsGarbageAway )
{
    const Running running;
    const struct {
        std::string bytes;
        const char *answer;
    } rows[] = {
        { "GET / HTTP/1.1\r\n", "not a JSON object" },
        { "\n", "not a JSON object" },
        { std::string( "\0\n", 2 ), "not a JSON object" },
        { "{\"request\": \"\xFF\"}\n", "not a JSON object" },
        { "{\"request\": null}\n", "not a JSON object" },
        { std::string( 8000, '[' ) + "\n", "not a JSON object" },
        { std::string( 8192, ' ' ) + "\n", "not a JSON object" },
        { std::string( 8193, ' ' ) + "\n", "a line of more than 8192 bytes" },
        { std::string( 100'000, 'x' ), "a line of more than 8192 bytes" },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.bytes.substr( 0, 20 ) );
        Peer peer = greeted( running.socket() );
        peer.send( row.bytes ); // not all of it may be taken
        EXPECT_THAT( peer.line().value_or( "" ), AllOf( HasSubstr( row.answer ), HasSubstr( R"("exit": 2)" ) ) );
        EXPECT_EQ( peer.line(), std::nullopt );
    }
}

TEST( Attach, TellsEachWatcherTheStateAndEveryChange )
{
    Running running;
    Peer all = greeted( running.socket() ), one = greeted( running.socket() ), setter = greeted( running.socket() );
    EXPECT_EQ( all.ask( R"({"request": "watch"})" ), R"({"answer": "watch"})" );
    EXPECT_THAT( all.lineWith( "\"voice\"" ),
                 AllOf( HasSubstr( R"("state": "ready")" ), HasSubstr( R"("event": "status")" ) ) );
    EXPECT_EQ( one.ask( R"({"request": "watch", "object": "active"})" ), R"({"answer": "watch"})" );
    EXPECT_THAT( one.line().value_or( "" ), HasSubstr( R"("state": "true", "name": "active")" ) );
    for ( const char *value : { "false", "true" } ) {
        setter.ask( std::string( R"({"request": "set", "condition": "active", "value": )" ) + value + "}" );
        for ( Peer *peer : { &all, &one } )
            EXPECT_THAT( peer->lineWith( "\"active\"" ), HasSubstr( std::string( R"("state": ")" ) + value + "\"" ) );
    }
    // A refusal stays whatever the states do, for watchers that come later, too, until a file is taken.
    running.board.setRefusal( { "T1", { "f.json:1:2: error: bad" } } );
    EXPECT_THAT( one.line().value_or( "" ),
                 HasSubstr( R"("problems": ["f.json:1:2: error: bad"], "event": "refused")" ) );
    running.board.setStates( {} );
    setter.ask( R"({"request": "set", "condition": "active", "value": false})" );
    EXPECT_THAT( one.line().value_or( "" ), HasSubstr( R"("state": "false")" ) );
    EXPECT_THAT( setter.ask( R"({"request": "status"})" ), HasSubstr( R"("refused": {"time": "T1")" ) );
    Peer late = greeted( running.socket() );
    late.ask( R"({"request": "watch"})" );
    EXPECT_THAT( late.line().value_or( "" ), HasSubstr( R"("event": "refused")" ) );
    running.board.setRefusal( {} );
    EXPECT_THAT( one.line().value_or( "" ), HasSubstr( R"("event": "accepted")" ) );
    EXPECT_THAT( setter.ask( R"({"request": "status"})" ), Not( HasSubstr( "refused" ) ) );

    running.server.reset();
    EXPECT_THAT( one.line().value_or( "" ), HasSubstr( R"("event": "end")" ) );
    EXPECT_EQ( one.line(), std::nullopt );
}

TEST( Attach, ForgetsAndFindsObjectsOfANewFile )
{
    Running running;
    const auto apply = [&running]( const char *objects ) {
        const inctl::Configuration next( std::string( R"({"objects": {)" ) + objects + "}}", "next.json" );
        csConfigurationApply( running.configuration.configuration(), next.configuration(), nullptr );
    };
    Peer watcher = greeted( running.socket() ), tracer = greeted( running.socket() );
    watcher.ask( R"({"request": "watch"})" );
    watcher.lineWith( "\"voice\"" );
    tracer.ask( R"({"request": "trace", "object": "active"})" );
    apply( R"("voice": {"sort": "IN_QOS_STACK"})" );
    EXPECT_THAT( watcher.lineWith( "\"gone\"" ), HasSubstr( R"("name": "active")" ) );
    EXPECT_THAT( tracer.lineWith( "\"released\"" ), HasSubstr( R"("object": "active")" ) );
    apply( R"("voice": {"sort": "IN_QOS_STACK"}, "active": {"sort": "CS_CONDITION"})" );
    EXPECT_THAT( watcher.lineWith( "\"active\"" ), HasSubstr( R"("state": "false")" ) );
    EXPECT_THAT( tracer.lineWith( "\"csValue\"" ),
                 AllOf( HasSubstr( "false" ), HasSubstr( R"("object": "active")" ) ) );
}

// Between the loss of a stream's links and the line that tells its release the objects are learned again.
TEST( Attach, NamesAnObjectWhoseReleaseIsYetToBeTold )
{
    const support::ModuleHost modules;
    inctl::Configuration configuration( R"({"objects": {"active": {"sort": "CS_CONDITION"}}})", "test.json" );
    configuration.start();
    inctl::AttachTrace trace( configuration.configuration(), [] {} );
    const auto subscription = trace.subscribe( { .object = "active" } );
    auto condition = configuration.object( "active", csConditionSort() );
    const inctl::Configuration nothing( R"({"objects": {}})", "next.json" );
    csConfigurationApply( configuration.configuration(), nothing.configuration(), nullptr );
    trSystemSetListener(
        []( const struct trEvent *event, void *context ) {
            if ( event->kind == TR_EVENT_RELEASED )
                static_cast<inctl::AttachTrace *>( context )->followObjects();
        },
        &trace );
    condition.reset();
    trSystemSetListener( nullptr, nullptr );
    std::string lines;
    trace.take( *subscription, lines, 100'000 );
    EXPECT_THAT( lines, ContainsRegex( R"("released", [^\n]*"object": "active")" ) );
}

TEST( Attach, FollowsTheTracesOfAnObjectAndOfWhatItWorksWith )
{
    const Running running;
    EXPECT_FALSE( tr::listening() );
    {
        Peer tree = greeted( running.socket() ), alone = greeted( running.socket() ),
             setter = greeted( running.socket() );
        EXPECT_EQ( tree.ask( R"({"request": "trace", "object": "loop", "tree": true})" ), R"({"answer": "trace"})" );
        EXPECT_THAT( tree.lineWith( "\"created\"" ),
                     HasSubstr( R"("object": "loop", "name": "IN_STACK", "text": "IN_STACK")" ) );
        EXPECT_THAT( tree.lineWith( "inPrimaryInterface" ), HasSubstr( R"("event": "linked")" ) );
        EXPECT_THAT( tree.lineWith( "\"displayName\": \"lo\"" ), HasSubstr( "IN_NW" ) );

        alone.ask( R"({"request": "trace", "object": "loop"})" );
        EXPECT_THAT( alone.lineWith( "\"event\": \"linked\"" ), HasSubstr( "IN_STACK" ) );
        // What happens now: the stack's options, which only its own stream tells; nothing of the condition.
        setter.ask( R"({"request": "set", "condition": "active", "value": false})" );
        const auto stack = pb::adopt( inStackFrom( running.configuration.object( "loop", inStackSort() ).release() ) );
        inStackSetOptions( stack.get(), pb::adopt( inStackOptions( stack.get() ) ).get() );
        const auto other = pb::adopt( trStreamCreateCstr( "CHILD", -1 ) );
        const auto anchor = pb::adopt( trAnchorCreate( other.get(), TR_ANCHOR_KIND_ORIGIN ) );
        inStackTraceCompleteAnchor( stack.get(), anchor.get() );
        tr::text( other.get(), "[child()]" );
        inStackTraceCompleteAnchor( stack.get(),
                                    pb::adopt( trAnchorCreate( other.get(), TR_ANCHOR_KIND_ORIGIN ) ).get() );
        EXPECT_THAT( tree.lineWith( "[child()]" ), HasSubstr( "CHILD" ) );
        alone.lineWith( "\"kind\": 20" );
        EXPECT_THAT( alone.line().value_or( "" ), Not( HasSubstr( "child()" ) ) );
    }
    while ( tr::listening() ) // until it is seen that they have gone
        std::this_thread::yield();
}

// What a tracing thread says is told, or counted.
TEST( Attach, CountsWhatASlowListenerLoses )
{
    const Running running;
    Peer slow = greeted( running.socket() );
    slow.ask( R"({"request": "trace"})" );
    const auto stream = pb::adopt( trStreamCreateCstr( "FAST", -1 ) );
    constexpr int lines = 30'000;
    for ( int i = 0; i < lines; ++i )
        tr::text( stream.get(), "[fast()] %i of very many lines that nobody reads as fast as they come", i );
    int told = 0;
    pbInt lost = 0;
    while ( told + lost < lines ) {
        const std::string line = slow.line().value_or( "" );
        if ( line.find( "[fast()]" ) != line.npos )
            ++told;
        else if ( line.find( "\"lost\"" ) != line.npos )
            lost += std::stoll( line.substr( line.find( "count" ) + 8 ) );
        else
            ASSERT_THAT( line, AllOf( HasSubstr( "event" ), Not( HasSubstr( "end" ) ) ) );
    }
    EXPECT_EQ( told + lost, lines );
    EXPECT_GT( lost, 0 );
    EXPECT_GT( told, 1000 );
}

TEST( Attach, SixtyFourClientsAtOnce )
{
    const Running running;
    std::vector<std::unique_ptr<Peer>> peers;
    int greetedPeers = 0, refused = 0;
    for ( int i = 0; i < 200; ++i ) {
        peers.push_back( std::make_unique<Peer>( running.socket() ) );
        const std::string line = peers.back()->line().value_or( "" );
        greetedPeers += line.find( "hello" ) != line.npos;
        refused += line.find( R"("error": "64 clients are attached to the host, and no more can be", "exit": 5)" ) !=
                   line.npos;
    }
    EXPECT_EQ( greetedPeers + refused, 200 );
    EXPECT_GE( greetedPeers, 64 );
    EXPECT_GT( refused, 0 );
    // Those who are silent make room in time.
    while ( Peer( running.socket() ).lineWith( "o" ).find( "hello" ) == std::string::npos )
        std::this_thread::yield();
}

std::string refusal( const inctl::AttachChoice &choice, const char *file = "/x/sip.json" )
{
    try {
        const inctl::AttachSocket socket( choice, file );
        return "";
    } catch ( const inctl::Failure &failure ) {
        return failure.sentence;
    }
}

TEST( AttachSocket, TakesThePlaceOfTheDeadAloneAndGoesWithItsHost )
{
    const test::RunDirectory directory;
    const std::string place = directory.path + "/sip";
    {
        const inctl::AttachSocket socket( {}, "/x/sip.json" );
        struct stat status {};
        ASSERT_EQ( stat( ( place + ".sock" ).c_str(), &status ), 0 );
        EXPECT_EQ( status.st_mode & 0777, 0600u );
        EXPECT_THAT( refusal( {} ), HasSubstr( "a host named sip runs already (process " + std::to_string( getpid() ) +
                                               "); --name" ) );
        EXPECT_EQ( refusal( { .name = "other" } ), "" );
        EXPECT_EQ( inctl::hostPlaces( directory.path ).size(), 1u );
    }
    EXPECT_TRUE( std::filesystem::is_empty( directory.path ) );
    {
        // A killed host leaves both behind.
        const pb::Fd listening( ::socket( AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0 ) );
        const sockaddr_un address = inctl::socketAddress( place + ".sock" );
        ASSERT_EQ( bind( listening.get(), reinterpret_cast<const sockaddr *>( &address ), sizeof address ), 0 );
        const pb::Fd lock( open( ( place + ".lock" ).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600 ) );
        EXPECT_EQ( refusal( {} ), "" );
        // Another program's that lives is left alone.
        const pb::Fd foreign( ::socket( AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0 ) );
        ASSERT_EQ( bind( foreign.get(), reinterpret_cast<const sockaddr *>( &address ), sizeof address ), 0 );
        ASSERT_EQ( listen( foreign.get(), 1 ), 0 );
        EXPECT_THAT( refusal( {} ), HasSubstr( "another program that runs" ) );
    }
    std::filesystem::remove( place + ".sock" );
    std::filesystem::create_directory( place + ".sock" );
    EXPECT_THAT( refusal( {} ), HasSubstr( "is no socket" ) );
    EXPECT_THAT( refusal( { .name = std::string( 100, 'n' ) } ), HasSubstr( "at most 107" ) );
    EXPECT_EQ( inctl::hostName( "/a/my server.v2.json" ), "my_server.v2" );
}

TEST( AttachSocket, InSafeDirectoriesOnly )
{
    const test::RunDirectory directory;
    const auto in = [&directory]( const char *name ) {
        setenv( "RUNTIME_DIRECTORY", ( directory.path + "/" + name + ":/elsewhere" ).c_str(), 1 );
        return refusal( {} );
    };
    EXPECT_EQ( in( "new" ), "" );
    ASSERT_EQ( chmod( ( directory.path + "/new" ).c_str(), 0770 ), 0 );
    EXPECT_THAT( in( "new" ), HasSubstr( "is open to others (mode 0770, not 0700)" ) );
    std::filesystem::create_directory_symlink( directory.path, directory.path + "/link" );
    EXPECT_THAT( in( "link" ), HasSubstr( "a symbolic link" ) );
    EXPECT_THAT( in( "none/below" ), HasSubstr( "cannot be made" ) );
    if ( geteuid() != 0 )
        GTEST_SKIP() << "other users need root";
    ASSERT_EQ( chown( ( directory.path + "/new" ).c_str(), 12345, 0 ), 0 );
    EXPECT_THAT( in( "new" ), HasSubstr( "belongs to the user 12345, not to 0" ) );
}

TEST( Attach, LetsNobodyElseIn )
{
    if ( geteuid() != 0 )
        GTEST_SKIP() << "other users need root";
    const Running running;
    // As open as somebody could make it by mistake.
    ASSERT_EQ( chmod( running.directory.path.c_str(), 0755 ), 0 );
    ASSERT_EQ( chmod( running.socket().c_str(), 0666 ), 0 );
    const std::string path = running.socket();
    const sockaddr_un address = inctl::socketAddress( path );
    const pid_t child = fork();
    if ( child == 0 ) { // system calls only: other threads may hold locks
        char bytes[512] = {};
        if ( setgid( 65534 ) != 0 || setuid( 65534 ) != 0 )
            _exit( 2 );
        const int fd = ::socket( AF_UNIX, SOCK_STREAM, 0 );
        if ( connect( fd, reinterpret_cast<const sockaddr *>( &address ), sizeof address ) != 0 )
            _exit( 3 );
        size_t length = 0;
        for ( ssize_t count; ( count = read( fd, bytes + length, sizeof bytes - 1 - length ) ) > 0; )
            length += static_cast<size_t>( count );
        _exit( std::strstr( bytes, "only the user that runs the host" ) && std::strstr( bytes, "\"exit\": 4" ) ? 0
                                                                                                               : 4 );
    }
    int status = -1;
    ASSERT_EQ( waitpid( child, &status, 0 ), child );
    EXPECT_TRUE( WIFEXITED( status ) );
    EXPECT_EQ( WEXITSTATUS( status ), 0 );
}

// Twenty that do what they should not, while the objects become others under them.
TEST( Attach, AbusiveClientsWhileTheConfigurationIsRewritten )
{
    Running running;
    const std::string socket = running.socket();
    std::atomic<bool> stop{ false };
    const std::string requests[] = {
        "{\"request\": \"status\"}\n",
        "{\"request\": \"status\", \"object\": \"loop\"}\n",
        "{\"request\": \"watch\"}\n",
        "{\"request\": \"trace\", \"packets\": true}\n",
        "{\"request\": \"trace\", \"object\": \"loop\", \"tree\": true}\n",
        "{\"request\": \"set\", \"condition\": \"active\", \"value\": false}\n",
        "{\"request\"",
        "garbage\n",
        std::string( 20'000, 'x' ),
        std::string( "\xFF\xFE\0\n", 4 ),
    };
    std::vector<std::thread> clients;
    for ( size_t number = 0; number < 20; ++number )
        clients.emplace_back( [&, number] {
            for ( size_t turn = number; !stop; ++turn ) {
                Peer peer( socket );
                for ( size_t i = 0; i <= turn % 4; ++i ) // it hangs up before it has read anything
                    peer.sendWithoutWaiting( requests[( turn + i * 3 ) % std::size( requests )] );
                if ( turn % 3 == 0 )
                    peer.line();
                else if ( turn % 7 == 0 && number < 3 )
                    while ( !stop && peer.connected ) // never reads again
                        std::this_thread::yield(), peer.connected = peer.send( " " );
            }
        } );
    const char *const variants[] = {
        R"({"objects": {"loop": {"sort": "IN_STACK", "config": {"interface": "lo"}}, "active": {"sort": "CS_CONDITION"}}})",
        R"({"objects": {"loop": {"sort": "IN_QOS_STACK"}, "more": {"sort": "IN_STACK"}}})",
        R"({"objects": {}})",
    };
    for ( int i = 0; i < 150; ++i ) {
        const inctl::Configuration next( variants[i % std::size( variants )], "next.json" );
        csConfigurationApply( running.configuration.configuration(), next.configuration(), nullptr );
        running.board.setRefusal( { std::to_string( i ), { "problem" } } );
        if ( const auto stack = pb::adopt( csConfigurationObject( running.configuration.configuration(),
                                                                  pb::string( "loop" ).get(), inStackSort() ) ) )
            inStackSetOptions( inStackFrom( stack.get() ),
                               pb::adopt( inStackOptions( inStackFrom( stack.get() ) ) ).get() );
        std::this_thread::yield();
    }
    stop = true;
    for ( std::thread &client : clients )
        client.join();
    // It still serves, once the time that those took has come back.
    Peer peer( socket );
    while ( peer.line().value_or( "" ).find( "hello" ) == std::string::npos )
        peer = Peer( socket );
    EXPECT_THAT( peer.ask( R"({"request": "status"})" ), HasSubstr( R"("objects": [])" ) );
}

} // namespace
