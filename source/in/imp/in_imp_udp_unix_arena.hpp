// The memory into which the UDP I/O thread receives, one datagram or a batch at a time; allocated once. In-tree only.
#ifndef IN_IMP_UDP_UNIX_ARENA_HPP
#define IN_IMP_UDP_UNIX_ARENA_HPP

#include "pb/pb_base.h"

#include <array>
#include <memory>
#include <netinet/in.h>
#include <sys/socket.h>

class in___ImpUdpUnixArena {
public:
    static constexpr size_t slotCount = 64;

    struct Datagram {
        const sockaddr_in6 *source; // of either family
        pbInt sourceLength;
        const void *bytes;
        pbInt byteCount;
    };

    in___ImpUdpUnixArena();

    // The number of datagrams received, at most count and at most slotCount; 0 when none waits or the socket reports an
    // error. Fewer than count means that no more waited.
    size_t receive( int fd, size_t count );
    // Of the last call; valid until the next one.
    Datagram at( size_t index ) const;

private:
    size_t receiveOne( int fd );

    static constexpr size_t slotSize = 65535;
    // An odd number of cache lines, or the first bytes of all slots would compete for the same few places of the cache.
    static constexpr size_t slotStride = 65536 + 3 * 64;

    std::unique_ptr<std::byte[]> bytes_;
    std::array<sockaddr_in6, slotCount> sources_;
    std::array<iovec, slotCount> vectors_;
    std::array<mmsghdr, slotCount> headers_{};
};

#endif
