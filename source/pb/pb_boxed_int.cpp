// pbBoxedInt.
#include "pb/pb_boxed_int.hpp"
#include "pb/pb_format.hpp"

PB_OBJECT_DEFINE( pbBoxedInt, pb___sort_PB_BOXED_INT )

pb::String pbBoxedInt::toString() const { return pb::format( "%i", value ); }

extern "C" {

struct pbBoxedInt *pbBoxedIntCreate( pbInt value ) { return new pbBoxedInt( value ); }

pbInt pbBoxedIntValue( const struct pbBoxedInt *boxed )
{
    PB_ASSERT( boxed );
    return boxed->value;
}

} // extern "C"
