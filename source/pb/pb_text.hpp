// What text functions share: white space, digits, UTF-8 read one code point at a time. In-tree only.
#ifndef PB_TEXT_HPP
#define PB_TEXT_HPP

#include "pb/pb_base.h"

#include <optional>
#include <string_view>

#include <unistr.h>

namespace pb::text {

constexpr char32_t replacement = 0xFFFD;

constexpr bool isSpace( char32_t c ) { return c == ' ' || ( c >= '\t' && c <= '\r' ); }
constexpr char32_t asciiLower( char32_t c ) { return c >= 'A' && c <= 'Z' ? c + ( 'a' - 'A' ) : c; }

constexpr int digitOf( char32_t c ) // 36 for what is no digit of any base
{
    const char32_t lower = asciiLower( c );
    return c >= '0' && c <= '9' ? static_cast<int>( c - '0' )
           : lower >= 'a' && lower <= 'z' ? static_cast<int>( lower - 'a' ) + 10 : 36;
}

// The value of the text's leading digits and their number; nothing without a digit or when it does not fit. It counts
// downwards, since the lowest integer has no positive counterpart.
struct Digits {
    pbInt value;
    size_t count;
};
inline std::optional<Digits> scanDigits( std::u32string_view text, pbInt base, bool negative )
{
    Digits digits{ 0, 0 };
    for ( ; digits.count < text.size() && digitOf( text[digits.count] ) < base; ++digits.count )
        if ( __builtin_mul_overflow( digits.value, base, &digits.value ) ||
             __builtin_sub_overflow( digits.value, digitOf( text[digits.count] ), &digits.value ) )
            return std::nullopt;
    if ( digits.count == 0 || ( !negative && digits.value == PB_INT_MIN ) )
        return std::nullopt;
    if ( !negative )
        digits.value = -digits.value;
    return digits;
}

// Reads UTF-8 from front to back. What is malformed reads as U+FFFD and is remembered.
class Utf8Reader {
public:
    explicit Utf8Reader( std::string_view bytes ) : rest_( bytes ) {}

    bool atEnd() const { return rest_.empty(); }
    bool malformed() const { return malformed_; }
    char32_t next()
    {
        const auto first = static_cast<unsigned char>( rest_.front() );
        if ( first < 0x80 ) {
            rest_.remove_prefix( 1 );
            return first;
        }
        const auto *bytes = reinterpret_cast<const uint8_t *>( rest_.data() );
        ucs4_t c;
        if ( u8_mbtoucr( &c, bytes, rest_.size() ) < 0 )
            malformed_ = true;
        rest_.remove_prefix( static_cast<size_t>( u8_mbtouc( &c, bytes, rest_.size() ) ) );
        return c;
    }

private:
    std::string_view rest_;
    bool malformed_ = false;
};

} // namespace pb::text

#endif
