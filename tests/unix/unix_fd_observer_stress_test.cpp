// The protocol between a thread that serves descriptors and threads that make and release them: whoever deregistered a
// record may free it once it has passed the record's barrier. Made to be run under ThreadSanitizer too.
#include "pb/pb_barrier.h"
#include "unix/sockets.hpp"

#include <gmock/gmock.h>
#include <map>
#include <mutex>
#include <thread>

namespace {

struct Record {
    Pair pair = Pair::sockets();
    pb::Ref<struct pbBarrier> barrier = pb::adopt( pbBarrierCreate( 0 ) );
    std::mutex monitor;
    int served = 0;
    bool removed = false; // the descriptor is not to be registered again
};

struct Service {
    const Observer observer = pb::adopt( unixFdObserverTryCreate() );
    const Signal abort = pb::adopt( pbSignalCreate() );
    std::mutex tableMonitor;
    std::map<pbInt, Record *> table;
    int reports = 0, strange = 0;
    std::thread thread{ [this] { serve(); } };

    ~Service()
    {
        pbSignalAssert( abort.get() );
        thread.join();
        EXPECT_EQ( strange, 0 );
    }

    void serve()
    {
        pbInt fd, conditions;
        while ( unixFdObserverWait( observer.get(), abort.get(), &fd, &conditions ) ) {
            Record *record;
            for ( int i = 0; i < 4; ++i )
                std::this_thread::yield(); // widens the gap in which nobody may deregister
            {
                std::lock_guard guard( tableMonitor );
                record = table.at( fd ); // aborts unless it is there
            }
            pbBarrierBlock( record->barrier.get() );
            unixFdObserverUnblock( observer.get() );
            {
                std::lock_guard guard( record->monitor );
                ++reports;
                ++record->served;
                // A report that was meant for a former owner of the number finds nothing here.
                if ( conditions == readable )
                    strange += record->pair.read() == -1;
                if ( !record->removed )
                    unixFdObserverTrySetConditions( observer.get(), fd, readable );
            }
            pbBarrierUnblock( record->barrier.get() );
        }
    }

    void add( Record *record )
    {
        std::lock_guard guard( tableMonitor );
        table[record->pair.own.get()] = record;
    }
    void remove( Record *record )
    {
        const int fd = record->pair.own.get();
        {
            std::lock_guard guard( record->monitor );
            record->removed = true;
            EXPECT_TRUE( unixFdObserverTrySetConditions( observer.get(), fd, 0 ) );
        }
        pbBarrierPass( record->barrier.get() );
        std::lock_guard guard( tableMonitor );
        table.erase( fd );
        record->pair.own.reset(); // from now on the number may be another record's
    }
};

TEST( UnixFdObserverStress, RecordsComeAndGoWhileTheyAreServed )
{
    constexpr int threadCount = 3, rounds = 2000;
    Service service;
    std::vector<std::thread> threads;
    for ( int i = 0; i < threadCount; ++i )
        threads.emplace_back( [&service, i] {
            for ( int round = 0; round < rounds; ++round ) {
                const auto record = std::make_unique<Record>(), other = std::make_unique<Record>();
                for ( Record *added : { record.get(), other.get() } ) {
                    service.add( added );
                    {
                        // Not served before it is watched; from then on until it is removed.
                        std::lock_guard guard( added->monitor );
                        EXPECT_TRUE( unixFdObserverTrySetConditions( service.observer.get(), added->pair.own.get(),
                                                                     round % 3 ? readable : writable ) );
                    }
                    if ( round % 2 )
                        std::this_thread::yield(); // watched, and nothing to read yet
                    added->pair.peerWrites();
                }
                if ( ( round + i ) % 2 )
                    std::this_thread::yield();
                service.remove( other.get() );
                service.remove( record.get() );
            }
        } );
    for ( std::thread &thread : threads )
        thread.join();
    std::lock_guard guard( service.tableMonitor );
    EXPECT_TRUE( service.table.empty() );
}

// A descriptor that is always ready must not keep out those who change conditions.
TEST( UnixFdObserverStress, ABusyObserverLetsSettersIn )
{
    const Observer observer = pb::adopt( unixFdObserverTryCreate() );
    const Signal abort = pb::adopt( pbSignalCreate() );
    const Pair busy = Pair::sockets(), changed = Pair::sockets();
    ASSERT_TRUE( unixFdObserverTrySetConditions( observer.get(), busy.own.get(), writable ) );
    std::thread waiting( [&] {
        pbInt fd, conditions;
        while ( unixFdObserverWait( observer.get(), abort.get(), &fd, &conditions ) ) {
            std::this_thread::yield();
            unixFdObserverUnblock( observer.get() );
        }
    } );
    for ( int i = 0; i < 2000; ++i )
        ASSERT_TRUE( unixFdObserverTrySetConditions( observer.get(), changed.own.get(), i % 2 ? 0 : readable ) );
    pbSignalAssert( abort.get() );
    waiting.join();
}

} // namespace
