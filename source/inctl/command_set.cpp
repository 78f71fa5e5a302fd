// inctl set: sets a condition of a running host.
#include "inctl/attachment.hpp"
#include "inctl/command.hpp"
#include "inctl/help_formatter.hpp"

#include <fmt/format.h>

#include <memory>

namespace inctl {
namespace {

struct SetOptions {
    std::string condition;
    std::string value;
    HostChoice host;
};

Exit setCondition( Output &output, const SetOptions &options )
{
    Attachment host( options.host );
    const auto answer = host.ask( Record()
                                      .set( "request", "set" )
                                      .set( "condition", options.condition )
                                      .set( "value", options.value == "true" ) );
    output.record( Record( answer ) );
    output.line( fmt::format( "{} is {} in {}", options.condition, options.value, host.name() ) );
    return Exit::Yes;
}

} // namespace

void addSet( CLI::App &root, Context &context )
{
    CLI::App *command =
        addCommand( root, context, "set", "Set a condition of a running host; until its record changes or it ends",
                    "  inctl set active true\n"
                    "  inctl set active false --host edge\n" );
    auto options = std::make_shared<SetOptions>();
    command->add_option( "CONDITION", options->condition, "Name of an object of the sort CS_CONDITION" )->required();
    command->add_option( "VALUE", options->value, "true or false" )->required()->check( oneOf( { "true", "false" } ) );
    addHostOptions( *command, options->host );
    command->callback( [&context, options] {
        context.run = [&context, options] { return setCondition( context.output, *options ); };
    } );
}

} // namespace inctl
