// Regular expressions for the text of integers.
#include "cs/cs_integer_pattern_internal.h"

#include <algorithm>
#include <vector>

namespace cs {
namespace {

using Digits = std::vector<unsigned>; // the first is the highest

Digits digitsOf( uint64_t value, unsigned base )
{
    Digits digits;
    do
        digits.push_back( static_cast<unsigned>( value % base ) );
    while ( value /= base );
    std::reverse( digits.begin(), digits.end() );
    return digits;
}

std::string digitClass( unsigned first, unsigned last )
{
    const auto span = []( char from, char to ) {
        return from == to ? std::string( 1, from ) : std::string{ from, '-', to };
    };
    std::string members;
    if ( first <= 9 )
        members += span( static_cast<char>( '0' + first ), static_cast<char>( '0' + std::min( last, 9u ) ) );
    if ( last > 9 )
        for ( const char ten : { 'a', 'A' } )
            members += span( static_cast<char>( ten + std::max( first, 10u ) - 10 ),
                             static_cast<char>( ten + last - 10 ) );
    return members.size() == 1 ? members : "[" + members + "]";
}

// Numbers of as many digits as both bounds have, from the digit at `at` on.
std::string sameLength( const Digits &least, const Digits &most, size_t at, unsigned base )
{
    if ( at == least.size() )
        return "";
    const auto rest = [&]( const Digits &digits, unsigned digit ) {
        return std::all_of( digits.begin() + static_cast<ptrdiff_t>( at ), digits.end(),
                            [&]( unsigned d ) { return d == digit; } );
    };
    if ( rest( least, 0 ) && rest( most, base - 1 ) )
        return digitClass( 0, base - 1 ) + "{" + std::to_string( least.size() - at ) + "}";
    if ( least[at] == most[at] )
        return digitClass( least[at], least[at] ) + sameLength( least, most, at + 1, base );
    std::string text = "(?:";
    text += digitClass( least[at], least[at] ) + sameLength( least, Digits( least.size(), base - 1 ), at + 1, base );
    if ( most[at] - least[at] > 1 ) {
        text += "|" + digitClass( least[at] + 1, most[at] - 1 );
        if ( least.size() > at + 1 )
            text += digitClass( 0, base - 1 ) + "{" + std::to_string( least.size() - at - 1 ) + "}";
    }
    return text + "|" + digitClass( most[at], most[at] )
           + sameLength( Digits( most.size(), 0 ), most, at + 1, base ) + ")";
}

std::string magnitudes( uint64_t least, uint64_t most, unsigned base )
{
    const Digits first = digitsOf( least, base ), last = digitsOf( most, base );
    std::string text;
    for ( size_t length = first.size(); length <= last.size(); ++length ) {
        Digits smallest( length, 0 );
        smallest[0] = 1;
        text += ( text.empty() ? "" : "|" )
                + sameLength( length == first.size() ? first : smallest,
                              length == last.size() ? last : Digits( length, base - 1 ), 0, base );
    }
    return "0*(?:" + text + ")";
}

std::string eitherBase( const std::string &sign, uint64_t least, uint64_t most )
{
    return sign + "(?:" + magnitudes( least, most, 10 ) + "|0[xX]" + magnitudes( least, most, 16 ) + ")";
}

} // namespace

std::string integerPattern( pbInt minimum, pbInt maximum )
{
    const auto magnitude = []( pbInt value ) { return value < 0 ? -static_cast<uint64_t>( value ) : 0; };
    std::string text;
    if ( maximum >= 0 )
        text = eitherBase( "", static_cast<uint64_t>( std::max<pbInt>( minimum, 0 ) ),
                           static_cast<uint64_t>( maximum ) );
    if ( minimum <= 0 )
        text += ( text.empty() ? "" : "|" ) + eitherBase( "-", magnitude( maximum ), magnitude( minimum ) );
    return "^(?:" + text + ")$";
}

} // namespace cs
