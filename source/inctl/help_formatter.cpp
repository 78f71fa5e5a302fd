// How --help looks.
#include "inctl/help_formatter.hpp"

#include <CLI/CLI.hpp>

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

// The validator's own name carries them: the parser uses it for nothing.
CLI::Validator oneOf( const std::vector<std::string> &names )
{
    return quiet( CLI::IsMember( names ) ).name( "one of|" + CLI::detail::join( names, "|" ) );
}

std::vector<std::string> namesOf( CLI::Option &option )
{
    try {
        std::vector<std::string> names = CLI::detail::split( option.get_validator( 0 )->get_name(), '|' );
        if ( names.front() != "one of" )
            return {};
        names.erase( names.begin() );
        return names;
    } catch ( const CLI::OptionNotFound & ) { // it has no validator
        return {};
    }
}

} // namespace inctl
