// pbRegion: a reader/writer lock whose sides take turns. Readers that come while a writer waits stand back; when a
// writer leaves, all readers that wait by then enter, and the next writer after them. So a reader waits for one writer,
// and a writer for the writers before it and one turn of readers before each.
#include "pb/pb_region.h"
#include "pb/pb_monitor.hpp"
#include "pb/pb_object.hpp"
#include "pb/pb_wake.hpp"

PB_SORT_DECLARE( pb___sort_PB_REGION )

struct pbRegion final : pb::Object<struct pbRegion, pb___sort_PB_REGION> {
    // How many readers are inside, and whether a writer is inside or waits: while none does, readers come and go by
    // this word alone. The mark changes under the monitor.
    static constexpr uint64_t writerMark = uint64_t{ 1 } << 63;
    std::atomic<uint64_t> state{ 0 };
    std::atomic<bool> writerInside{ false }; // read by whoever leaves; no reader is inside while it is true

    pb::Monitor monitor;
    pb::Condition readersTurn, writersTurn;
    uint64_t waitingReaders PB_GUARDED_BY( monitor ) = 0;
    uint64_t readerTurn PB_GUARDED_BY( monitor ) = 0;   // counts the times that waiting readers were let in
    uint64_t writersCome PB_GUARDED_BY( monitor ) = 0;  // the number of the next writer to come
    uint64_t writersLetIn PB_GUARDED_BY( monitor ) = 0; // writers with a smaller number have had their turn

    bool tryEnterSharedAlone();
    void enterShared();
    void enterExclusive();
    void leaveShared();
    void leaveExclusive();

private:
    void letNextWriterIn() PB_REQUIRES( monitor );
};

PB_OBJECT_DEFINE( pbRegion, pb___sort_PB_REGION )

// Enters unless a writer is there.
bool pbRegion::tryEnterSharedAlone()
{
    uint64_t current = state.load( std::memory_order_relaxed );
    while ( !( current & writerMark ) )
        if ( state.compare_exchange_weak( current, current + 1, std::memory_order_acquire, std::memory_order_relaxed ) )
            return true;
    return false;
}

void pbRegion::enterShared()
{
    if ( tryEnterSharedAlone() )
        return;
    const pb::Guard guard( monitor );
    if ( tryEnterSharedAlone() )
        return;
    ++waitingReaders;
    pb___WakesFlush();
    for ( const uint64_t turn = readerTurn; turn == readerTurn; )
        readersTurn.wait( monitor );
}

void pbRegion::enterExclusive()
{
    const pb::Guard guard( monitor );
    const uint64_t number = writersCome++;
    const uint64_t before = state.fetch_or( writerMark, std::memory_order_acquire );
    if ( before == 0 )
        letNextWriterIn();
    if ( writersLetIn <= number )
        pb___WakesFlush();
    while ( writersLetIn <= number )
        writersTurn.wait( monitor );
}

void pbRegion::letNextWriterIn()
{
    writerInside.store( true, std::memory_order_relaxed );
    ++writersLetIn;
    writersTurn.wakeAll();
}

void pbRegion::leaveShared()
{
    if ( state.fetch_sub( 1, std::memory_order_acq_rel ) != ( writerMark | 1 ) )
        return;
    // The last reader before a writer: the mark keeps others out, so nothing has changed since.
    const pb::Guard guard( monitor );
    letNextWriterIn();
}

void pbRegion::leaveExclusive()
{
    const pb::Guard guard( monitor );
    const bool writerWaits = writersLetIn < writersCome;
    if ( waitingReaders || !writerWaits ) {
        writerInside.store( false, std::memory_order_relaxed );
        state.store( waitingReaders | ( writerWaits ? writerMark : 0 ), std::memory_order_release );
        waitingReaders = 0;
        ++readerTurn;
        readersTurn.wakeAll();
    }
    else
        letNextWriterIn();
}

extern "C" {

struct pbRegion *pbRegionCreate( void ) { return new pbRegion; }

void pbRegionEnterShared( struct pbRegion *region )
{
    PB_ASSERT( region );
    region->enterShared();
}

void pbRegionEnterExclusive( struct pbRegion *region )
{
    PB_ASSERT( region );
    region->enterExclusive();
}

void pbRegionLeave( struct pbRegion *region )
{
    PB_ASSERT( region );
    if ( region->writerInside.load( std::memory_order_relaxed ) )
        region->leaveExclusive();
    else
        region->leaveShared();
}

} // extern "C"
