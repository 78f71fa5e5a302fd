// inctl watch: the states of a running host's objects, and each change, until a signal.
#include "inctl/attachment.hpp"
#include "inctl/command.hpp"
#include "inctl/object_state.hpp"
#include "inctl/status_text.hpp"
#include "inctl/store_text.hpp"

#include <fmt/format.h>

#include <memory>

namespace inctl {
namespace {

struct WatchOptions {
    std::string object; // "": all
    HostChoice host;
};

std::string lineOf( const Output &output, const struct pbStore *event )
{
    const std::string kind = textIn( event, "event" ), name = printable( textIn( event, "name" ) );
    if ( kind == "status" )
        return fmt::format( "{}  {}  {}  {}", name, printable( textIn( event, "sort" ) ),
                            stateText( output, printable( textIn( event, "state" ) ) ), detailText( event ) );
    if ( kind == "gone" )
        return fmt::format( "{}  {}", name, output.paint( Paint::Bad, "gone" ) );
    if ( kind == "accepted" )
        return "the file is good again";
    if ( kind != "refused" )
        return printable( kind );
    std::string text = output.paint( Paint::Bad, "the file was refused; what ran before it runs on" );
    const auto problems = pb::adopt( pbStoreStoreCstr( event, "problems", -1 ) );
    for ( pbInt i = 0; problems && i < pbStoreArrayLength( problems.get() ); ++i )
        text += "\n  " + printable( pb::utf8( pb::adopt( pbStoreArrayValueAt( problems.get(), i ) ) ) );
    return text;
}

Exit watch( Output &output, const WatchOptions &options )
{
    Record request = Record().set( "request", "watch" );
    if ( !options.object.empty() )
        request.set( "object", options.object );
    Attachment( options.host ).follow( request, output, [&output]( const struct pbStore *event ) {
        return fmt::format( "{}  {}", timeOfDay(), lineOf( output, event ) );
    } );
    return Exit::Yes;
}

} // namespace

void addWatch( CLI::App &root, Context &context )
{
    CLI::App *command =
        addCommand( root, context, "watch", "Show the states of a running host's objects, and each change until Ctrl-C",
                    "  inctl watch               all objects\n"
                    "  inctl watch sip --json    one, an object a line\n" );
    auto options = std::make_shared<WatchOptions>();
    command->add_option( "OBJECT", options->object, "Only this object" );
    addHostOptions( *command, options->host );
    command->callback(
        [&context, options] { context.run = [&context, options] { return watch( context.output, *options ); }; } );
}

} // namespace inctl
