// How --help looks.
#include "inctl/help_formatter.hpp"

namespace inctl {

HelpFormatter::HelpFormatter()
{
    column_width( 32 );
    label( "OPTIONS", "OPTIONS" );
    label( "SUBCOMMAND", "SUB-COMMAND" );
    label( "Subcommands", "Sub-commands" );
}

// "--json{short}", a flag that may take a value, is shown as "--json[=FORM]".
std::string HelpFormatter::make_option_name( const CLI::Option *option, bool isPositional ) const
{
    std::string name = CLI::Formatter::make_option_name( option, isPositional );
    if ( const size_t brace = name.find( '{' ); brace != std::string::npos )
        name = name.substr( 0, brace ) + "[=" + option->get_type_name() + "]";
    return name;
}

std::string HelpFormatter::make_option_opts( const CLI::Option *option ) const
{
    const bool takesValue = option->get_expected_min() > 0 && !option->get_positional();
    return takesValue ? " " + option->get_type_name() : "";
}

} // namespace inctl
