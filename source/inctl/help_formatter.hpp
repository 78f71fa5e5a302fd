// How --help looks: names and what they take, without the parser's own notes on ranges and exclusions.
#ifndef INCTL_HELP_FORMATTER_HPP
#define INCTL_HELP_FORMATTER_HPP

#include <CLI/App.hpp>

#include <string>
#include <vector>

namespace inctl {

class HelpFormatter final : public CLI::Formatter {
public:
    HelpFormatter();

    std::string make_option_name( const CLI::Option *option, bool isPositional ) const override;
    std::string make_option_opts( const CLI::Option *option ) const override;
};

// The check without its words in --help; the description of the option says what it takes.
inline CLI::Validator quiet( CLI::Validator check )
{
    return check.description( "" );
}

// One of these names, which completion offers, too.
CLI::Validator oneOf( const std::vector<std::string> &names );
// The names that oneOf has given the option; empty without.
std::vector<std::string> namesOf( CLI::Option &option );

} // namespace inctl

#endif
