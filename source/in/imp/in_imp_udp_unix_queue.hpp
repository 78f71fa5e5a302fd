// The receive queue of a UDP channel: a ring that takes memory when the first packet comes and grows with its use, so
// that thousands of idle channels stay small. In-tree only.
#ifndef IN_IMP_UDP_UNIX_QUEUE_HPP
#define IN_IMP_UDP_UNIX_QUEUE_HPP

#include "pb/pb_object.hpp"

#include <memory>

struct inUdpPacket;

class in___ImpUdpUnixQueue {
public:
    static constexpr size_t limit = 512;

    size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

    // Below the limit only.
    void push( pb::Ref<struct inUdpPacket> packet )
    {
        if ( size_ == capacity_ )
            grow();
        slots_[( first_ + size_++ ) & ( capacity_ - 1 )] = std::move( packet );
    }
    // Not empty only.
    pb::Ref<struct inUdpPacket> pop()
    {
        auto packet = std::move( slots_[first_] );
        first_ = ( first_ + 1 ) & ( capacity_ - 1 );
        --size_;
        return packet;
    }

private:
    void grow()
    {
        const uint32_t capacity = capacity_ ? 2 * capacity_ : 8; // a power of two throughout
        auto slots = std::make_unique<pb::Ref<struct inUdpPacket>[]>( capacity );
        for ( uint32_t index = 0; index < size_; ++index )
            slots[index] = std::move( slots_[( first_ + index ) & ( capacity_ - 1 )] );
        slots_ = std::move( slots );
        capacity_ = capacity;
        first_ = 0;
    }

    std::unique_ptr<pb::Ref<struct inUdpPacket>[]> slots_;
    uint32_t capacity_ = 0;
    uint32_t first_ = 0;
    uint32_t size_ = 0;
};

#endif
