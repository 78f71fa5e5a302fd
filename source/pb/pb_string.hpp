// C++ helpers over pbString. In-tree only.
#ifndef PB_STRING_HPP
#define PB_STRING_HPP

#include "pb/pb_object.hpp"
#include "pb/pb_string.h"

#include <string>
#include <string_view>

extern "C" {
// Bytes that are all ASCII, not checked: one allocation, no decoding.
PB_API struct pbString *pb___StringCreateFromAscii( const char *bytes, pbInt count );
}

namespace pb {

using String = Ref<struct pbString>;

inline String string( std::string_view utf8 )
{
    return adopt( pbStringCreateFromCstr( utf8.data(), static_cast<pbInt>( utf8.size() ) ) );
}
inline std::u32string_view view( const struct pbString *string )
{
    return { reinterpret_cast<const char32_t *>( pbStringBacking( string ) ),
             static_cast<size_t>( pbStringLength( string ) ) };
}
PB_API std::string utf8( const struct pbString *string ); // "null" for null
inline std::string utf8( const String &string ) { return utf8( string.get() ); }

} // namespace pb

#endif
