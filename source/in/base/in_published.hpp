// Published: an immutable object that one thread at a time replaces and any number of threads read. Readers take no lock,
// write nothing that they share and never wait; who has replaced the object waits until the last of them has left it.
// In-tree only.
//
// Each thread has a mark of its own, in which it says what it reads (a hazard pointer). The mark is set before it is
// seen that the object is still the current one; who has replaced it looks at the marks afterwards. So that either the
// reader sees the new object or its mark is seen, a barrier must stand between the two on each side. Readers leave
// theirs out: who replaces has the kernel issue one in every thread (membarrier(2)), since objects are read far more
// often than they are replaced. Where the kernel refuses that, readers issue their own: from the start, or, when a system
// call filter comes later, for what is published after that is known. Whoever reads an object has acquired it, and so
// knows at least what was known when it was published.
#ifndef IN_PUBLISHED_HPP
#define IN_PUBLISHED_HPP

#include <atomic>
#include <memory>
#include <utility>

namespace in {

struct alignas( 64 ) ReadMark { // of its own cache line: only its thread writes it
    std::atomic<const void *> object{ nullptr };
    std::atomic<bool> owned{ true };
    ReadMark *next = nullptr;

    // The calling thread's, for as long as it lives.
    static ReadMark &ofThread()
    {
        ReadMark *mark = current;
        return mark ? *mark : create();
    }
    // Blocks until no thread reads the object, which none can begin any more. False when that cannot be known: the
    // kernel has taken back what it promised when the object was published.
    [[nodiscard]] static bool tryWaitUntilUnread( const void *object, bool readersFence );
    // Whether all who read what is published from now on fence for themselves.
    static bool readersFence() { return !othersFence.load( std::memory_order_relaxed ); }
    // Before the first object is published. Asks the kernel.
    static void prepare();
    // Between setting the mark and looking again.
    static void fence()
    {
        if ( othersFence.load( std::memory_order_relaxed ) ) [[likely]]
            std::atomic_signal_fence( std::memory_order_seq_cst );
        else
            std::atomic_thread_fence( std::memory_order_seq_cst );
    }

private:
    static std::atomic<bool> othersFence; // who replaces an object fences for its readers; true from the start or never
    friend class ReadMarkOwner;
    static ReadMark &create();
    // Initial-exec reaches it without a call.
    __attribute__( ( tls_model( "initial-exec" ) ) ) static constinit thread_local ReadMark *current;
};

template <class T> class Published {
public:
    // What was replaced. Its end waits for its readers, who are about to leave.
    class Replaced {
    public:
        Replaced() = default;
        Replaced( const T *object, bool readersFence ) : object_( object ), readersFence_( readersFence ) {}
        Replaced( Replaced &&other ) noexcept { *this = std::move( other ); }
        Replaced &operator=( Replaced &&other ) noexcept
        {
            std::swap( object_, other.object_ );
            std::swap( readersFence_, other.readersFence_ );
            return *this;
        }
        ~Replaced()
        {
            if ( object_ && ReadMark::tryWaitUntilUnread( object_, readersFence_ ) )
                delete object_;
        }

    private:
        const T *object_ = nullptr;
        bool readersFence_ = false;
    };

    explicit Published( std::unique_ptr<const T> first ) : current_( first.release() )
    {
        ReadMark::prepare();
        readersFence_ = ReadMark::readersFence();
    }
    Published( const Published & ) = delete;
    Published &operator=( const Published & ) = delete;
    ~Published() { delete current_.load( std::memory_order_relaxed ); } // nobody reads any more

    // The work gets the current object for as long as it runs. It neither blocks nor reads anything published itself.
    template <class Work> auto read( Work work ) const
    {
        ReadMark &mark = ReadMark::ofThread();
        const T *object = current_.load( std::memory_order_acquire );
        for ( ;; ) {
            // Release: whoever sees this mark in place of an earlier one deletes what was read then.
            mark.object.store( object, std::memory_order_release );
            ReadMark::fence();
            const T *const now = current_.load( std::memory_order_acquire );
            if ( now == object )
                break;
            object = now;
        }
        const auto result = work( *object );
        mark.object.store( nullptr, std::memory_order_release );
        return result;
    }
    [[nodiscard]] Replaced replace( std::unique_ptr<const T> next )
    {
        const bool before = std::exchange( readersFence_, ReadMark::readersFence() );
        return Replaced( current_.exchange( next.release(), std::memory_order_seq_cst ), before );
    }

private:
    std::atomic<const T *> current_; // never null
    bool readersFence_;              // those of the current object; for who replaces it
};

} // namespace in

#endif
