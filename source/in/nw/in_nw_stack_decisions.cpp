// What an interface configuration stack decides and says, apart from the object that runs.
#include "in/nw/in_nw_stack_decisions.hpp"

#include "in/base/in_address.h"
#include "unix/unix_error.h"

#include <algorithm>
#include <cerrno>

namespace in {

namespace {

constexpr pbInt retryMinimum = 100;
constexpr pbInt retryMaximum = 300'000;

std::string errorText( pbInt error )
{
    switch ( error ) {
    case 0:
        return "the kernel did not say why";
    case EPERM:
        return "needs CAP_NET_ADMIN";
    case EAGAIN:
        return "the kernel did not answer";
    default:
        return pb::utf8( pb::adopt( unixErrorToString( error ) ) );
    }
}

std::string failureText( const NwFailure &failure )
{
    return std::string( failure.what ) + ", " + errorText( failure.error );
}

} // namespace

pbInt nextRetryInterval( pbInt interval )
{
    return std::clamp( pbIntMulSaturating( interval, 2 ), retryMinimum, retryMaximum );
}

std::string NwStackAccount::leftBehindText() const
{
    std::string text;
    for ( const NwLeftBehind &each : leftBehind )
        text += ( text.empty() ? "" : "; " ) + pb::utf8( pb::adopt( inAddressToString( each.address.get() ) ) ) +
                " on " + pb::utf8( each.interfaceIdentifier ) + ", " + errorText( each.error );
    return text;
}

std::string NwStackAccount::reason() const
{
    std::string text;
    if ( !interfaceIdentifier )
        text = "no interface configured";
    else if ( !interfaceFound )
        text = "no interface " + pb::utf8( interfaceIdentifier );
    else if ( !condition )
        text = ( conditionName ? "condition " + pb::utf8( conditionName ) : "the condition" ) + " is false" +
               ( failure ? ": " + failureText( *failure ) : "" );
    else if ( failure )
        text = "retry: next try in " + std::to_string( retryMilliseconds ) + " ms: " + failureText( *failure );
    if ( !leftBehind.empty() )
        text += ( text.empty() ? "left behind: " : "; left behind: " ) + leftBehindText();
    return text;
}

} // namespace in
