// pb::format: the variadic face of the formatter. Integers widen to pbInt, objects may be null, an object given as an
// rvalue Ref is released with the argument list ("%~s" and "%s" read it alike). In-tree only.
#ifndef PB_FORMAT_HPP
#define PB_FORMAT_HPP

#include "pb/pb_format.h"
#include "pb/pb_object.hpp"

namespace pb {
namespace detail {

template <class T> pbFormatArgument formatArgument( const T &value )
{
    if constexpr ( std::same_as<T, bool> )
        return { PB_FORMAT_ARGUMENT_BOOL, value, nullptr };
    else if constexpr ( std::same_as<T, char32_t> )
        return { PB_FORMAT_ARGUMENT_CHAR, static_cast<pbInt>( value ), nullptr };
    else {
        static_assert( std::integral<T> || std::is_enum_v<T>, "an integer, bool, char32_t, Ref or object pointer" );
        return { PB_FORMAT_ARGUMENT_INT, static_cast<pbInt>( value ), nullptr };
    }
}
template <class T> pbFormatArgument formatArgument( const Ref<T> &value )
{
    return { PB_FORMAT_ARGUMENT_OBJ, 0, reinterpret_cast<const pbObj *>( value.get() ) };
}
template <class T> pbFormatArgument formatArgument( T *const &value )
{
    return { PB_FORMAT_ARGUMENT_OBJ, 0, reinterpret_cast<const pbObj *>( value ) };
}

} // namespace detail

template <class... Arguments> Ref<struct pbString> format( const char *text, const Arguments &...arguments )
{
    const pbFormatArgument list[] = { detail::formatArgument( arguments )..., {} };
    return adopt( pbStringCreateFromFormatCstr( text, -1, list, sizeof...( arguments ) ) );
}

} // namespace pb

#endif
