// inctl run: a configuration, live until a signal or the time ends it.
#include "inctl/attach_server.hpp"
#include "inctl/command.hpp"
#include "inctl/help_formatter.hpp"
#include "inctl/host.hpp"
#include "inctl/live_table.hpp"
#include "inctl/run_lines.hpp"
#include "inctl/run_loop.hpp"
#include "inctl/trace_sink.hpp"

#include <cerrno>
#include <memory>
#include <optional>

namespace inctl {
namespace {

struct RunOptions {
    std::string file;
    std::optional<double> seconds;
    TraceChoice trace;
    AttachChoice attach;
};

// Not where traces go to the same terminal, over the table.
bool wantsTable( const Output &output, const RunOptions &options )
{
    return Screen::usable( output ) && !( options.trace.target == "-" && isatty( STDERR_FILENO ) );
}

std::unique_ptr<RunView> makeView( bool table, Output &output, const Configuration &configuration,
                                   const RunBoard &board )
{
    if ( table )
        return std::make_unique<LiveTable>( output, configuration, board );
    return std::make_unique<RunLines>( output, configuration, board );
}

Exit runFile( Output &output, const RunOptions &options )
{
    const bool table = wantsTable( output, options );
    ControlSignals signals( table );
    std::optional<TraceSink> trace;
    if ( !options.trace.target.empty() )
        trace.emplace( options.trace );
    const Host host;
    FileWatch file( options.file ); // before it is read
    Configuration configuration( options.file );
    Waiter waiter;
    RunBoard board;
    // First: a second host of the same name is to touch nothing.
    const AttachServer attach( options.attach, configuration, board );
    const auto start = Waiter::Clock::now();
    configuration.start();
    const std::unique_ptr<RunView> view = makeView( table, output, configuration, board );
    std::optional<Waiter::Clock::time_point> deadline;
    if ( options.seconds )
        deadline = start + std::chrono::milliseconds( static_cast<pbInt>( *options.seconds * 1000 ) );
    RunLoop( { output, configuration, waiter, signals, file, board, *view,
               trace ? &*trace : nullptr } ).run( deadline );
    view->ending( std::chrono::duration_cast<std::chrono::milliseconds>( Waiter::Clock::now() - start ) );
    // A host that nobody can follow any more has not been ended by its user.
    if ( output.broken() && output.error() != EINTR )
        throw unwritable( output );
    return Exit::Yes;
}

// Not CLI::Range, whose comparisons let NaN pass.
std::string secondsProblem( const std::string &text )
{
    double seconds = 0;
    return CLI::detail::lexical_cast( text, seconds ) && seconds >= 0 && seconds <= 1e9
               ? ""
               : text + " is not a number of seconds from 0 to 1e9";
}

} // namespace

void addRun( CLI::App &root, Context &context )
{
    CLI::App *command =
        addCommand( root, context, "run", "Start the objects of a configuration file and show how they fare",
                    "  inctl run examples/sip.json                         until Ctrl-C or SIGTERM\n"
                    "  inctl run server.json --trace=server.trace --trace-format json\n"
                    "  inctl run server.json --for 1 && echo good          is the file right?\n"
                    "A wrong file is refused whole, every mistake on a line FILE:LINE:COLUMN: error: ...\n" );
    auto options = std::make_shared<RunOptions>();
    command->add_option( "FILE", options->file, "The configuration, JSON with comments" )->required();
    command->add_option( "--for", options->seconds, "End after so many seconds" )
        ->type_name( "SECONDS" )
        ->check( secondsProblem );
    addTraceOptions( *command, options->trace );
    addAttachOptions( *command, options->attach );
    command->callback(
        [&context, options] { context.run = [&context, options] { return runFile( context.output, *options ); }; } );
}

} // namespace inctl
