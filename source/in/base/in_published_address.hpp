// PublishedAddress: an optional address that one thread at a time sets and any number of threads compare with, without a
// monitor and without waiting for whoever sets it. In-tree only.
#ifndef IN_PUBLISHED_ADDRESS_HPP
#define IN_PUBLISHED_ADDRESS_HPP

#include "in/base/in_address.hpp"

#include <atomic>

namespace in {

class PublishedAddress {
public:
    void set( const struct inAddress *optionalAddress )
    {
        const Words words( optionalAddress );
        const uint64_t next = turn_.load( std::memory_order_relaxed ) + 1;
        for ( size_t i = 0; i < Words::count; ++i )
            slots_[next & 1][i].store( words.at[i], std::memory_order_release );
        turn_.store( next, std::memory_order_release );
    }
    // False while there is none.
    bool equals( const struct inAddress &address ) const
    {
        const Words words( &address );
        for ( ;; ) {
            const uint64_t turn = turn_.load( std::memory_order_acquire );
            bool equal = true;
            for ( size_t i = 0; i < Words::count; ++i )
                equal &= slots_[turn & 1][i].load( std::memory_order_acquire ) == words.at[i];
            // A word of a later turn in this slot was stored after the turn between was, so that it shows here.
            if ( turn_.load( std::memory_order_relaxed ) == turn )
                return equal;
        }
    }

private:
    struct Words {
        static constexpr size_t count = 3;
        uint64_t at[count] = { none, 0, 0 };

        explicit Words( const struct inAddress *optionalAddress )
        {
            if ( !optionalAddress )
                return;
            at[0] = static_cast<uint64_t>( optionalAddress->version );
            memcpy( at + 1, optionalAddress->bytes, sizeof optionalAddress->bytes );
        }
    };
    static constexpr uint64_t none = UINT64_MAX; // no version

    // Written in turns: the slot that is read is never the one being written.
    std::atomic<uint64_t> slots_[2][Words::count] = { { none, 0, 0 }, { none, 0, 0 } };
    std::atomic<uint64_t> turn_{ 0 };
};

} // namespace in

#endif
