// Requests that change an interface's addresses: their bytes, and every way in which an answer comes or does not.
#include "in/base/in_address.h"
#include "in/nw/in_nw_interface_imp_rtnetlink.hpp"
#include "pb/pb_string.hpp"
#include "support/trace_catcher.hpp"

#include <climits>
#include <gtest/gtest.h>
#include <linux/rtnetlink.h>

namespace {

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
               ( Bytes{ 32, 0,  0, 0, 20, 0, 0x05, 0x05, 0, 0, 0, 0, 0, 0, 0, 0, // header
                        2,  24, 0, 0, 4,  3, 2,    1,                            // address header
                        8,  0,  2, 0, 10, 1, 2,    3 } ) );                      // IFA_LOCAL
    EXPECT_EQ( bytesOf( message( "fd00::1", 128, RTM_DELADDR, 0 ) ),
               ( Bytes{ 44, 0, 0,  0, 21, 0, 0x05, 0, 0, 0, 0, 0, 0, 0, 0, 0, 10, 128, 0, 0, 4, 3,
                        2,  1, 20, 0, 2,  0, 0xfd, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,  0,   0, 0, 0, 1 } ) );
    const Bytes value( 65'532 );
    for ( const auto &[length, whole] : { std::pair<size_t, uint32_t>( 244, 280 ), { 245, 32 }, { 65'532, 32 } } ) {
        auto full = message( "10.1.2.3", 24, RTM_NEWADDR, 0 );
        EXPECT_EQ( in___NwInterfaceImpRtnetlinkTryAddAttribute( full, 1, value.data(), length ), whole == 280 );
        EXPECT_EQ( full.header.nlmsg_len, whole );
    }
}

// A header of that length and type, a code, and what the kernel adds: the header of the request.
std::string reply( uint32_t length, uint16_t type, int code )
{
    const struct {
        nlmsghdr header;
        int code;
        nlmsghdr request;
    } message{ { length, type, 0, 0, 0 }, code, {} };
    return { reinterpret_cast<const char *>( &message ), sizeof message };
}
std::optional<int> answerIn( const std::string &datagram )
{
    const Bytes bytes( datagram.begin(), datagram.end() ); // ends where its memory ends
    return in::rtnetlinkAnswer( bytes.data(), bytes.size() );
}
const std::string success = reply( 36, NLMSG_ERROR, 0 ), refusal = reply( 36, NLMSG_ERROR, -EPERM ),
                  other = reply( 36, NLMSG_NOOP, 0 );

TEST( Rtnetlink, FirstErrorMessageDecides )
{
    const struct {
        const char *what;
        std::string bytes;
        std::optional<int> answer;
    } rows[] = {
        { "success, the first of two", success + refusal, 0 },
        { "behind another message", other + refusal, EPERM },
        { "behind an unaligned message", reply( 33, NLMSG_NOOP, 0 ) + success, 0 },
        { "no error message", other + other, {} },
        { "shorter than a header", reply( 15, NLMSG_NOOP, 0 ) + success, {} },
        { "beyond the datagram", reply( 37, NLMSG_ERROR, 0 ), {} },
        { "far beyond the datagram", reply( UINT32_MAX, NLMSG_ERROR, 0 ) + success, {} },
        { "without a whole code", reply( 19, NLMSG_ERROR, 0 ), EBADMSG },
        { "a code and no more", reply( 20, NLMSG_ERROR, 0 ), 0 },
        { "a code that is no error", reply( 36, NLMSG_ERROR, 1 ), EBADMSG },
        { "a code that cannot be negated", reply( 36, NLMSG_ERROR, INT_MIN ), EBADMSG },
    };
    for ( const auto &row : rows )
        EXPECT_EQ( answerIn( row.bytes ), row.answer ) << row.what;
    for ( size_t length = 0; length < 72; ++length )
        EXPECT_EQ( answerIn( ( other + refusal ).substr( 0, length ) ), std::nullopt ) << length;
}

// What recvmsg sees in the kernel's place. Behind the last step the socket is asked, on which nothing ever arrives.
struct Step {
    std::string bytes{};
    int flags = 0;
    uint32_t port = 0;
    int error = 0;
};
std::vector<Step> steps;
int failing; // which of the calls before fails, counted from 1

int result( int call, int done )
{
    errno = ENOBUFS;
    return failing == call ? -1 : done;
}
ssize_t receive( int fd, msghdr *message, int flags )
{
    if ( steps.empty() )
        return recvmsg( fd, message, flags );
    const Step now = steps.front();
    if ( now.port != 1 ) // who floods the socket does not stop
        steps.erase( steps.begin() );
    const sockaddr_nl sender{ AF_NETLINK, 0, now.port, 0 };
    memcpy( message->msg_name, &sender, sizeof sender );
    message->msg_flags = now.flags;
    memcpy( message->msg_iov->iov_base, now.bytes.data(), now.bytes.size() );
    errno = now.error;
    return now.error ? -1 : static_cast<ssize_t>( now.bytes.size() );
}

TEST( Rtnetlink, EveryAnswerEnds )
{
    const in::RtnetlinkCalls calls = {
        .socket = []( int, int, int ) { return failing == 1 ? result( 1, 0 ) : socket( AF_UNIX, SOCK_DGRAM, 0 ); },
        .bind = []( int, const sockaddr *, socklen_t length ) { return result( 2, length == 12 ? 0 : -1 ); },
        .sendmsg = []( int, const msghdr *, int ) -> ssize_t { return result( 3, 32 ); },
        .recvmsg = receive,
        .answerMilliseconds = 20,
    };
    const std::string silence = "recvmsg(): Resource temporarily unavailable", full = ": No buffer space available";
    const struct {
        const char *what;
        int failing;
        std::vector<Step> steps;
        std::optional<int> result;
        std::string text;
    } rows[] = {
        { "answered", 0, { { success } }, {}, "" },
        { "refused", 0, { { refusal } }, EPERM, "" },
        { "no socket", 1, {}, ENOBUFS, "socket()" + full },
        { "no port", 2, {}, ENOBUFS, "bind()" + full },
        { "not sent", 3, {}, ENOBUFS, "sendmsg()" + full },
        { "lost", 0, { { {}, 0, 0, ENOBUFS }, { success } }, ENOBUFS, "recvmsg()" + full },
        { "interrupted", 0, { { {}, 0, 0, EINTR }, { success } }, {}, "" },
        { "truncated", 0, { { success, MSG_TRUNC } }, EMSGSIZE, "MSG_TRUNC" },
        { "something else first", 0, { {}, { other }, { "12345" }, { success } }, {}, "" },
        { "others first", 0, { { refusal, 0, 4711 }, { refusal, MSG_TRUNC, 4711 }, { success } }, {}, "" },
        { "nobody", 0, {}, EAGAIN, silence },
        { "nobody but others", 0, { { success, 0, 1 } }, EAGAIN, silence },
    };
    const auto stream = pb::adopt( trStreamCreateCstr( "REQUEST", -1 ) );
    const auto request = message( "10.1.2.3", 24, RTM_NEWADDR, 0 );
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.what );
        support::TraceCatcher catcher;
        failing = row.failing;
        steps = row.steps;
        EXPECT_EQ( in___NwInterfaceImpRtnetlinkTalk( stream.get(), request, calls ), row.result );
        const auto texts = catcher.texts( "REQUEST" );
        EXPECT_EQ( texts.empty() ? "" : texts.front(),
                   row.text.empty() ? "" : "[in___NwInterfaceImpRtnetlinkTalk()] " + row.text );
    }
}

} // namespace
