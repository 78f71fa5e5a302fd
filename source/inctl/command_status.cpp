// inctl status: the objects of a running host, or everything about one of them.
#include "inctl/attachment.hpp"
#include "inctl/command.hpp"
#include "inctl/status_text.hpp"

#include <memory>

namespace inctl {
namespace {

struct StatusOptions {
    std::string object; // "": all
    HostChoice host;
};

Exit showStatus( Output &output, const StatusOptions &options )
{
    Attachment host( options.host );
    Record request = Record().set( "request", "status" );
    if ( !options.object.empty() )
        request.set( "object", options.object );
    const auto answer = host.ask( request );
    output.record( Record( answer ) );
    if ( options.object.empty() )
        printStatus( output, answer.get() );
    else
        printDetails( output, answer.get() );
    return Exit::Yes;
}

} // namespace

void addStatus( CLI::App &root, Context &context )
{
    CLI::App *command =
        addCommand( root, context, "status", "Show the objects of a running host, or one with all its details",
                    "  inctl status                  of the only host that runs\n"
                    "  inctl status sip --host edge  one object of the host edge\n"
                    "  inctl status --json | jq -r '.objects[] | select(.state == \"down\").name'\n" );
    auto options = std::make_shared<StatusOptions>();
    command->add_option( "OBJECT", options->object,
                         "Only this object, with its configuration and all that is known of it" );
    addHostOptions( *command, options->host );
    command->callback(
        [&context, options] { context.run = [&context, options] { return showStatus( context.output, *options ); }; } );
}

} // namespace inctl
