// The protocol between the thread that serves descriptors and those that make and release them: whoever deregistered a
// record may free it once it has passed the record's barrier. Made to be run under ThreadSanitizer too.
#include "pb/pb_barrier.h"
#include "unix/sockets.hpp"

#include <gmock/gmock.h>
#include <map>
#include <mutex>
#include <thread>

namespace {

void giveWay()
{
    for ( int i = 0; i < 4; ++i )
        std::this_thread::yield();
}

struct Record {
    Pair pair;
    const pb::Ref<struct pbBarrier> barrier = pb::adopt( pbBarrierCreate( 0 ) );
    std::mutex monitor;
    bool removed = false; // not to be registered again
};

struct Service {
    const Observer observer = pb::adopt( unixFdObserverTryCreate() );
    const Signal abort = pb::adopt( pbSignalCreate() );
    std::mutex tableMonitor;
    std::map<pbInt, Record *> table;
    std::thread thread{ [this] { serve(); } };

    ~Service()
    {
        pbSignalAssert( abort.get() );
        thread.join();
    }
    void serve()
    {
        pbInt fd, conditions;
        while ( unixFdObserverWait( observer.get(), abort.get(), &fd, &conditions ) ) {
            giveWay(); // to whoever would wrongly deregister now
            Record *record;
            {
                std::lock_guard guard( tableMonitor );
                record = table.at( fd ); // throws unless it is there
            }
            pbBarrierBlock( record->barrier.get() );
            unixFdObserverUnblock( observer.get() );
            giveWay(); // the rest of the batch may lose its owners now
            {
                std::lock_guard guard( record->monitor );
                // A report that was meant for a former owner of the number finds nothing here.
                EXPECT_TRUE( record->pair.tryRead() || record->removed );
                if ( !record->removed )
                    unixFdObserverTrySetConditions( observer.get(), fd, readable | error );
            }
            pbBarrierUnblock( record->barrier.get() );
        }
    }
    void add( Record &record )
    {
        {
            std::lock_guard guard( tableMonitor );
            table[record.pair.own.get()] = &record;
        }
        EXPECT_TRUE( unixFdObserverTrySetConditions( observer.get(), record.pair.own.get(), readable ) );
        giveWay(); // nothing to read yet
        record.pair.peerWrites();
    }
    void remove( Record &record )
    {
        {
            std::lock_guard guard( record.monitor );
            record.removed = true;
            EXPECT_TRUE( unixFdObserverTrySetConditions( observer.get(), record.pair.own.get(), 0 ) );
        }
        pbBarrierPass( record.barrier.get() );
        std::lock_guard guard( tableMonitor );
        table.erase( record.pair.own.get() );
        record.pair.own.reset(); // from now on the number may be another record's
    }
};

TEST( UnixFdObserverStress, RecordsComeAndGoWhileTheyAreServed )
{
    Service service;
    std::vector<std::thread> threads;
    for ( int i = 0; i < 3; ++i )
        threads.emplace_back( [&service] {
            for ( int round = 0; round < 1500; ++round ) {
                Record records[3];
                for ( Record &record : records )
                    service.add( record );
                for ( Record &record : records )
                    service.remove( record );
            }
        } );
    for ( std::thread &thread : threads )
        thread.join();
}

} // namespace
