// The operations of all objects alike: references, order and text form.
#include "pb/pb_obj.h"

#include "pb/pb_assert.hpp"
#include "pb/pb_object.hpp"
#include "pb/pb_string.hpp"

#include <cstring>
#include <functional>

namespace {

pbInt sign( int order ) { return order < 0 ? -1 : order > 0 ? 1 : 0; }

pbInt compareAddresses( const void *a, const void *b )
{
    return std::less<>{}( a, b ) ? -1 : a != b;
}

// Two libraries may use one name for different sorts; their records still differ.
pbInt compareSorts( const pbSort *a, const pbSort *b )
{
    const pbInt order = sign( std::strcmp( a->name, b->name ) );
    return order ? order : compareAddresses( a, b );
}

} // namespace

extern "C" {

const char *pbSortName( const struct pbSort *sort )
{
    PB_ASSERT( sort );
    return sort->name;
}

const struct pbSort *pbObjSort( const struct pbObj *obj )
{
    PB_ASSERT( obj );
    return obj->sort;
}

struct pbObj *pbObjRetain( const struct pbObj *obj )
{
    PB_ASSERT( obj );
    return pb::share( obj ).release();
}

void pbObjRelease( const struct pbObj *obj )
{
    if ( obj )
        pb::release( obj );
}

pbBool pbObjIsShared( const struct pbObj *obj )
{
    PB_ASSERT( obj );
    return pb::isShared( obj );
}

pbInt pbObjCompare( const struct pbObj *a, const struct pbObj *b )
{
    if ( a == b )
        return 0;
    if ( !a || !b )
        return a ? 1 : -1;
    if ( a->sort != b->sort )
        return compareSorts( a->sort, b->sort );
    return a->sort->compare ? a->sort->compare( a, b ) : compareAddresses( a, b );
}

pbBool pbObjEquals( const struct pbObj *a, const struct pbObj *b ) { return pbObjCompare( a, b ) == 0; }

struct pbString *pbObjToString( const struct pbObj *obj )
{
    if ( obj && obj->sort->toString )
        return obj->sort->toString( obj );
    const char *text = obj ? obj->sort->name : "null";
    return pb___StringCreateFromAscii( text, static_cast<pbInt>( std::strlen( text ) ) );
}

} // extern "C"
