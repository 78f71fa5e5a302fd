// pbVector against a model, its value semantics and its order.
#include "pb/pb_boxed_int.h"
#include "pb/pb_object.hpp"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"
#include "support/death_table.hpp"

#include <deque>
#include <random>

namespace {

using Vector = pb::Ref<struct pbVector>;

pb::Ref<pbObj> boxed( pbInt number ) { return pb::adopt( pbBoxedIntObj( pbBoxedIntCreate( number ) ) ); }

pbInt numberAt( const Vector &vector, pbInt index )
{
    return pbBoxedIntValue( pbBoxedIntFrom( pb::adopt( pbVectorObjAt( vector.get(), index ) ).get() ) );
}

Vector vectorOf( std::initializer_list<pbInt> numbers )
{
    Vector vector = pb::adopt( pbVectorCreate() );
    for ( const pbInt number : numbers )
        pbVectorAppend( vector.address(), boxed( number ).get() );
    return vector;
}

TEST( Vector, DoesWhatADequeDoes )
{
    std::mt19937 random( 7 );
    std::deque<pbInt> model;
    Vector vector = pb::adopt( pbVectorCreate() ), copy;
    for ( pbInt step = 0; step < 5000; ++step ) {
        const size_t at = random() % ( model.size() + 1 );
        const auto place = static_cast<pbInt>( at );
        switch ( random() % ( model.size() > 40 ? 8 : 5 ) ) {
        case 0:
            model.push_front( step );
            pbVectorPrepend( vector.address(), boxed( step ).get() );
            break;
        case 1:
            model.push_back( step );
            pbVectorAppend( vector.address(), boxed( step ).get() );
            break;
        case 2:
            model.insert( model.begin() + place, step );
            pbVectorInsert( vector.address(), place, boxed( step ).get() );
            break;
        case 3:
            copy = vector; // the next change clones
            break;
        default:
            if ( at == model.size() )
                break;
            if ( step % 3 ) {
                model.erase( model.begin() + place );
                pbVectorDelAt( vector.address(), place );
            }
            else {
                model[at] = step;
                pbVectorSetObjAt( vector.address(), place, boxed( step ).get() );
            }
        }
        ASSERT_EQ( pbVectorLength( vector.get() ), static_cast<pbInt>( model.size() ) );
        for ( size_t i = 0; i < model.size(); ++i )
            ASSERT_EQ( numberAt( vector, static_cast<pbInt>( i ) ), model[i] ) << "step " << step << " index " << i;
    }
}

TEST( Vector, ReleasesWhatItTakesOut )
{
    const auto element = boxed( 1 );
    Vector vector = pb::adopt( pbVectorCreate() );
    pbVectorAppend( vector.address(), element.get() );
    pbVectorAppend( vector.address(), element.get() );
    pbVectorDelAt( vector.address(), 0 );
    pbVectorSetObjAt( vector.address(), 0, boxed( 2 ).get() );
    EXPECT_FALSE( pbObjIsShared( element.get() ) );
    pbVectorAppend( vector.address(), pbVectorObj( vector.get() ) ); // holds what it was, not itself
    EXPECT_EQ( pbVectorLength( vector.get() ), 2 );
    const Vector kept = vector;
    pbVectorClear( vector.address() );
    EXPECT_EQ( pbVectorLength( kept.get() ), 2 );
}

TEST( Vector, OrdersByElementsThenLength )
{
    const Vector ascending[] = { vectorOf( {} ), vectorOf( { 1 } ), vectorOf( { 1, 1 } ), vectorOf( { 1, 2 } ),
                                 vectorOf( { 2 } ) };
    for ( const Vector &a : ascending )
        for ( const Vector &b : ascending )
            EXPECT_EQ( pbVectorCompare( a.get(), b.get() ), &a < &b ? -1 : &a > &b );
    EXPECT_TRUE( pbVectorContainsOnly( ascending[0].get(), pbStringSort() ) );
    EXPECT_TRUE( pbVectorContainsOnly( ascending[2].get(), pbBoxedIntSort() ) );
    EXPECT_FALSE( pbVectorContainsOnly( ascending[2].get(), pbStringSort() ) );
}

TEST( Vector, AssertsItsContract )
{
    Vector one = vectorOf( { 1 } );
    struct pbVector *none = nullptr;
    support::expectDeaths( {
        { [&] { pbVectorObjAt( one.get(), 1 ); }, "index >= 0 && index < pbVectorLength( vector )" },
        { [&] { pbVectorDelAt( one.address(), -1 ); }, "index >= 0 && index < pbVectorLength( *vector )" },
        { [&] { pbVectorInsert( one.address(), 2, boxed( 2 ).get() ); },
          "index >= 0 && index <= pbVectorLength( *vector )" },
        { [&] { pbVectorAppend( one.address(), nullptr ); }, "obj" },
        { [&] { pbVectorClear( &none ); }, "*vector" },
    } );
}

} // namespace
