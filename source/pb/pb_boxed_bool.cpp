// pbBoxedBool.
#include "pb/pb_boxed_bool.h"
#include "pb/pb_string.hpp"

PB_SORT_DECLARE( pb___sort_PB_BOXED_BOOL )

struct pbBoxedBool final : pb::Object<struct pbBoxedBool, pb___sort_PB_BOXED_BOOL> {
    const bool value;

    explicit pbBoxedBool( bool value ) : value( value ) {}
    auto operator<=>( const pbBoxedBool & ) const = default;
    pb::String toString() const { return pb::string( value ? "true" : "false" ); }
};

PB_OBJECT_DEFINE( pbBoxedBool, pb___sort_PB_BOXED_BOOL )

extern "C" {

struct pbBoxedBool *pbBoxedBoolCreate( pbBool value ) { return new pbBoxedBool( value ); }

pbBool pbBoxedBoolValue( const struct pbBoxedBool *boxed )
{
    PB_ASSERT( boxed );
    return boxed->value;
}

} // extern "C"
