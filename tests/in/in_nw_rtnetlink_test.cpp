// Requests that change an interface's addresses: their bytes, and every way in which an answer comes or does not.
#include "in/base/in_address.h"
#include "in/nw/in_nw_interface_imp_rtnetlink.hpp"
#include "pb/pb_string.hpp"
#include "support/trace_catcher.hpp"

#include <climits>
#include <gmock/gmock.h>
#include <linux/rtnetlink.h>

namespace {

using testing::ElementsAre;
using Bytes = std::vector<uint8_t>;

in::RtnetlinkAddressMessage message( const char *address, pbInt prefixLength, int type, int flags )
{
    const auto value = pb::adopt( inAddressTryCreateFromCstr( address, -1 ) );
    auto message = in___NwInterfaceImpRtnetlinkMessage( value.get(), prefixLength, 0x01020304, type, flags );
    EXPECT_TRUE( in___NwInterfaceImpRtnetlinkTryAddAttribute( message, IFA_LOCAL, inAddressBacking( value.get() ),
                                                              static_cast<size_t>( inAddressLength( value.get() ) ) ) );
    return message;
}

Bytes bytesOf( const in::RtnetlinkAddressMessage &message )
{
    const auto *bytes = reinterpret_cast<const uint8_t *>( &message );
    return { bytes, bytes + message.header.nlmsg_len };
}

TEST( Rtnetlink, RequestBytes ) // of a little-endian machine
{
    EXPECT_EQ( bytesOf( message( "10.1.2.3", 24, RTM_NEWADDR, NLM_F_REPLACE | NLM_F_CREATE ) ),
               ( Bytes{ 32, 0, 0, 0, 20, 0, 0x05, 0x05, 0, 0, 0, 0, 0, 0, 0, 0, // header
                        2,  24, 0, 0, 4, 3, 2, 1,                              // address header
                        8,  0, 2, 0, 10, 1, 2, 3 } ) );                        // IFA_LOCAL
    EXPECT_EQ( bytesOf( message( "fd00::1", 128, RTM_DELADDR, 0 ) ),
               ( Bytes{ 44, 0,   0, 0, 21,   0, 0x05, 0, 0, 0, 0, 0, 0, 0, 0, 0, 10, 128, 0, 0, 4, 3, 2, 1,
                        20, 0,   2, 0, 0xfd, 0, 0,    0, 0, 0, 0, 0, 0, 0, 0, 0, 0,  0,   0, 1 } ) );
    const Bytes value( 70'000 );
    for ( const size_t length : { 245, 65'531, 65'532, 70'000 } ) {
        auto full = message( "10.1.2.3", 24, RTM_NEWADDR, 0 );
        EXPECT_FALSE( in___NwInterfaceImpRtnetlinkTryAddAttribute( full, 1, value.data(), length ) ) << length;
        EXPECT_EQ( full.header.nlmsg_len, 32u );
    }
    auto full = message( "10.1.2.3", 24, RTM_NEWADDR, 0 );
    EXPECT_TRUE( in___NwInterfaceImpRtnetlinkTryAddAttribute( full, 1, value.data(), 244 ) );
    EXPECT_EQ( full.header.nlmsg_len, sizeof full );
}

// A header of that length and type, a code, and what the kernel adds: the header of the request.
Bytes reply( uint32_t length, uint16_t type, int code )
{
    const nlmsghdr header{ length, type, 0, 0, 0 }, request{};
    Bytes bytes( sizeof header + sizeof code + sizeof request );
    memcpy( bytes.data(), &header, sizeof header );
    memcpy( bytes.data() + sizeof header, &code, sizeof code );
    return bytes;
}
Bytes operator+( Bytes a, const Bytes &b )
{
    a.insert( a.end(), b.begin(), b.end() );
    return a;
}

TEST( Rtnetlink, FirstErrorMessageDecides )
{
    const Bytes success = reply( 36, NLMSG_ERROR, 0 ), refusal = reply( 36, NLMSG_ERROR, -EPERM ),
                other = reply( 36, NLMSG_NOOP, 0 );
    const struct {
        const char *what;
        Bytes bytes;
        std::optional<int> answer;
    } rows[] = {
        { "nothing", {}, {} },
        { "success", success, 0 },
        { "refusal", refusal, EPERM },
        { "the first of two", success + refusal, 0 },
        { "behind another message", other + refusal, EPERM },
        { "behind an unaligned message", reply( 33, NLMSG_NOOP, 0 ) + success, 0 },
        { "no error message", other + other, {} },
        { "shorter than a header", reply( 15, NLMSG_NOOP, 0 ) + success, {} },
        { "length 0", reply( 0, NLMSG_ERROR, 0 ) + success, {} },
        { "beyond the datagram", reply( 37, NLMSG_ERROR, 0 ), {} },
        { "far beyond the datagram", reply( UINT32_MAX, NLMSG_ERROR, 0 ) + success, {} },
        { "without a code", reply( 19, NLMSG_ERROR, 0 ), EBADMSG },
        { "a code and no more", reply( 20, NLMSG_ERROR, 0 ), 0 },
        { "a code that is no error", reply( 36, NLMSG_ERROR, 1 ), EBADMSG },
        { "a code that cannot be negated", reply( 36, NLMSG_ERROR, INT_MIN ), EBADMSG },
    };
    for ( const auto &row : rows )
        EXPECT_EQ( in::rtnetlinkAnswer( row.bytes.data(), row.bytes.size() ), row.answer ) << row.what;
    const Bytes whole = other + refusal;
    for ( size_t length = 0; length < whole.size(); ++length )
        EXPECT_EQ( in::rtnetlinkAnswer( Bytes( whole.begin(), whole.begin() + static_cast<long>( length ) ).data(), length ),
                   std::nullopt )
            << length;
}

// Answers in the kernel's place, one step per call of recvmsg; the last one again and again.
struct Step {
    Bytes bytes{};
    int flags = 0;
    uint32_t port = 0;
    int error = 0;
};
struct Script {
    const char *what;
    int socketError, bindError, sendError;
    std::vector<Step> steps;
    std::optional<int> result;
    std::vector<std::string> texts;
};
const Script *script;
size_t step;

int failWith( int error, int result )
{
    errno = error;
    return error ? -1 : result;
}
ssize_t receive( int, msghdr *message, int flags )
{
    EXPECT_EQ( flags, MSG_WAITALL );
    const Step &now = script->steps.at( std::min( step++, script->steps.size() - 1 ) );
    const sockaddr_nl sender{ AF_NETLINK, 0, now.port, 0 };
    memcpy( message->msg_name, &sender, sizeof sender );
    message->msg_namelen = sizeof sender;
    message->msg_flags = now.flags;
    std::copy( now.bytes.begin(), now.bytes.end(), static_cast<uint8_t *>( message->msg_iov->iov_base ) );
    return failWith( now.error, static_cast<int>( now.bytes.size() ) );
}
constexpr in::RtnetlinkCalls scripted = {
    .socket = []( int, int, int ) {
        const int error = script->socketError;
        return error ? failWith( error, 0 ) : socket( AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0 );
    },
    .bind = []( int, const sockaddr *, socklen_t length ) {
        EXPECT_EQ( length, 12u );
        return failWith( script->bindError, 0 );
    },
    .sendmsg = []( int, const msghdr *message, int ) -> ssize_t {
        EXPECT_EQ( message->msg_iov->iov_len, 32u );
        EXPECT_EQ( static_cast<const sockaddr_nl *>( message->msg_name )->nl_pid, 0u );
        return failWith( script->sendError, 32 );
    },
    .recvmsg = receive,
    .answerMilliseconds = 20,
};

TEST( Rtnetlink, EveryAnswerEnds )
{
    const Bytes success = reply( 36, NLMSG_ERROR, 0 ), refusal = reply( 36, NLMSG_ERROR, -EACCES );
    const std::string talk = "[in___NwInterfaceImpRtnetlinkTalk()] ";
    const Step foreign{ refusal, 0, 4711 }, foreignTruncated{ refusal, MSG_TRUNC, 4711 };
    const Script rows[] = {
        { "answered", 0, 0, 0, { { success } }, {}, {} },
        { "refused", 0, 0, 0, { { refusal } }, EACCES, {} },
        { "no socket", EMFILE, 0, 0, {}, EMFILE, { talk + "socket(): Too many open files" } },
        { "no port", 0, EADDRINUSE, 0, {}, EADDRINUSE, { talk + "bind(): Address already in use" } },
        { "not sent", 0, 0, EPERM, {}, EPERM, { talk + "sendmsg(): Operation not permitted" } },
        { "lost", 0, 0, 0, { { {}, 0, 0, ENOBUFS } }, ENOBUFS, { talk + "recvmsg(): No buffer space available" } },
        { "interrupted", 0, 0, 0, { { {}, 0, 0, EINTR }, { success } }, {}, {} },
        { "truncated", 0, 0, 0, { { success, MSG_TRUNC } }, EMSGSIZE, { talk + "MSG_TRUNC" } },
        { "something else first", 0, 0, 0, { {}, { reply( 36, NLMSG_NOOP, 0 ) }, { Bytes( 5 ) }, { success } }, {}, {} },
        { "others first", 0, 0, 0, { foreign, foreignTruncated, { success } }, {}, {} },
        { "nobody but others", 0, 0, 0, { foreign }, EAGAIN, { talk + "recvmsg(): Resource temporarily unavailable" } },
    };
    const auto stream = pb::adopt( trStreamCreateCstr( "REQUEST", -1 ) );
    for ( const Script &row : rows ) {
        SCOPED_TRACE( row.what );
        support::TraceCatcher catcher;
        script = &row;
        step = 0;
        EXPECT_EQ( in___NwInterfaceImpRtnetlinkTalk( stream.get(), message( "10.1.2.3", 24, RTM_NEWADDR, 0 ), scripted ),
                   row.result );
        EXPECT_EQ( catcher.texts( "REQUEST" ), row.texts );
    }
}

// Real sockets, of a family in which every user may send to every other: a success sent by somebody else is none, and
// the kernel says nothing.
TEST( Rtnetlink, IsNotDeceivedAndDoesNotWaitForEver )
{
    const auto stream = pb::adopt( trStreamCreateCstr( "REQUEST", -1 ) );
    support::TraceCatcher catcher;
    const in::RtnetlinkCalls calls = {
        .socket = []( int domain, int type, int ) { return socket( domain, type, NETLINK_USERSOCK ); },
        .sendmsg = []( int fd, const msghdr *, int ) -> ssize_t {
            sockaddr_nl receiver;
            socklen_t length = sizeof receiver;
            getsockname( fd, reinterpret_cast<sockaddr *>( &receiver ), &length );
            const pb::Fd other( socket( AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC, NETLINK_USERSOCK ) );
            const Bytes success = reply( 36, NLMSG_ERROR, 0 );
            const auto *const to = reinterpret_cast<const sockaddr *>( &receiver );
            EXPECT_EQ( sendto( other.get(), success.data(), success.size(), 0, to, length ), 36 );
            return 32;
        },
        .answerMilliseconds = 50,
    };
    EXPECT_EQ( in___NwInterfaceImpRtnetlinkTalk( stream.get(), message( "10.1.2.3", 24, RTM_NEWADDR, 0 ), calls ),
               EAGAIN );
    EXPECT_THAT( catcher.texts( "REQUEST" ),
                 ElementsAre( "[in___NwInterfaceImpRtnetlinkTalk()] recvmsg(): Resource temporarily unavailable" ) );
}

} // namespace
