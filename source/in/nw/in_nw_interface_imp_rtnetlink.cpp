// Requests of rtnetlink(7) that add an address to an interface or delete one, and the kernel's answer.
#include "in/nw/in_nw_interface_imp_rtnetlink.hpp"

#include "in/base/in_address.h"
#include "unix/unix_error.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <linux/rtnetlink.h>
#include <sys/ioctl.h>
#include <time.h>

namespace in {

namespace {

constexpr size_t datagramSize = 2048;

// The code of an NLMSG_ERROR message of that length: 0, or a negated error number. One without a code, or with a code
// that is no error number, is no success either.
int errorOf( const uint8_t *message, size_t length )
{
    int code;
    if ( length < sizeof( nlmsghdr ) + sizeof code )
        return EBADMSG;
    memcpy( &code, message + sizeof( nlmsghdr ), sizeof code );
    return code > 0 || code == INT_MIN ? EBADMSG : -code;
}

pbInt monotonicMicroseconds()
{
    timespec now;
    clock_gettime( CLOCK_MONOTONIC, &now );
    return PB_INT_FROM( now.tv_sec ) * 1'000'000 + now.tv_nsec / 1'000;
}

void traceError( struct trStream *trace, const char *format, int error )
{
    tr::text( trace, format, pb::adopt( unixErrorToString( error ) ) );
}

// Reads datagrams until one of the kernel's holds an answer. Everybody on the host may send to the socket, so the time
// limit is one for all of them.
std::optional<int> receiveAnswer( struct trStream *trace, int socket, const RtnetlinkCalls &calls )
{
    alignas( nlmsghdr ) uint8_t bytes[datagramSize];
    const pbInt deadline = monotonicMicroseconds() + calls.answerMilliseconds * 1'000;
    for ( ;; ) {
        // A zero time-out would wait for ever.
        const pbInt remaining = deadline - monotonicMicroseconds();
        const timeval timeout{ .tv_sec = remaining / 1'000'000, .tv_usec = remaining % 1'000'000 };
        sockaddr_nl sender = {};
        iovec vector{ bytes, sizeof bytes };
        msghdr received = {};
        received.msg_name = &sender;
        received.msg_namelen = sizeof sender;
        received.msg_iov = &vector;
        received.msg_iovlen = 1;
        ssize_t length = -1;
        errno = EAGAIN;
        if ( remaining > 0 && setsockopt( socket, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout ) == 0 )
            length = calls.recvmsg( socket, &received, MSG_WAITALL );
        if ( length < 0 ) {
            const int error = errno;
            if ( error == EINTR )
                continue;
            traceError( trace, "[in___NwInterfaceImpRtnetlinkTalk()] recvmsg(): %~s", error );
            return error;
        }
        if ( received.msg_namelen != sizeof sender || sender.nl_family != AF_NETLINK || sender.nl_pid != 0 )
            continue;
        if ( received.msg_flags & MSG_TRUNC ) {
            tr::text( trace, "[in___NwInterfaceImpRtnetlinkTalk()] MSG_TRUNC" );
            return EMSGSIZE;
        }
        if ( const auto answer = rtnetlinkAnswer( bytes, static_cast<size_t>( length ) ) )
            return *answer ? answer : std::nullopt;
    }
}

} // namespace

std::optional<int> rtnetlinkAnswer( const uint8_t *bytes, size_t length )
{
    nlmsghdr header;
    while ( length >= sizeof header ) {
        memcpy( &header, bytes, sizeof header );
        if ( header.nlmsg_len < sizeof header || header.nlmsg_len > length )
            break;
        if ( header.nlmsg_type == NLMSG_ERROR )
            return errorOf( bytes, header.nlmsg_len );
        const size_t step = std::min( length, size_t{ NLMSG_ALIGN( header.nlmsg_len ) } );
        bytes += step;
        length -= step;
    }
    return std::nullopt;
}

} // namespace in

in::RtnetlinkAddressMessage in___NwInterfaceImpRtnetlinkMessage( const struct inAddress *address, pbInt prefixLength,
                                                                 unsigned interfaceIndex, int messageType,
                                                                 int extraFlags )
{
    in::RtnetlinkAddressMessage message = {};
    message.header.nlmsg_len = offsetof( in::RtnetlinkAddressMessage, attributes );
    message.header.nlmsg_type = static_cast<uint16_t>( messageType );
    message.header.nlmsg_flags = static_cast<uint16_t>( extraFlags | NLM_F_REQUEST | NLM_F_ACK );
    message.address.ifa_family = inAddressIsV4( address ) ? AF_INET : AF_INET6;
    message.address.ifa_prefixlen = static_cast<uint8_t>( prefixLength );
    message.address.ifa_index = interfaceIndex;
    return message;
}

bool in___NwInterfaceImpRtnetlinkTryAddAttribute( in::RtnetlinkAddressMessage &message, int type, const void *bytes,
                                                  size_t length )
{
    const size_t start = NLMSG_ALIGN( message.header.nlmsg_len );
    const size_t attributeLength = sizeof( rtattr ) + length;
    if ( attributeLength > UINT16_MAX || start + RTA_ALIGN( attributeLength ) > sizeof message )
        return false;
    const rtattr attribute{ static_cast<uint16_t>( attributeLength ), static_cast<uint16_t>( type ) };
    uint8_t *const place = message.attributes + ( start - offsetof( in::RtnetlinkAddressMessage, attributes ) );
    memcpy( place, &attribute, sizeof attribute );
    memcpy( place + sizeof attribute, bytes, length );
    message.header.nlmsg_len = static_cast<uint32_t>( start + RTA_ALIGN( attributeLength ) );
    return true;
}

std::optional<int> in___NwInterfaceImpRtnetlinkTalk( struct trStream *trace, const in::RtnetlinkAddressMessage &message,
                                                     const in::RtnetlinkCalls &calls )
{
    PB_ASSERT( message.header.nlmsg_flags & NLM_F_REQUEST );
    PB_ASSERT( message.header.nlmsg_flags & NLM_F_ACK );
    sockaddr_nl kernel = {};
    kernel.nl_family = AF_NETLINK;

    const auto failed = [trace]( const char *format ) {
        const int error = errno;
        in::traceError( trace, format, error );
        return error;
    };
    const pb::Fd socket( calls.socket( AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC, NETLINK_ROUTE ) );
    if ( !socket )
        return failed( "[in___NwInterfaceImpRtnetlinkTalk()] socket(): %~s" );
    // Its own address looks the same: port 0 asks for a free one.
    if ( calls.bind( socket.get(), reinterpret_cast<const sockaddr *>( &kernel ), sizeof kernel ) != 0 )
        return failed( "[in___NwInterfaceImpRtnetlinkTalk()] bind(): %~s" );
    iovec vector{ const_cast<in::RtnetlinkAddressMessage *>( &message ), message.header.nlmsg_len };
    msghdr sent = {};
    sent.msg_name = &kernel;
    sent.msg_namelen = sizeof kernel;
    sent.msg_iov = &vector;
    sent.msg_iovlen = 1;
    if ( calls.sendmsg( socket.get(), &sent, 0 ) < 0 )
        return failed( "[in___NwInterfaceImpRtnetlinkTalk()] sendmsg(): %~s" );
    return in::receiveAnswer( trace, socket.get(), calls );
}

std::optional<int> in___NwInterfaceImpRtnetlinkTryModifyAddress( struct in___NwInterfaceImp *imp,
                                                                 const struct inAddress *addr, pbInt prefixLength,
                                                                 int messageType, int extraFlags )
{
    PB_ASSERT( prefixLength >= 0 && prefixLength <= inAddressLength( addr ) * 8 );
    struct trStream *const trace = imp->trace.get();
    if ( !imp->controlSocket.fd ) {
        tr::text( trace, "[in___NwInterfaceImpRtnetlinkTryModifyAddress()] fixSockfd: null" );
        return imp->controlSocket.error;
    }
    auto request = imp->request();
    if ( !request ) {
        tr::text( trace, "[in___NwInterfaceImpRtnetlinkTryModifyAddress()] fixIfname: invalid" );
        return ENAMETOOLONG;
    }
    if ( ioctl( imp->controlSocket.fd.get(), SIOCGIFINDEX, &*request ) != 0 ) {
        const int error = errno;
        in::traceError( trace, "[in___NwInterfaceImpRtnetlinkTryModifyAddress()] ioctl(): %~s", error );
        return error;
    }
    auto message = in___NwInterfaceImpRtnetlinkMessage(
        addr, prefixLength, static_cast<unsigned>( request->ifr_ifindex ), messageType, extraFlags );
    if ( !in___NwInterfaceImpRtnetlinkTryAddAttribute( message, IFA_LOCAL, inAddressBacking( addr ),
                                                       static_cast<size_t>( inAddressLength( addr ) ) ) ) {
        tr::text( trace, "[in___NwInterfaceImpRtnetlinkTryModifyAddress()] "
                         "in___NwInterfaceImpRtnetlinkTryAddAttribute(): false" );
        return EMSGSIZE;
    }
    return in___NwInterfaceImpRtnetlinkTalk( trace, message );
}
