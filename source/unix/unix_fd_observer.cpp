// unixFdObserver: waits with epoll(7) until one of many file descriptors is ready, and hands them out one at a time.
#include "unix/unix_fd_observer.h"

#include "pb/pb_fd.hpp"
#include "pb/pb_monitor.hpp"
#include "pb/pb_signal.h"
#include "pb/pb_wake.hpp"

#include <array>
#include <cerrno>
#include <pthread.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <vector>

namespace {

constexpr pbInt allConditions = UNIX_FD_CONDITION_READABLE | UNIX_FD_CONDITION_WRITABLE | UNIX_FD_CONDITION_ERROR;

uint32_t eventsToWatch( pbInt conditions )
{
    // The kernel adds EPOLLERR and EPOLLHUP to every set.
    return ( conditions & UNIX_FD_CONDITION_READABLE ? EPOLLIN | EPOLLRDHUP : 0u )
           | ( conditions & UNIX_FD_CONDITION_WRITABLE ? EPOLLOUT : 0u )
           | ( conditions & UNIX_FD_CONDITION_ERROR ? EPOLLERR : 0u );
}

pbInt conditionsThatHold( uint32_t events )
{
    // A hang-up is what an orderly close in both directions looks like: reading tells the rest, it is no error.
    return ( events & ( EPOLLIN | EPOLLRDHUP | EPOLLHUP ) ? UNIX_FD_CONDITION_READABLE : 0 )
           | ( events & EPOLLOUT ? UNIX_FD_CONDITION_WRITABLE : 0 )
           | ( events & EPOLLERR ? UNIX_FD_CONDITION_ERROR : 0 );
}

// What an event carries: the descriptor in the low half, its registration's generation in the high one.
uint64_t tag( int fd, uint32_t generation ) { return uint64_t{ generation } << 32 | static_cast<uint32_t>( fd ); }

constexpr uint64_t wakerTag = UINT32_MAX; // no descriptor

} // namespace

// The descriptor through which a signal ends an epoll_wait. An object of its own, since the signal may hold it for
// longer than the observer lives.
PB_SORT_DECLARE( unix___sort_UNIX_FD_WAKER )
struct unixFdWaker final : pb::Object<struct unixFdWaker, unix___sort_UNIX_FD_WAKER> {
    const pb::Fd event{ eventfd( 0, EFD_CLOEXEC | EFD_NONBLOCK ) };

    void wake()
    {
        // Fails only when the counter is full, and then the descriptor is readable already.
        const uint64_t one = 1;
        [[maybe_unused]] const ssize_t written = write( event.get(), &one, sizeof one );
    }
    void drain()
    {
        uint64_t count;
        [[maybe_unused]] const ssize_t got = read( event.get(), &count, sizeof count ); // may be empty already
    }
};
constinit const struct pbSort unix___sort_UNIX_FD_WAKER =
    pb::detail::makeSort<struct unixFdWaker>( pb::detail::sortText( "unix___sort_UNIX_FD_WAKER" ) );

PB_SORT_DECLARE( unix___sort_UNIX_FD_OBSERVER )
struct unixFdObserver final : pb::Object<struct unixFdObserver, unix___sort_UNIX_FD_OBSERVER> {
    ~unixFdObserver() { attach( nullptr ); }

    bool tryOpen();
    bool trySetConditions( int fd, pbInt conditions ) PB_EXCLUDES( monitor_ );
    bool wait( struct pbSignal *abortSignal, pbInt *fd, pbInt *conditions ) PB_EXCLUDES( monitor_ );
    void unblock() PB_EXCLUDES( monitor_ );
    bool pending() const noexcept { return batchNext_ != batchCount_; }
    bool broken() const noexcept { return broken_.load( std::memory_order_relaxed ); }

private:
    struct Entry {
        uint32_t generation = 0;
        uint8_t conditions = 0; // 0: not registered
        bool edge = false;      // see quieten
    };

    void waitForReport() PB_REQUIRES( monitor_ );
    bool remove( int fd ) PB_REQUIRES( monitor_ );
    bool control( int operation, int fd, const Entry &entry ) PB_REQUIRES( monitor_ );
    bool isRegistered( int fd ) const PB_REQUIRES( monitor_ );
    Entry *entryOf( const epoll_event &event ) PB_REQUIRES( monitor_ );
    void quieten( int fd, Entry &entry ) PB_REQUIRES( monitor_ );

    void attach( struct pbSignal *abortSignal );
    bool fetch();
    bool report( pbInt *fd, pbInt *conditions ) PB_EXCLUDES( monitor_ );

    // fixed after tryOpen
    pb::Fd epoll_;
    pb::Ref<struct unixFdWaker> waker_;
    pb::Ref<struct pbSignalable> wakerSignalable_;

    std::atomic<bool> broken_{ false };

    mutable pb::Monitor monitor_{ 90 };
    pb::Condition turn_;
    std::vector<Entry> entries_ PB_GUARDED_BY( monitor_ ); // by descriptor
    uint32_t lastGeneration_ PB_GUARDED_BY( monitor_ ) = 0;
    bool reporting_ PB_GUARDED_BY( monitor_ ) = false;
    pthread_t reporter_ PB_GUARDED_BY( monitor_ ) = {}; // while reporting_
    int settersWaiting_ PB_GUARDED_BY( monitor_ ) = 0;

    // touched by the waiting thread alone
    pb::Ref<struct pbSignal> attached_;
    std::array<epoll_event, 64> batch_;
    int batchNext_ = 0, batchCount_ = 0;
};
PB_OBJECT_DEFINE( unixFdObserver, unix___sort_UNIX_FD_OBSERVER )

bool unixFdObserver::tryOpen()
{
    epoll_ = pb::Fd( epoll_create1( EPOLL_CLOEXEC ) );
    waker_ = pb::make<struct unixFdWaker>();
    if ( !epoll_ || !waker_->event )
        return false;
    wakerSignalable_ = pb::adopt( pb___SignalableCreate(
        []( struct pbObj *target ) { static_cast<struct unixFdWaker *>( target )->wake(); }, waker_.get() ) );
    epoll_event event{ .events = EPOLLIN, .data = { .u64 = wakerTag } };
    return epoll_ctl( epoll_.get(), EPOLL_CTL_ADD, waker_->event.get(), &event ) == 0;
}

// Setting conditions

bool unixFdObserver::trySetConditions( int fd, pbInt conditions )
{
    pb::Guard guard( monitor_ );
    waitForReport();
    if ( !conditions )
        return remove( fd );

    // Not skipped when nothing seems to change: the number may have a new owner since.
    if ( isRegistered( fd ) ) {
        Entry &entry = entries_[fd];
        const Entry changed{ .generation = entry.generation, .conditions = static_cast<uint8_t>( conditions ) };
        if ( control( EPOLL_CTL_MOD, fd, changed ) ) {
            entry = changed;
            return true;
        }
        entry = {}; // closed, and so left by the kernel; a new owner of the number is added below
    }
    const Entry added{ .generation = ++lastGeneration_, .conditions = static_cast<uint8_t>( conditions ) };
    if ( !control( EPOLL_CTL_ADD, fd, added ) )
        return false;
    if ( static_cast<size_t>( fd ) >= entries_.size() )
        entries_.resize( static_cast<size_t>( fd ) + 1 );
    entries_[fd] = added;
    return true;
}

// After this the waiting thread has either not seen the caller's descriptor or has taken hold of what belongs to it.
void unixFdObserver::waitForReport()
{
    if ( !reporting_ )
        return;
    PB_ASSERT_TEXT( !pthread_equal( reporter_, pthread_self() ), "no report of the calling thread is outstanding" );
    pb___WakesFlush();
    ++settersWaiting_;
    while ( reporting_ )
        turn_.wait( monitor_ );
    // report() lets waiting setters go first, else a busy observer could keep them out for ever.
    if ( --settersWaiting_ == 0 )
        turn_.wakeAll();
}

bool unixFdObserver::remove( int fd )
{
    if ( !isRegistered( fd ) )
        return true;
    entries_[fd] = {};
    // The errors: closed before, which removed it. EPERM when the number is a plain file's by now.
    if ( control( EPOLL_CTL_DEL, fd, {} ) || errno == ENOENT || errno == EBADF || errno == EPERM )
        return true;
    broken_.store( true, std::memory_order_relaxed );
    return false;
}

bool unixFdObserver::control( int operation, int fd, const Entry &entry )
{
    epoll_event event{ .events = eventsToWatch( entry.conditions ) | ( entry.edge ? EPOLLET : 0u ),
                       .data = { .u64 = tag( fd, entry.generation ) } };
    return epoll_ctl( epoll_.get(), operation, fd, &event ) == 0;
}

bool unixFdObserver::isRegistered( int fd ) const
{
    return static_cast<size_t>( fd ) < entries_.size() && entries_[fd].conditions;
}

// Waiting

bool unixFdObserver::wait( struct pbSignal *abortSignal, pbInt *fd, pbInt *conditions )
{
    if ( !attached_ || attached_.get() != abortSignal )
        attach( abortSignal );
    for ( ;; ) {
        if ( pbSignalAsserted( abortSignal ) )
            return false;
        if ( report( fd, conditions ) )
            return true;
        if ( !fetch() )
            return false;
    }
}

// Attached once for many waits.
void unixFdObserver::attach( struct pbSignal *abortSignal )
{
    if ( attached_ )
        pbSignalDelSignalable( attached_.get(), wakerSignalable_.get() );
    attached_ = pb::share( abortSignal );
    if ( attached_ )
        pbSignalAddSignalable( abortSignal, wakerSignalable_.get() );
}

// Fetches a new batch. What the last one still held and was not handed out comes again: epoll is level-triggered here.
bool unixFdObserver::fetch()
{
    pb___WakesFlush(); // before the thread sleeps
    const int count = epoll_wait( epoll_.get(), batch_.data(), static_cast<int>( batch_.size() ), -1 );
    batchNext_ = 0;
    batchCount_ = count < 0 ? 0 : count;
    if ( count >= 0 || errno == EINTR )
        return true;
    broken_.store( true, std::memory_order_relaxed );
    return false;
}

// Hands out the next event of the batch that still means anything; false when the batch is used up.
bool unixFdObserver::report( pbInt *fd, pbInt *conditions )
{
    if ( batchNext_ == batchCount_ )
        return false;
    pb::Guard guard( monitor_ );
    PB_ASSERT( !reporting_ );
    if ( settersWaiting_ ) {
        pb___WakesFlush();
        while ( settersWaiting_ )
            turn_.wait( monitor_ );
    }
    while ( batchNext_ != batchCount_ ) {
        const epoll_event &event = batch_[batchNext_++];
        if ( event.data.u64 == wakerTag ) {
            waker_->drain();
            continue;
        }
        Entry *const entry = entryOf( event );
        if ( !entry )
            continue;
        const int ready = static_cast<int>( event.data.u64 & UINT32_MAX );
        const pbInt held = conditionsThatHold( event.events ) & entry->conditions;
        if ( !held ) {
            quieten( ready, *entry );
            continue;
        }
        if ( entry->edge ) {
            entry->edge = false;
            (void)control( EPOLL_CTL_MOD, ready, *entry ); // fails when closed, and then nothing comes any more
        }
        reporting_ = true;
        reporter_ = pthread_self();
        *fd = ready;
        *conditions = held;
        return true;
    }
    return false;
}

// Null for an event of a registration that ended after the event was fetched; the number may have a new owner by now.
unixFdObserver::Entry *unixFdObserver::entryOf( const epoll_event &event )
{
    const uint32_t fd = event.data.u64 & UINT32_MAX;
    const uint32_t generation = event.data.u64 >> 32;
    if ( fd >= entries_.size() || !entries_[fd].conditions || entries_[fd].generation != generation )
        return nullptr;
    return &entries_[fd];
}

// The kernel reports hang-ups and errors whether watched or not, and level-triggered it would do so for ever. Edge-
// triggered the descriptor is silent until something new happens to it, such as data behind an unwatched error.
void unixFdObserver::quieten( int fd, Entry &entry )
{
    if ( entry.edge )
        return;
    entry.edge = true;
    (void)control( EPOLL_CTL_MOD, fd, entry ); // fails when closed, and then nothing comes any more
}

void unixFdObserver::unblock()
{
    bool wake;
    {
        pb::Guard guard( monitor_ );
        PB_ASSERT( reporting_ );
        reporting_ = false;
        wake = settersWaiting_;
    }
    if ( wake )
        turn_.wakeAll();
}

extern "C" {

struct unixFdObserver *unixFdObserverTryCreate( void )
{
    pb::Ref<struct unixFdObserver> observer = pb::make<struct unixFdObserver>();
    return observer->tryOpen() ? observer.release() : nullptr;
}

pbBool unixFdObserverTrySetConditions( struct unixFdObserver *observer, pbInt fd, pbInt conditions )
{
    PB_ASSERT( observer );
    PB_ASSERT( fd >= 0 && fd <= INT32_MAX );
    PB_ASSERT( !( conditions & ~allConditions ) );
    return observer->trySetConditions( static_cast<int>( fd ), conditions );
}

pbBool unixFdObserverWait( struct unixFdObserver *observer, struct pbSignal *abortSignal, pbInt *fd, pbInt *conditions )
{
    PB_ASSERT( observer );
    PB_ASSERT( abortSignal );
    PB_ASSERT( fd );
    PB_ASSERT( conditions );
    return observer->wait( abortSignal, fd, conditions );
}

pbBool unixFdObserverPending( const struct unixFdObserver *observer )
{
    PB_ASSERT( observer );
    return observer->pending();
}

void unixFdObserverUnblock( struct unixFdObserver *observer )
{
    PB_ASSERT( observer );
    observer->unblock();
}

pbBool unixFdObserverError( const struct unixFdObserver *observer )
{
    PB_ASSERT( observer );
    return observer->broken();
}

} // extern "C"
