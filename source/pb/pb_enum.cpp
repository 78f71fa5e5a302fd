// pbEnum: a short table of names and values that is searched from front to back.
#include "pb/pb_enum.h"

#include "pb/pb_string.hpp"

#include <algorithm>
#include <vector>

PB_SORT_DECLARE( pb___sort_PB_ENUM )

namespace {

struct Enumerant {
    pb::String name;
    pbInt value;

    auto operator<=>( const Enumerant & ) const = default;
};

} // namespace

struct pbEnum final : pb::Object<struct pbEnum, pb___sort_PB_ENUM> {
    std::vector<Enumerant> enumerants;

    auto operator<=>( const pbEnum & ) const = default;
};

PB_OBJECT_DEFINE( pbEnum, pb___sort_PB_ENUM )

extern "C" {

struct pbEnum *pbEnumCreate( void ) { return new pbEnum; }

void pbEnumAddEnumerantCstr( struct pbEnum **enumeration, const char *name, pbInt nameLength, pbInt value )
{
    PB_ASSERT( enumeration );
    PB_ASSERT( *enumeration );
    PB_ASSERT( name );
    PB_ASSERT( value >= 0 );
    pb::String text = pb::adopt( pbStringCreateFromCstr( name, nameLength ) );
    const bool isNew = std::ranges::none_of( ( *enumeration )->enumerants, [&]( const Enumerant &enumerant ) {
        return enumerant.name == text || enumerant.value == value;
    } );
    PB_ASSERT_TEXT( isNew, "the enumerant's name and value are new" );
    pb::edit( enumeration ).enumerants.push_back( { std::move( text ), value } );
}

struct pbString *pbEnumGenerate( const struct pbEnum *enumeration, pbInt value )
{
    PB_ASSERT( enumeration );
    const auto found = std::ranges::find( enumeration->enumerants, value, &Enumerant::value );
    PB_ASSERT_TEXT( found != enumeration->enumerants.end(), "the value is an enumerant" );
    return found->name.share();
}

pbInt pbEnumParse( const struct pbEnum *enumeration, const struct pbString *name )
{
    PB_ASSERT( enumeration );
    PB_ASSERT( name );
    const auto found = std::ranges::find( enumeration->enumerants, pb::share( name ), &Enumerant::name );
    return found == enumeration->enumerants.end() ? -1 : found->value;
}

} // extern "C"
