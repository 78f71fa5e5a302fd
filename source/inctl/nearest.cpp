// The names that a misspelt one was probably meant to be.
#include "inctl/nearest.hpp"

#include <fmt/format.h>

namespace inctl {
namespace {

std::string joined( const std::vector<std::string> &names, std::string_view last )
{
    std::string text;
    for ( size_t i = 0; i < names.size(); ++i )
        text += fmt::format( "{}{}", i == 0 ? "" : i + 1 == names.size() ? last : ", ", names[i] );
    return text;
}

} // namespace

std::string suggestion( std::string_view name, const std::vector<std::string> &names )
{
    const std::vector<std::string> near = nearestNames( name, names );
    if ( !near.empty() )
        return fmt::format( "; did you mean {}?", joined( near, " or " ) );
    if ( names.empty() || names.size() > 12 )
        return "";
    return fmt::format( "; there {} {}", names.size() == 1 ? "is" : "are", joined( names, " and " ) );
}

} // namespace inctl
