// inctl filter: whether an address filter of a configuration lets a peer in.
#include "inctl/asking_host.hpp"
#include "inctl/command.hpp"
#include "inctl/filter_answer.hpp"
#include "inctl/object_state.hpp"
#include "inctl/record_keys.hpp"

#include <fmt/format.h>

#include <memory>

namespace inctl {
namespace {

struct FilterOptions {
    std::string file;
    FilterQuestion question;
};

Exit check( Output &output, const FilterOptions &options )
{
    startAskingHost();
    const Configuration configuration( options.file );
    const FilterAnswer answer = askFilter( configuration, options.question );
    const std::string sentence = answer.sentence( options.question );
    output.line( output.paint( answer.permitted ? Paint::Good : Paint::Bad,
                               printable( fmt::format( "{} {}", options.question.address, sentence ) ) ) );
    output.record( Record()
                       .set( "object", options.question.filter )
                       .set( "address", options.question.address )
                       .set( "permitted", answer.permitted )
                       .set( "complete", answer.complete )
                       .set( "text", sentence ) );
    return answer.permitted ? Exit::Yes : Exit::No;
}

} // namespace

void addFilter( CLI::App &root, Context &context )
{
    CLI::App *command = root.add_subcommand( "filter", "Ask the address filters of a configuration" );
    command->require_subcommand( 1 );
    command->footer( exitCodes );
    CLI::App *added = addCommand( *command, context, "check", "Tell whether a filter lets a peer in",
                                  "  inctl filter check server.json peers 192.0.2.1 && echo welcome\n"
                                  "  inctl filter check server.json peers 2001:db8::1 --timeout 500 --json\n" );
    auto options = std::make_shared<FilterOptions>();
    added->add_option( "FILE", options->file, "The configuration, JSON with comments" )->required();
    added->add_option( "FILTER", options->question.filter, "The name of a filter (IN_FILTER) in the file" )->required();
    added->add_option( "ADDRESS", options->question.address, "The peer's IP address" )->required();
    addTimeout( *added, options->question.timeout );
    added->callback(
        [&context, options] { context.run = [&context, options] { return check( context.output, *options ); }; } );
}

} // namespace inctl
