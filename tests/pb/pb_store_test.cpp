// pbStore: keys, typed values, arrays and order-independent comparison; large stores as well as small ones.
#include "pb/pb_format.hpp"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"
#include "support/death_table.hpp"

#include <algorithm>
#include <map>
#include <random>

namespace {

using Store = pb::Ref<struct pbStore>;

Store storeOf( std::initializer_list<std::pair<const char *, const char *>> values )
{
    Store store = pb::adopt( pbStoreCreate() );
    for ( const auto &[key, value] : values )
        pbStoreSetValueCstr( store.address(), key, -1, pb::string( value ).get() );
    return store;
}

std::string value( const Store &store, const char *key )
{
    return pb::utf8( pb::adopt( pbStoreValueCstr( store.get(), key, -1 ) ) );
}

TEST( Store, ReadsTypedValuesOnlyWhenTheWholeTextFits )
{
    static const struct {
        const char *text;
        bool isInt;
        pbInt number;
    } rows[] = {
        { "0", true, 0 }, { "-12", true, -12 }, { "0x2E", true, 46 }, { "0XfF", true, 255 }, { "-0x10", true, -16 },
        { "-9223372036854775808", true, PB_INT_MIN }, { "-0x8000000000000000", true, PB_INT_MIN },
        { "0x7FFFFFFFFFFFFFFF", true, PB_INT_MAX }, { "0x8000000000000000", false, 0 },
        { "18446744073709551617", false, 0 }, { "", false, 0 },
        { "-", false, 0 }, { "0x", false, 0 }, { "0x-1", false, 0 }, { "1 ", false, 0 }, { " 1", false, 0 },
        { "+1", false, 0 }, { "1a", false, 0 }, { "0xg", false, 0 },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.text );
        pbInt number = 77;
        EXPECT_EQ( pbStoreValueIntCstr( storeOf( { { "key", row.text } } ).get(), &number, "keyX", 3 ), row.isInt );
        EXPECT_EQ( number, row.isInt ? row.number : 77 );
    }
    for ( const auto &[text, expected] : std::map<std::string, int>{
              { "true", 1 }, { "false", 0 }, { "True", 77 }, { "1", 77 }, { "", 77 }, { "falsey", 77 } } ) {
        pbBool flag = 77;
        const Store store = storeOf( { { "key", text.c_str() } } );
        EXPECT_EQ( pbStoreValueBoolCstr( store.get(), &flag, "key", -1 ), expected != 77 );
        EXPECT_EQ( flag, expected ) << text;
    }
}

TEST( Store, KeepsOrderKindAndCopies )
{
    Store store = storeOf( { { "b", "1" }, { "a", "2" } } );
    const Store before = store;
    pbStoreSetStoreCstr( store.address(), "b", -1, store.get() ); // replaces in place; holds what the store was
    pbStoreSetValueIntCstr( store.address(), "c", -1, -7 );
    pbStoreSetValueBoolCstr( store.address(), "d", -1, true );
    EXPECT_EQ( value( before, "b" ), "1" );
    EXPECT_EQ( value( store, "b" ), "null" );
    EXPECT_FALSE( pbStoreHasValueCstr( store.get(), "b", -1 ) );
    EXPECT_TRUE( pbStoreHasStoreCstr( store.get(), "b", -1 ) );
    EXPECT_EQ( value( pb::adopt( pbStoreStoreAt( store.get(), 0 ) ), "b" ), "1" );
    EXPECT_EQ( pb::utf8( pb::adopt( pbStoreKeyAt( store.get(), 1 ) ) ), "a" );
    EXPECT_EQ( value( store, "c" ) + value( store, "d" ), "-7true" );
    pbStoreDelValueCstr( store.address(), "b", -1 ); // of the other kind
    pbStoreDelStoreCstr( store.address(), "a", -1 );
    EXPECT_EQ( pbStoreLength( store.get() ), 4 );
    pbStoreDelStoreCstr( store.address(), "b", -1 );
    pbStoreDelValueCstr( store.address(), "a", -1 );
    EXPECT_EQ( pbStoreLength( store.get() ), 2 );
    EXPECT_TRUE( pbStoreIsValueAt( store.get(), 0 ) );
}

TEST( Store, ComparesContentWhateverTheOrder )
{
    EXPECT_TRUE( pbStoreEquals( storeOf( { { "a", "1" }, { "b", "2" } } ).get(),
                                storeOf( { { "b", "2" }, { "a", "1" } } ).get() ) );
    Store nested = pb::adopt( pbStoreCreate() );
    pbStoreSetStoreCstr( nested.address(), "a", -1, storeOf( { { "x", "1" } } ).get() );
    Store other = pb::adopt( pbStoreCreate() );
    pbStoreSetStoreCstr( other.address(), "a", -1, storeOf( { { "x", "2" } } ).get() );
    const Store ascending[] = { storeOf( {} ), nested, other, storeOf( { { "a", "1" } } ),
                                storeOf( { { "a", "1" }, { "b", "0" } } ), storeOf( { { "a", "2" } } ) };
    for ( const Store &a : ascending )
        for ( const Store &b : ascending )
            EXPECT_EQ( pbStoreCompare( a.get(), b.get() ), &a < &b ? -1 : &a > &b );
}

// Grows beyond the size from which there is an index, and shrinks to nothing.
TEST( Store, FindsKeysInAnySize )
{
    std::mt19937 random( 3 );
    std::vector<std::pair<std::string, std::string>> model;
    Store store = pb::adopt( pbStoreCreate() ), copy;
    for ( int step = 0; step < 4000; ++step ) {
        const std::string key = "k" + std::to_string( random() % 60 );
        const auto known = std::ranges::find( model, key, &std::pair<std::string, std::string>::first );
        if ( random() % 3 < ( step / 500 % 2 ? 1 : 2 ) ) {
            const std::string text = std::to_string( step );
            pbStoreSetValueCstr( store.address(), key.c_str(), -1, pb::string( text ).get() );
            if ( known == model.end() )
                model.emplace_back( key, text );
            else
                known->second = text;
        }
        else {
            pbStoreDelValueCstr( store.address(), key.c_str(), -1 );
            if ( known != model.end() )
                model.erase( known );
        }
        if ( step % 50 == 0 )
            copy = store;
        ASSERT_EQ( pbStoreLength( store.get() ), static_cast<pbInt>( model.size() ) );
        for ( size_t i = 0; i < model.size(); ++i ) {
            ASSERT_EQ( pb::utf8( pb::adopt( pbStoreKeyAt( store.get(), static_cast<pbInt>( i ) ) ) ), model[i].first );
            ASSERT_EQ( value( store, model[i].first.c_str() ), model[i].second );
        }
    }
}

TEST( Store, ReadsArraysByNumber )
{
    Store array = storeOf( { { "1", "one" }, { "01", "no" }, { "3", "three" }, { "x", "no" } } );
    EXPECT_EQ( pbStoreArrayLength( array.get() ), 0 );
    pbStoreArrayAppendValue( array.address(), pb::string( "zero" ).get() );
    EXPECT_EQ( pbStoreArrayLength( array.get() ), 2 );
    pbStoreArrayAppendStore( array.address(), storeOf( {} ).get() );
    EXPECT_EQ( pbStoreArrayLength( array.get() ), 4 );
    for ( pbInt i = 4; i < 40; ++i )
        pbStoreArrayAppendValue( array.address(), pb::format( "%i", i ).get() );
    EXPECT_EQ( pbStoreArrayLength( array.get() ), 40 );
    EXPECT_EQ( pb::utf8( pb::adopt( pbStoreArrayValueAt( array.get(), 10 ) ) ), "10" );
    EXPECT_FALSE( pb::adopt( pbStoreArrayValueAt( array.get(), 2 ) ) );
    EXPECT_TRUE( pb::adopt( pbStoreArrayStoreAt( array.get(), 2 ) ) );
    EXPECT_FALSE( pb::adopt( pbStoreArrayValueAt( array.get(), PB_INT_MAX ) ) );
    pbStoreDelStoreCstr( array.address(), "2", -1 );
    EXPECT_EQ( pbStoreArrayLength( array.get() ), 2 );
    pbStoreDelValueCstr( array.address(), "30", -1 );
    pbStoreArrayAppendValue( array.address(), pb::string( "two" ).get() );
    EXPECT_EQ( pbStoreArrayLength( array.get() ), 30 );
}

TEST( Store, AssertsItsContract )
{
    Store store = storeOf( { { "a", "1" } } );
    support::expectDeaths( {
        { [&] { pbStoreKeyAt( store.get(), 1 ); }, "index >= 0 && index < pbStoreLength( store )" },
        { [&] { pbStoreSetValueCstr( store.address(), "a", -1, nullptr ); }, "value" },
        { [&] { pbStoreSetValueCstr( store.address(), nullptr, 0, nullptr ); }, "key" },
        { [&] { pbStoreArrayValueAt( store.get(), -1 ); }, "index >= 0" },
    } );
}

} // namespace
