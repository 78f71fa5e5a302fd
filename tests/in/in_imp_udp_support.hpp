// The UDP backend for a test, channels that end with their scope, plain sockets as peers. Every case binds on a
// loopback address of its own, where all ports are free.
#ifndef IN_IMP_UDP_SUPPORT_HPP
#define IN_IMP_UDP_SUPPORT_HPP

#include "in/base/in_address.h"
#include "in/imp/in_imp_sockaddr_unix_internal.h"
#include "in/imp/in_imp_udp_internal.h"
#include "in/udp/in_udp_address.h"
#include "in/udp/in_udp_packet.h"
#include "in/udp/in_udp_port_range.h"
#include "pb/pb_alertable.h"
#include "pb/pb_barrier.h"
#include "pb/pb_buffer.h"
#include "pb/pb_fd.hpp"
#include "pb/pb_string.hpp"

#include <dirent.h>
#include <netinet/in.h>
#include <string>
#include <sys/resource.h>
#include <sys/socket.h>

namespace support {

struct UdpBackend {
    UdpBackend()
    {
        in___ImpUdpStartup();
        in___ImpUdpChannelStartup();
    }
    ~UdpBackend()
    {
        in___ImpUdpChannelShutdown();
        in___ImpUdpShutdown();
    }
};

inline pb::Ref<struct inAddress> address( const std::string &text )
{
    return pb::adopt( inAddressTryCreateFromCstr( text.c_str(), -1 ) );
}

// An identifier that is destroyed with its scope.
class UdpChannel {
public:
    explicit UdpChannel( pbInt chan = IN___IMP_UDP_CHANNEL_INVALID ) : chan_( chan ) {}
    UdpChannel( const std::string &ip, pbInt port, pbInt firstPort = 0, pbInt count = -1, uint64_t flags = 0 )
    {
        const auto range = count < 0 ? nullptr : pb::adopt( inUdpPortRangeCreate( firstPort, count ) );
        chan_ = in___ImpUdpChannelTryCreate( address( ip ).get(), port, range.get(), flags, nullptr, nullptr );
    }
    UdpChannel( UdpChannel &&other ) noexcept : chan_( std::exchange( other.chan_, IN___IMP_UDP_CHANNEL_INVALID ) ) {}
    UdpChannel &operator=( UdpChannel &&other ) noexcept
    {
        std::swap( chan_, other.chan_ );
        return *this;
    }
    ~UdpChannel()
    {
        if ( *this )
            in___ImpUdpChannelDestroy( chan_ );
    }

    explicit operator bool() const { return IN___IMP_UDP_CHANNEL_OK( chan_ ); }
    pbInt get() const { return chan_; }
    pb::Ref<struct inUdpAddress> local() const { return pb::adopt( in___ImpUdpChannelLocalAddress( chan_ ) ); }
    pbInt port() const { return inUdpAddressPort( local().get() ); }
    void send( const struct inUdpAddress *remote, const std::string &text ) const
    {
        in___ImpUdpChannelSendBytes( chan_, remote, text.data(), static_cast<pbInt>( text.size() ) );
    }
    pb::Ref<struct inUdpPacket> receive() const { return pb::adopt( in___ImpUdpChannelReceive( chan_ ) ); }
    // Waits for the alert.
    pb::Ref<struct inUdpPacket> await() const
    {
        for ( ;; ) {
            if ( auto packet = receive() )
                return packet;
            const auto barrier = pb::adopt( pbBarrierCreate( 1 ) );
            const auto alertable = pb::adopt( pbAlertableCreateBarrier( barrier.get() ) );
            in___ImpUdpChannelReceiveAddAlertable( chan_, alertable.get() );
            pbBarrierPass( barrier.get() );
            in___ImpUdpChannelReceiveDelAlertable( chan_, alertable.get() );
        }
    }

private:
    pbInt chan_;
};

inline std::string payload( const struct inUdpPacket *packet )
{
    const auto buffer = pb::adopt( inUdpPacketPayload( packet ) );
    return { reinterpret_cast<const char *>( pbBufferBacking( buffer.get() ) ),
             static_cast<size_t>( pbBufferLength( buffer.get() ) ) };
}
inline std::string payload( const pb::Ref<struct inUdpPacket> &packet ) { return payload( packet.get() ); }

// A socket outside the library.
class PlainSocket {
public:
    explicit PlainSocket( const std::string &ip, pbInt port = 0 )
    {
        const auto local = address( ip );
        sockaddr_storage storage;
        pbInt length;
        in___ImpSockaddrFromAddressAndPort( &storage, &length, local.get(), port );
        fd_ = pb::Fd( socket( storage.ss_family, SOCK_DGRAM | SOCK_CLOEXEC, 0 ) );
        if ( bind( fd_.get(), reinterpret_cast<sockaddr *>( &storage ), static_cast<socklen_t>( length ) ) != 0 )
            fd_.reset();
    }
    int fd() const { return fd_.get(); }
    bool send( const struct inUdpAddress *remote, const std::string &text, int count = 1 ) const
    {
        sockaddr_storage storage;
        pbInt length;
        in___ImpSockaddrFromUdpAddress( &storage, &length, remote );
        while ( count-- > 0 )
            if ( sendto( fd_.get(), text.data(), text.size(), 0, reinterpret_cast<sockaddr *>( &storage ),
                         static_cast<socklen_t>( length ) )
                 < 0 )
                return false;
        return true;
    }

private:
    pb::Fd fd_;
};

inline int descriptorCount()
{
    int count = 0;
    DIR *directory = opendir( "/proc/self/fd" );
    while ( readdir( directory ) )
        ++count;
    closedir( directory );
    return count;
}

// The soft limit of descriptors, put back with the scope.
class DescriptorLimit {
public:
    DescriptorLimit() { getrlimit( RLIMIT_NOFILE, &before_ ); }
    ~DescriptorLimit() { setrlimit( RLIMIT_NOFILE, &before_ ); }
    rlim_t hard() const { return before_.rlim_max; }
    void set( rlim_t soft ) const
    {
        const rlimit limit{ soft, before_.rlim_max };
        setrlimit( RLIMIT_NOFILE, &limit );
    }

private:
    rlimit before_;
};

} // namespace support

#endif
