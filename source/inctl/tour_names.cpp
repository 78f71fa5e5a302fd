// Runs inctl tour-names and shows its result.
#include "inctl/tour_names.hpp"

#include "inctl/store_text.hpp"
#include "inctl/table.hpp"

#include "cs/cs_json.h"
#include "pb/pb_fd.hpp"

#include <cerrno>
#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace inctl {
namespace {

constexpr int patience = 20'000; // milliseconds

// What the program itself, with these arguments, writes to its standard output.
std::string outputOfSelf( std::vector<std::string> arguments )
{
    int ends[2];
    if ( pipe2( ends, O_CLOEXEC ) != 0 )
        return "";
    const pb::Fd output( ends[0] );
    pb::Fd input( ends[1] );
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init( &actions );
    posix_spawn_file_actions_adddup2( &actions, input.get(), STDOUT_FILENO );
    posix_spawn_file_actions_addopen( &actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0 );
    arguments.insert( arguments.begin(), "inctl" );
    std::vector<char *> pointers;
    for ( std::string &argument : arguments )
        pointers.push_back( argument.data() );
    pointers.push_back( nullptr );
    pid_t process = -1;
    const int error = posix_spawn( &process, "/proc/self/exe", &actions, nullptr, pointers.data(), environ );
    posix_spawn_file_actions_destroy( &actions );
    if ( error != 0 )
        return "";
    input = pb::Fd();
    std::string text;
    pollfd waiting{ output.get(), POLLIN, 0 };
    for ( char piece[4096]; poll( &waiting, 1, patience ) > 0; ) {
        const ssize_t count = read( output.get(), piece, sizeof piece );
        if ( count <= 0 )
            break;
        text.append( piece, static_cast<size_t>( count ) );
    }
    (void)kill( process, SIGTERM ); // it has ended, or takes too long
    (void)waitpid( process, nullptr, 0 );
    return text;
}

void showServices( Output &output, const struct pbStore *names )
{
    output.line( output.paint( Paint::Strong, "\nA service looked up, on a host of its own with a name server" ) );
    Table table{ { "TRY", true },  { "PRIORITY", true }, { "WEIGHT", true },
                 { "PORT", true }, { "TARGET" },         { "ADDRESSES" } };
    int number = 0;
    for ( const auto &srv : storesIn( names, "srvs" ) ) {
        std::string addresses;
        const auto list = pb::adopt( pbStoreStoreCstr( srv.get(), "addresses", -1 ) );
        for ( pbInt i = 0; list && i < pbStoreArrayLength( list.get() ); ++i )
            addresses += ( i ? "\n" : "" ) + pb::utf8( pb::adopt( pbStoreArrayValueAt( list.get(), i ) ) );
        table.add( { Cell( std::to_string( ++number ) ), Cell( textIn( srv.get(), "priority" ) ),
                     Cell( textIn( srv.get(), "weight" ) ), Cell( textIn( srv.get(), "port" ) ),
                     Cell( textIn( srv.get(), "target" ), Paint::Strong ), Cell( addresses ) } );
    }
    output.line( textIn( names, "service" ) );
    table.print( output );
}

// Without the word that stands in a column of its own.
std::string behindColon( const std::string &text )
{
    const size_t colon = text.find( ": " );
    return colon == text.npos ? text : text.substr( colon + 2 );
}

// True when somebody is let in and somebody is not.
bool showChecks( Output &output, const struct pbStore *names )
{
    output.line( output.paint( Paint::Strong, "\nA filter made of it: who may talk" ) );
    Table table{ { "PEER" }, { "STATE" }, { "BECAUSE" } };
    bool someIn = false, someOut = false;
    for ( const auto &check : storesIn( names, "checks" ) ) {
        const bool permitted = textIn( check.get(), "permitted" ) == "true";
        ( permitted ? someIn : someOut ) = true;
        table.add( { Cell( textIn( check.get(), "address" ), Paint::Strong ),
                     permitted ? Cell( "permitted", Paint::Good ) : Cell( "refused", Paint::Bad ),
                     Cell( behindColon( textIn( check.get(), "text" ) ) ) } );
    }
    table.print( output );
    return someIn && someOut;
}

} // namespace

bool showNames( Output &output, Record &record )
{
    const std::string text = outputOfSelf( { "tour-names", "--json" } );
    const auto names = pb::adopt( csJsonTryToStore( pb::string( text ).get() ) );
    std::string leftOut = names ? textIn( names.get(), "leftOut" ) : "it did not come to its end";
    if ( names && leftOut.empty() )
        leftOut = textIn( names.get(), "error" );
    if ( names )
        record.set( "names", names );
    else
        record.set( "names", Record().set( "leftOut", leftOut ) );
    if ( !leftOut.empty() ) {
        output.line( fmt::format( "\nNames and peers are left out: {}.", leftOut ) );
        return true;
    }
    showServices( output, names.get() );
    return showChecks( output, names.get() );
}

} // namespace inctl
