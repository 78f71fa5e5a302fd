// pbVector: a ring of references, so that both ends are as cheap to take from as to add to.
#include "pb/pb_vector.hpp"

#include <algorithm>
#include <bit>
#include <vector>

PB_SORT_DECLARE( pb___sort_PB_VECTOR )

namespace {

// Short rings come from the memory of small objects.
template <class T> struct SmallObjectAllocator {
    using value_type = T;
    T *allocate( size_t count ) { return static_cast<T *>( pb___MemoryAllocate( count * sizeof( T ) ) ); }
    void deallocate( T *memory, size_t count ) { pb___MemoryFree( memory, count * sizeof( T ) ); }
    bool operator==( const SmallObjectAllocator & ) const = default;
};
using Ring = std::vector<pb::Ref<pbObj>, SmallObjectAllocator<pb::Ref<pbObj>>>;

} // namespace

struct pbVector final : pb::Object<struct pbVector, pb___sort_PB_VECTOR> {
    Ring ring; // its size is zero or a power of two; what is not in use is null
    size_t head = 0;
    size_t length = 0;

    pb::Ref<pbObj> &at( size_t index ) { return ring[( head + index ) & ( ring.size() - 1 )]; }
    const pb::Ref<pbObj> &at( size_t index ) const { return ring[( head + index ) & ( ring.size() - 1 )]; }

    void append( pb::Ref<pbObj> obj )
    {
        if ( length == ring.size() )
            grow();
        at( length++ ) = std::move( obj );
    }
    void insert( size_t index, pb::Ref<pbObj> obj );
    void remove( size_t index );

    std::strong_ordering operator<=>( const pbVector &other ) const
    {
        for ( size_t i = 0; i < std::min( length, other.length ); ++i )
            if ( const auto order = at( i ) <=> other.at( i ); order != 0 )
                return order;
        return length <=> other.length;
    }
    bool operator==( const pbVector &other ) const { return ( *this <=> other ) == 0; }

private:
    void grow();
};

PB_OBJECT_DEFINE( pbVector, pb___sort_PB_VECTOR )

void pbVector::grow()
{
    Ring larger( std::max<size_t>( 4, 2 * ring.size() ) );
    for ( size_t i = 0; i < length; ++i )
        larger[i] = std::move( at( i ) );
    ring = std::move( larger );
    head = 0;
}

// Moves the elements of the shorter side by one.
void pbVector::insert( size_t index, pb::Ref<pbObj> obj )
{
    if ( length == ring.size() )
        grow();
    ++length;
    if ( index < length / 2 ) {
        --head;
        for ( size_t i = 0; i < index; ++i )
            at( i ) = std::move( at( i + 1 ) );
    }
    else {
        for ( size_t i = length - 1; i > index; --i )
            at( i ) = std::move( at( i - 1 ) );
    }
    at( index ) = std::move( obj );
}

void pbVector::remove( size_t index )
{
    const pb::Ref<pbObj> removed = std::move( at( index ) ); // released when the vector is whole again
    if ( index < length / 2 ) {
        for ( size_t i = index; i > 0; --i )
            at( i ) = std::move( at( i - 1 ) );
        ++head;
    }
    else {
        for ( size_t i = index; i + 1 < length; ++i )
            at( i ) = std::move( at( i + 1 ) );
    }
    --length;
}

namespace {

void insertShared( struct pbVector **vector, size_t index, const struct pbObj *obj )
{
    pb::Ref<pbObj> element = pb::share( const_cast<pbObj *>( obj ) ); // before the edit: it may be the vector itself
    pb::edit( vector ).insert( index, std::move( element ) );
}

} // namespace

extern "C" {

struct pbVector *pbVectorCreate( void ) { return new pbVector; }

struct pbVector *pb___VectorCreateWithRoom( pbInt count )
{
    PB_ASSERT( count >= 0 );
    auto vector = pb::make<struct pbVector>();
    if ( count )
        vector->ring.resize( std::bit_ceil( static_cast<size_t>( count ) ) );
    return vector.release();
}

void pb___VectorAppendAdopted( struct pbVector *vector, struct pbObj *obj )
{
    PB_ASSERT( vector );
    PB_ASSERT( obj );
    vector->append( pb::adopt( obj ) );
}

struct pbVector *pbVectorCreateFrom( const struct pbVector *source )
{
    PB_ASSERT( source );
    return new pbVector( *source );
}

pbInt pbVectorLength( const struct pbVector *vector )
{
    PB_ASSERT( vector );
    return static_cast<pbInt>( vector->length );
}

struct pbObj *pbVectorObjAt( const struct pbVector *vector, pbInt index )
{
    PB_ASSERT( vector );
    PB_ASSERT( index >= 0 && index < pbVectorLength( vector ) );
    return vector->at( static_cast<size_t>( index ) ).share();
}

void pbVectorSetObjAt( struct pbVector **vector, pbInt index, const struct pbObj *obj )
{
    PB_ASSERT( vector );
    PB_ASSERT( *vector );
    PB_ASSERT( index >= 0 && index < pbVectorLength( *vector ) );
    PB_ASSERT( obj );
    pb::Ref<pbObj> element = pb::share( const_cast<pbObj *>( obj ) );
    pb::edit( vector ).at( static_cast<size_t>( index ) ) = std::move( element );
}

void pbVectorDelAt( struct pbVector **vector, pbInt index )
{
    PB_ASSERT( vector );
    PB_ASSERT( *vector );
    PB_ASSERT( index >= 0 && index < pbVectorLength( *vector ) );
    pb::edit( vector ).remove( static_cast<size_t>( index ) );
}

void pbVectorInsert( struct pbVector **vector, pbInt index, const struct pbObj *obj )
{
    PB_ASSERT( vector );
    PB_ASSERT( *vector );
    PB_ASSERT( index >= 0 && index <= pbVectorLength( *vector ) );
    PB_ASSERT( obj );
    insertShared( vector, static_cast<size_t>( index ), obj );
}

void pbVectorAppend( struct pbVector **vector, const struct pbObj *obj )
{
    PB_ASSERT( vector );
    PB_ASSERT( *vector );
    PB_ASSERT( obj );
    insertShared( vector, ( *vector )->length, obj );
}

void pbVectorPrepend( struct pbVector **vector, const struct pbObj *obj )
{
    PB_ASSERT( vector );
    PB_ASSERT( *vector );
    PB_ASSERT( obj );
    insertShared( vector, 0, obj );
}

void pbVectorClear( struct pbVector **vector )
{
    PB_ASSERT( vector );
    PB_ASSERT( *vector );
    pb::adopt( std::exchange( *vector, pbVectorCreate() ) ).reset();
}

pbBool pbVectorContainsOnly( const struct pbVector *vector, const struct pbSort *sort )
{
    PB_ASSERT( vector );
    PB_ASSERT( sort );
    for ( size_t i = 0; i < vector->length; ++i )
        if ( vector->at( i )->sort != sort )
            return false;
    return true;
}

} // extern "C"
