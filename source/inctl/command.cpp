// What every sub-command shares.
#include "inctl/command.hpp"

#include "inctl/help_formatter.hpp"

#include <CLI/CLI.hpp>

namespace inctl {

void addJsonOption( CLI::App &command, Context &context )
{
    command.add_flag( "--json{short}", context.jsonForm, "JSON instead of text, short (one line) or pretty" )
        ->type_name( "FORM" )
        ->check( oneOf( { "short", "pretty" } ) );
}

void addTimeout( CLI::App &command, pbInt &milliseconds )
{
    command.add_option( "--timeout", milliseconds, "Wait so long for names that are looked up" )
        ->type_name( "MS" )
        ->capture_default_str()
        ->check( quiet( CLI::Range( PB_INT_FROM( 0 ), PB_INT_FROM( 3600000 ) ) ) );
}

CLI::App *addCommand( CLI::App &parent, Context &context, const std::string &name, const std::string &description,
                      const std::string &examples )
{
    CLI::App *command = parent.add_subcommand( name, description );
    command->footer( "Examples:\n" + examples + "\n" + exitCodes );
    addJsonOption( *command, context );
    return command;
}

} // namespace inctl
