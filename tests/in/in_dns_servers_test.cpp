// The reader of the resolver's configuration.
#include "in/base/in_address.h"
#include "in/imp/in_imp_dns_servers_internal.h"
#include "pb/pb_buffer.h"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"

#include <gmock/gmock.h>

namespace {

std::vector<std::string> servers( const std::string &text )
{
    const auto buffer = pb::adopt( pbBufferCreateFromBytes( text.data(), static_cast<pbInt>( text.size() ) ) );
    const auto vector = pb::adopt( in___ImpDnsServersFromResolvConf( buffer.get() ) );
    std::vector<std::string> found;
    for ( pbInt index = 0; index < pbVectorLength( vector.get() ); ++index ) {
        const auto server = pb::adopt( inAddressFrom( pbVectorObjAt( vector.get(), index ) ) );
        found.push_back( pb::utf8( pb::adopt( inAddressToString( server.get() ) ) ) );
    }
    return found;
}

TEST( DnsServers, FromResolvConf )
{
    const struct {
        std::string text;
        std::vector<std::string> expected;
    } rows[] = {
        { "", {} },
        // In the order of addresses.
        { "# made by hand\nsearch example.org\nnameserver 10.0.0.2\nnameserver ::1\nnameserver 10.0.0.1\n",
          { "10.0.0.1", "10.0.0.2", "::1" } },
        // Once, also without LF.
        { "nameserver 10.0.0.1\nnameserver 010.0.0.1", { "10.0.0.1" } },
        // Any blanks or none behind the word, nothing before it, nothing behind the address.
        { "nameserver10.0.0.1\nnameserver\t \t10.0.0.2 \r\n", { "10.0.0.1", "10.0.0.2" } },
        { " nameserver 10.0.0.1\nNameserver 10.0.0.2\n#nameserver 10.0.0.3\n", {} },
        { "nameserver 10.0.0.1 # first\nnameserver\nnameserver fe80::1%eth0\nnameserver x\n", {} },
        // Bytes of another charset.
        { "# caf\xe9\nnameserver 10.0.0.1\n", { "10.0.0.1" } },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.text );
        EXPECT_EQ( servers( row.text ), row.expected );
    }
    EXPECT_TRUE( pb::adopt( in___ImpSystemEnumerateDnsServers() ) ); // the host's own, whatever they are
}

} // namespace
