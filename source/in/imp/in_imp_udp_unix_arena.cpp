// Receiving into the slots of an arena: recvfrom for one datagram, recvmmsg for a batch.
#include "in/imp/in_imp_udp_unix_arena.hpp"

#include <algorithm>

in___ImpUdpUnixArena::in___ImpUdpUnixArena()
    : bytes_( std::make_unique_for_overwrite<std::byte[]>( slotCount * slotStride ) )
{
    for ( size_t index = 0; index < slotCount; ++index ) {
        vectors_[index] = { bytes_.get() + index * slotStride, slotSize };
        headers_[index].msg_hdr.msg_name = &sources_[index];
        headers_[index].msg_hdr.msg_iov = &vectors_[index];
        headers_[index].msg_hdr.msg_iovlen = 1;
    }
}

size_t in___ImpUdpUnixArena::receive( int fd, size_t count )
{
    count = std::min( count, slotCount );
    if ( count == 1 )
        return receiveOne( fd );
    for ( size_t index = 0; index < count; ++index )
        headers_[index].msg_hdr.msg_namelen = sizeof sources_[index];
    const int received = recvmmsg( fd, headers_.data(), static_cast<unsigned int>( count ), 0, nullptr );
    return static_cast<size_t>( std::max( received, 0 ) );
}

// A single datagram costs less this way.
size_t in___ImpUdpUnixArena::receiveOne( int fd )
{
    mmsghdr &header = headers_[0];
    header.msg_hdr.msg_namelen = sizeof sources_[0];
    const ssize_t received = recvfrom( fd, vectors_[0].iov_base, slotSize, 0,
                                       reinterpret_cast<sockaddr *>( &sources_[0] ), &header.msg_hdr.msg_namelen );
    header.msg_len = static_cast<unsigned int>( std::max<ssize_t>( received, 0 ) );
    return received >= 0;
}

in___ImpUdpUnixArena::Datagram in___ImpUdpUnixArena::at( size_t index ) const
{
    const mmsghdr &header = headers_[index];
    return { &sources_[index], header.msg_hdr.msg_namelen, vectors_[index].iov_base, header.msg_len };
}
