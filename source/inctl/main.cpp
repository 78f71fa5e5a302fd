// inctl: the host program of Internetworking. Reads the command line, runs the sub-command, turns failures into
// sentences and exit codes.
#include "inctl/asking_host.hpp"
#include "inctl/command.hpp"
#include "inctl/help_formatter.hpp"
#include "inctl/nearest.hpp"
#include "inctl/printable_lines.hpp"
#include "inctl/waiter.hpp"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace inctl {
namespace {

const CLI::App &deepest( const CLI::App &app )
{
    const auto chosen = app.get_subcommands();
    return chosen.empty() ? app : deepest( *chosen.back() );
}

std::vector<std::string> optionNames( const CLI::App &command )
{
    std::vector<std::string> names;
    for ( const CLI::Option *option : command.get_options() ) {
        for ( const std::string &name : option->get_lnames() )
            names.push_back( "--" + name );
        for ( const std::string &name : option->get_snames() )
            names.push_back( "-" + name );
    }
    return names;
}

std::vector<std::string> commandNames( const CLI::App &command )
{
    std::vector<std::string> names;
    for ( const CLI::App *child : command.get_subcommands( []( const CLI::App *app ) { return isShown( *app ); } ) )
        names.push_back( child->get_name() );
    return names;
}

// What the parser could not place says more than its own message: a name close to it was probably meant.
std::string explain( const CLI::App &app, const CLI::ParseError &error )
{
    const CLI::App &command = deepest( app );
    const std::vector<std::string> remaining = app.remaining( true );
    for ( const std::string &argument : remaining )
        if ( argument.size() > 1 && argument[0] == '-' ) {
            const std::string name = argument.substr( 0, argument.find( '=' ) );
            std::vector<std::string> near = nearestNames( name, optionNames( command ) );
            return fmt::format( "unknown option {}{}", name,
                                near.empty() ? "" : suggestion( name, optionNames( command ) ) );
        }
    if ( !remaining.empty() && !commandNames( command ).empty() )
        return fmt::format( "unknown sub-command {}{}", remaining[0],
                            suggestion( remaining[0], commandNames( command ) ) );
    if ( !remaining.empty() )
        return fmt::format( "unexpected argument {}", remaining[0] );
    if ( error.get_name() == "RequiredError" && !commandNames( command ).empty() )
        return fmt::format( "a sub-command is missing{}", suggestion( "", commandNames( command ) ) );
    return error.what();
}

std::string fullName( const CLI::App &command )
{
    return command.get_parent() ? fullName( *command.get_parent() ) + " " + command.get_name() : command.get_name();
}

// --json may stand behind the mistake that ended the parsing.
void noteJson( Context &context, int argumentCount, char **arguments )
{
    for ( int i = 1; i < argumentCount; ++i )
        if ( const std::string_view argument = arguments[i]; argument == "--json" || argument.starts_with( "--json=" ) )
            context.output.form = Output::Form::JsonShort;
}

// Sentences repeat what was typed, which may have come from anywhere.
void tell( Output &output, const Failure &failure )
{
    output.failure( { failure.exit, printableLines( failure.sentence ) } );
}

Exit parse( CLI::App &app, Context &context, int argumentCount, char **arguments )
{
    try {
        app.parse( argumentCount, arguments );
        if ( !context.jsonForm.empty() )
            context.output.form = context.jsonForm == "pretty" ? Output::Form::JsonPretty : Output::Form::JsonShort;
        return Exit::Yes;
    } catch ( const CLI::Success &success ) { // --help
        app.exit( success );
        context.run = nullptr;
        return Exit::Yes;
    } catch ( const CLI::ParseError &error ) {
        noteJson( context, argumentCount, arguments );
        context.run = nullptr;
        tell( context.output, { Exit::Usage, explain( app, error ) } );
        complain( fmt::format( "Try: {} --help\n", fullName( deepest( app ) ) ) );
        return Exit::Usage;
    }
}

// Runs the command and says why it failed.
Exit outcome( Context &context )
{
    try {
        const Exit exit = context.run();
        // That the reader of a pipe has seen enough is no error.
        const int error = context.output.error();
        if ( exit == Exit::Yes && error && error != EPIPE && error != EINTR )
            throw unwritable( context.output );
        return exit;
    } catch ( const Failure &failure ) {
        tell( context.output, failure );
        return failure.exit;
    }
}

Exit run( int argumentCount, char **arguments )
{
    Context context;
    CLI::App app( "Shows and runs the host's IP networking as communications servers see it.", "inctl" );
    app.require_subcommand( 1 );
    app.formatter( std::make_shared<HelpFormatter>() );
    app.failure_message( CLI::FailureMessage::simple );
    app.footer( std::string( exitCodes ) +
                "\nBegin with:\n"
                "  inctl tour                     what it does, on this host, in a few seconds\n"
                "  inctl interfaces               what the host has\n"
                "  inctl run examples/sip.json    a configuration, live\n" );
    addJsonOption( app, context );
    addInterfaces( app, context );
    addDnsServers( app, context );
    addResolve( app, context );
    CLI::App *udp = app.add_subcommand( "udp", "Send and receive datagrams through channels of the library" );
    udp->require_subcommand( 1 );
    udp->footer( exitCodes );
    addUdpSend( *udp, context );
    addUdpReceive( *udp, context );
    addRun( app, context );
    addStatus( app, context );
    addWatch( app, context );
    addTrace( app, context );
    addSet( app, context );
    addTour( app, context );
    addTourNames( app, context );
    addCheck( app, context );
    addMigrate( app, context );
    addExplain( app, context );
    addFilter( app, context );
    addDoctor( app, context );
    addCompletion( app, context );
    addManual( app, context );
    addVersion( app, context );

    if ( argumentCount < 2 ) {
        (void)std::fputs( app.help().c_str(), stdout ); // the exit code says it, too
        return Exit::Usage;
    }
    const Exit parsed = parse( app, context, argumentCount, arguments );
    if ( !context.run )
        return parsed;
    const Exit exit = outcome( context );
    endAskingHost( exit );
    return exit;
}

} // namespace
} // namespace inctl

namespace {

// What is closed leads nowhere: else the next socket would get its number, and the output would go there.
void openStandardDescriptors()
{
    for ( const int descriptor : { STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO } )
        if ( fcntl( descriptor, F_GETFD ) < 0 && open( "/dev/null", O_RDWR ) != descriptor ) // the lowest that is free
            std::_Exit( static_cast<int>( inctl::Exit::System ) ); // and nowhere to say it
}

} // namespace

int main( int argumentCount, char **arguments )
{
    openStandardDescriptors();
    // Only characters: numbers are printed the same everywhere.
    std::setlocale( LC_CTYPE, "" );
    inctl::resetSignals();
    try {
        return static_cast<int>( inctl::run( argumentCount, arguments ) );
    } catch ( const std::exception &error ) {
        (void)std::fprintf( stderr, "inctl: %s\n", error.what() ); // nowhere else to say it
        return static_cast<int>( inctl::Exit::System );
    }
}
