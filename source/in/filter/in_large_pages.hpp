// LargePages: an allocator for what is read at random: large pieces come in large pages, where the system has them, so
// that finding the page of an address does not cost more than the address. In-tree only.
#ifndef IN_LARGE_PAGES_HPP
#define IN_LARGE_PAGES_HPP

#include <cstddef>
#include <new>
#include <sys/mman.h>

namespace in {

template <class T> struct LargePages {
    using value_type = T;

    LargePages() = default;
    template <class U> LargePages( const LargePages<U> & ) {}

    T *allocate( size_t count )
    {
        const size_t bytes = count * sizeof( T );
        void *const memory = ::operator new( bytes, alignment( bytes ) );
        if ( bytes >= pageSize )
            (void)madvise( memory, bytes, MADV_HUGEPAGE ); // only a wish
        return static_cast<T *>( memory );
    }
    void deallocate( T *memory, size_t count )
    {
        const size_t bytes = count * sizeof( T );
        ::operator delete( memory, alignment( bytes ) );
    }
    bool operator==( const LargePages & ) const { return true; }

private:
    static constexpr size_t pageSize = size_t{ 2 } << 20;

    static std::align_val_t alignment( size_t bytes )
    {
        return std::align_val_t( bytes >= pageSize ? pageSize : alignof( T ) < 64 ? 64 : alignof( T ) );
    }
};

} // namespace in

#endif
