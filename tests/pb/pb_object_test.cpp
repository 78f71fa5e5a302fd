// Objects: references, order across sorts, copy on write, and the memory behind them.
#include "pb/pb_object.hpp"
#include "pb/pb_string.hpp"
#include "support/death_table.hpp"

#include <deque>
#include <mutex>
#include <random>
#include <thread>

PB_SORT_DECLARE( pb___sort_TEST_VALUE )
struct testValue final : pb::Object<struct testValue, pb___sort_TEST_VALUE> {
    pbInt number = 0;
    auto operator<=>( const testValue & ) const = default;
};
PB_OBJECT_DEFINE( testValue, pb___sort_TEST_VALUE )

PB_SORT_DECLARE( pb___sort_TEST_ACTIVE )
struct testActive final : pb::Object<struct testActive, pb___sort_TEST_ACTIVE> {
    int number = 0;
};
PB_OBJECT_DEFINE( testActive, pb___sort_TEST_ACTIVE )

namespace {

pb::Ref<testValue> value( pbInt number )
{
    auto made = pb::make<testValue>();
    made->number = number;
    return made;
}

TEST( Object, OrdersNullThenSortNameThenContent )
{
    const auto active = pb::make<testActive>(), low = pb::make<testActive>();
    const pbObj *const ascending[] = { nullptr, std::min<pbObj *>( active.get(), low.get(), std::less<>{} ),
                                       std::max<pbObj *>( active.get(), low.get(), std::less<>{} ),
                                       value( -1 ).release(), value( 7 ).release() };
    for ( int i = 0; i < 5; ++i )
        for ( int j = 0; j < 5; ++j ) {
            SCOPED_TRACE( testing::Message() << i << " against " << j );
            EXPECT_EQ( pbObjCompare( ascending[i], ascending[j] ), i < j ? -1 : i > j );
        }
    EXPECT_TRUE( pbObjEquals( ascending[4], value( 7 ).get() ) );
    pbObjRelease( ascending[3] );
    pbObjRelease( ascending[4] );
    EXPECT_EQ( pb::utf8( pb::adopt( pbObjToString( active.get() ) ) ), "TEST_ACTIVE" );
    EXPECT_EQ( pb::utf8( pb::adopt( pbObjToString( nullptr ) ) ), "null" );
}

TEST( Object, EditCopiesOnlyWhatIsShared )
{
    auto mine = value( 1 );
    testValue *const before = mine.get();
    pb::edit( mine.address() ).number = 2;
    EXPECT_EQ( mine.get(), before );
    const auto other = mine;
    pb::edit( mine.address() ).number = 3;
    EXPECT_NE( mine.get(), before );
    EXPECT_EQ( other->number, 2 );
    EXPECT_FALSE( pbObjIsShared( other.get() ) );
}

TEST( Object, AssertsItsContract )
{
    const auto active = pb::make<testActive>();
    support::expectDeaths( {
        { [&] { testValueFrom( active.get() ); }, "!obj || pbObjSort(obj)==&pb___sort_TEST_VALUE" },
        { [] { pbObjSort( nullptr ); }, "obj" },
        { [] { testValueRetain( nullptr ); }, "obj" },
    } );
}

// Each block is filled and checked, so that a block handed out twice shows.
struct Block {
    size_t size;
    unsigned char *bytes;
};
Block allocate( size_t size, unsigned char mark )
{
    auto *bytes = static_cast<unsigned char *>( pb___MemoryAllocate( size ) );
    std::memset( bytes, mark, size );
    return { size, bytes };
}
void checkAndFree( Block block, unsigned char mark )
{
    for ( size_t i = 0; i < block.size; ++i )
        ASSERT_EQ( block.bytes[i], mark );
    pb___MemoryFree( block.bytes, block.size );
}

TEST( Memory, BlocksThatWanderBetweenThreadsStayWhole )
{
    constexpr size_t sizes[] = { 1, 32, 33, 512, 513 };
    std::mutex mutex;
    std::deque<std::pair<Block, unsigned char>> blocks; // a thread frees what another one made
    const auto work = [&]( unsigned seed ) {
        std::minstd_rand random( seed );
        for ( int wave = 0; wave < 40; ++wave ) { // longer than the magazines of a thread
            for ( unsigned i = 0, count = random() % 300; i < count; ++i ) {
                const auto mark = static_cast<unsigned char>( random() );
                const Block made = allocate( sizes[random() % 5], mark );
                const std::lock_guard lock( mutex );
                blocks.emplace_back( made, mark );
            }
            for ( unsigned i = 0, count = random() % 300; i < count; ++i ) {
                const std::lock_guard lock( mutex );
                if ( blocks.empty() )
                    break;
                checkAndFree( blocks.front().first, blocks.front().second );
                blocks.pop_front();
            }
        }
    };
    for ( unsigned round = 0; round < 3; ++round ) { // the lists of ended threads serve the next ones
        std::thread first( work, 3 * round + 1 ), second( work, 3 * round + 2 );
        first.join();
        second.join();
    }
    for ( const auto &[block, mark] : blocks )
        checkAndFree( block, mark );
}

// A thread-local object made before the thread's first block ends after the thread's free lists did.
struct Late {
    Block block{};
    ~Late()
    {
        checkAndFree( block, 1 );
        checkAndFree( allocate( 40, 2 ), 2 );
    }
};
thread_local Late late;
const Late atExit = { allocate( 64, 1 ) };

TEST( Memory, OutlivesTheThreadsOwnLists )
{
    for ( int i = 0; i < 3; ++i )
        std::thread( [] {
            late.block = { 0, nullptr };
            late.block = allocate( 40, 1 );
        } ).join();
}

} // namespace
