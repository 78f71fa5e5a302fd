// HaltMark: counts the objects of a type that are halted and not yet gone, so that what they use is not released before
// them. In-tree only.
#ifndef IN_HALT_MARK_HPP
#define IN_HALT_MARK_HPP

#include <atomic>
#include <cstdint>

namespace in {

// The first member of a T: what it counts for is destroyed before it.
template <class T> class HaltMark {
public:
    HaltMark() = default;
    HaltMark( const HaltMark & ) = delete;
    HaltMark &operator=( const HaltMark & ) = delete;
    ~HaltMark()
    {
        if ( set_ && count.fetch_sub( 1, std::memory_order_acq_rel ) == 1 )
            count.notify_all();
    }
    void set()
    {
        if ( !set_.exchange( true ) )
            count.fetch_add( 1, std::memory_order_relaxed );
    }
    static void waitForNone()
    {
        for ( int64_t current; ( current = count.load( std::memory_order_acquire ) ) != 0; )
            count.wait( current, std::memory_order_acquire );
    }

private:
    static inline std::atomic<int64_t> count;
    std::atomic<bool> set_ = false;
};

} // namespace in

#endif
