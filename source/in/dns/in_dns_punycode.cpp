// Punycode (RFC 3492): sections 6.1 to 6.3, with 64-bit arithmetic that fails instead of wrapping.
#include "in/dns/in_dns_punycode.h"

#include "in/dns/in_dns_punycode.hpp"
#include "pb/pb_string.hpp"
#include "pb/pb_text.hpp"

#include <algorithm>
#include <array>
#include <memory>

namespace {

constexpr pbInt BASE = 36;
constexpr pbInt TMIN = 1;
constexpr pbInt TMAX = 26;
constexpr pbInt SKEW = 38;
constexpr pbInt DAMP = 700;
constexpr pbInt INITIAL_BIAS = 72;
constexpr pbInt INITIAL_N = 0x80;
constexpr pbInt longestInteger = 20; // digits: each but the first two leaves at most a tenth of 2^63
constexpr char32_t delimiter = U'-';
constexpr char digits[] = "abcdefghijklmnopqrstuvwxyz0123456789";

class Writer {
public:
    explicit Writer( std::span<char32_t> room ) : room_( room ) {}

    size_t length() const { return length_; }
    bool put( char32_t c )
    {
        if ( length_ == room_.size() )
            return false;
        room_[length_++] = c;
        return true;
    }
    bool insert( size_t index, char32_t c )
    {
        if ( length_ == room_.size() )
            return false;
        char32_t *const place = room_.data() + index;
        std::copy_backward( place, room_.data() + length_, room_.data() + length_ + 1 );
        *place = c;
        ++length_;
        return true;
    }

private:
    const std::span<char32_t> room_;
    size_t length_ = 0;
};

bool isBasic( char32_t c ) { return c < INITIAL_N; }

// False instead of an overflow.
bool addProduct( pbInt &sum, pbInt a, pbInt b )
{
    pbInt product;
    return !__builtin_mul_overflow( a, b, &product ) && !__builtin_add_overflow( sum, product, &sum );
}

// 2^64 / divisor, rounded up.
constexpr auto reciprocals = [] {
    std::array<uint64_t, 64> result{};
    for ( uint64_t divisor = 2; divisor < result.size(); ++divisor )
        result[divisor] = UINT64_MAX / divisor + 1;
    return result;
}();

// a / b. What is divided here is mostly small, and then a multiplication gives the same in a fraction of the time: the
// rounding adds less than a / 2^64, which is less than 1 / b for a below 2^58.
pbInt quotient( pbInt a, pbInt b )
{
    if ( a >> 58 != 0 || b < 2 || b >= static_cast<pbInt>( reciprocals.size() ) )
        return a / b;
    __extension__ using Wide = unsigned __int128;
    return static_cast<pbInt>( static_cast<Wide>( a ) * reciprocals[static_cast<size_t>( b )] >> 64 );
}

pbInt threshold( pbInt k, pbInt bias ) { return std::clamp( k - bias, TMIN, TMAX ); }

// The last step of the adaptation, for each delta that the steps before may leave.
constexpr pbInt largestDelta = ( BASE - TMIN ) * TMAX / 2;
constexpr auto biases = [] {
    std::array<uint8_t, largestDelta + 1> result{};
    for ( pbInt delta = 0; delta <= largestDelta; ++delta )
        result[static_cast<size_t>( delta )] = static_cast<uint8_t>( ( BASE - TMIN + 1 ) * delta / ( delta + SKEW ) );
    return result;
}();

pbInt adapt( pbInt delta, pbInt points, bool first )
{
    delta /= first ? DAMP : 2;
    delta += quotient( delta, points );
    pbInt k = 0;
    for ( ; delta > largestDelta; k += BASE )
        delta /= BASE - TMIN;
    return k + biases[static_cast<size_t>( delta )];
}

bool writeInteger( Writer &out, pbInt value, pbInt bias )
{
    pbInt q = value;
    for ( pbInt k = BASE;; k += BASE ) {
        const pbInt t = threshold( k, bias );
        PB_ASSERT( t >= TMIN && t <= TMAX );
        if ( q < t )
            return out.put( static_cast<unsigned char>( digits[q] ) );
        const pbInt rest = quotient( q - t, BASE - t );
        PB_ASSERT_TEXT( q - rest * ( BASE - t ) < BASE, "t + ( (q-t) % (BASE-t) ) < BASE" );
        if ( !out.put( static_cast<unsigned char>( digits[q - rest * ( BASE - t )] ) ) )
            return false;
        q = rest;
    }
}

// BASE for what is no digit.
pbInt digitValue( char32_t c )
{
    const char32_t lower = pb::text::asciiLower( c );
    return lower >= U'a' && lower <= U'z'   ? static_cast<pbInt>( lower - U'a' )
           : c >= U'0' && c <= U'9' ? static_cast<pbInt>( c - U'0' ) + 26
                                    : BASE;
}

// Adds the integer in front of the text to the sum and cuts it off.
bool readInteger( std::u32string_view &text, pbInt &sum, pbInt bias )
{
    pbInt weight = 1;
    for ( pbInt k = BASE; !text.empty(); k += BASE ) {
        const pbInt digit = digitValue( text.front() );
        text.remove_prefix( 1 );
        if ( digit == BASE || !addProduct( sum, digit, weight ) )
            return false;
        const pbInt t = threshold( k, bias );
        if ( digit < t )
            return true;
        if ( __builtin_mul_overflow( weight, BASE - t, &weight ) )
            return false;
    }
    return false;
}

pb::String makeString( const char32_t *text, size_t length )
{
    return pb::adopt( pbStringCreateFromChars( reinterpret_cast<const pbChar *>( text ), static_cast<pbInt>( length ) ) );
}

// Converts into as much room as the result may take at most.
template <class Convert> pb::String convert( const struct pbString *source, size_t most, pbInt maxResultLength, Convert convert )
{
    const size_t size = maxResultLength < 0 ? most : std::min( most, static_cast<size_t>( maxResultLength ) );
    const auto room = std::make_unique_for_overwrite<char32_t[]>( size );
    const auto length = convert( pb::view( source ), { room.get(), size } );
    return length ? makeString( room.get(), *length ) : nullptr;
}

// The code points that are not basic, each with its place in the source, in the order in which they are inserted: that
// of their values, equal ones from left to right.
class Extended {
public:
    explicit Extended( std::u32string_view source )
    {
        if ( source.size() > std::size( few_ ) ) {
            many_ = std::make_unique_for_overwrite<uint64_t[]>( source.size() );
            list_ = many_.get();
        }
        for ( size_t place = 0; place < source.size(); ++place )
            if ( !isBasic( source[place] ) )
                list_[count_++] = uint64_t{ source[place] } << placeBits | place;
        std::sort( list_, list_ + count_ );
    }

    size_t count() const { return count_; }
    pbInt value( size_t index ) const { return static_cast<pbInt>( list_[index] >> placeBits ); }
    // How many of the source's code points that are there before this one is inserted stand before it.
    pbInt rank( size_t index ) const
    {
        const uint64_t place = placeOf( index );
        uint64_t missing = 0;
        for ( size_t later = index + 1; later < count_; ++later )
            missing += placeOf( later ) < place;
        return static_cast<pbInt>( place - missing );
    }

private:
    static constexpr int placeBits = 43; // beside the 21 of a value

    uint64_t placeOf( size_t index ) const { return list_[index] & ( ( uint64_t{ 1 } << placeBits ) - 1 ); }

    uint64_t few_[64];
    std::unique_ptr<uint64_t[]> many_;
    uint64_t *list_ = few_;
    size_t count_ = 0;
};

} // namespace

std::optional<size_t> in::punycode::encode( std::u32string_view source, std::span<char32_t> room )
{
    Writer out( room );
    // Each code point gives at least one of the result, so that a source longer than the room needs no second look.
    if ( source.size() > room.size() || !std::all_of( source.begin(), source.end(), []( char32_t c ) { return PB_CHAR_OK( c ); } ) )
        return std::nullopt;
    for ( const char32_t c : source )
        if ( isBasic( c ) )
            out.put( c );
    const auto basics = static_cast<pbInt>( out.length() );
    if ( basics > 0 && !out.put( delimiter ) )
        return std::nullopt;

    const Extended extended( source );
    pbInt n = INITIAL_N, i = 0, bias = INITIAL_BIAS, points = basics + 1;
    for ( size_t index = 0; index < extended.count(); ++index, ++points ) {
        const pbInt m = extended.value( index ), rank = extended.rank( index );
        // The decoder's counter runs over all places of a text of so many points for each value between the two.
        pbInt delta = rank - i;
        if ( !addProduct( delta, m - n, points ) || !writeInteger( out, delta, bias ) )
            return std::nullopt;
        bias = adapt( delta, points, index == 0 );
        n = m;
        i = rank + 1;
    }
    return out.length();
}

std::optional<size_t> in::punycode::decode( std::u32string_view source, std::span<char32_t> room )
{
    Writer out( room );
    const size_t last = source.rfind( delimiter );
    if ( last == 0 )
        return std::nullopt;
    if ( last != source.npos ) {
        for ( const char32_t c : source.substr( 0, last ) )
            if ( !isBasic( c ) || !out.put( c ) )
                return std::nullopt;
        source.remove_prefix( last + 1 );
    }

    pbInt n = INITIAL_N, i = 0, bias = INITIAL_BIAS;
    while ( !source.empty() ) {
        const pbInt before = i, points = static_cast<pbInt>( out.length() ) + 1;
        if ( !readInteger( source, i, bias ) )
            return std::nullopt;
        bias = adapt( i - before, points, before == 0 );
        // Beyond Unicode's last code point and among the surrogates nothing can be text.
        const pbInt turns = quotient( i, points );
        if ( !addProduct( n, turns, 1 ) || !PB_CHAR_OK( n ) || n > 0x10FFFF )
            return std::nullopt;
        i -= turns * points;
        if ( !out.insert( static_cast<size_t>( i ), static_cast<char32_t>( n ) ) )
            return std::nullopt;
        ++i;
    }
    return out.length();
}

extern "C" {

struct pbString *inDnsPunycodeTryEncode( const struct pbString *source, pbInt maxResultLength )
{
    PB_ASSERT( source );
    PB_ASSERT( maxResultLength >= -1 );
    const auto most = static_cast<size_t>( 1 + longestInteger * pbStringLength( source ) );
    return convert( source, most, maxResultLength, in::punycode::encode ).release();
}

struct pbString *inDnsPunycodeTryDecode( const struct pbString *source, pbInt maxResultLength )
{
    PB_ASSERT( source );
    PB_ASSERT( maxResultLength >= -1 );
    const auto most = static_cast<size_t>( pbStringLength( source ) ); // each code point takes at least one digit
    return convert( source, most, maxResultLength, in::punycode::decode ).release();
}

} // extern "C"
