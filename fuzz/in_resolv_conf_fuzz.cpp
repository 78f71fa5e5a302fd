// Any bytes as the resolver's configuration: read without a fault, and every address found can be written.
#include "in/base/in_address.h"
#include "in/imp/in_imp_dns_servers_internal.h"
#include "pb/pb_buffer.h"
#include "pb/pb_object.hpp"
#include "pb/pb_string.h"
#include "pb/pb_vector.h"

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *data, size_t size )
{
    const auto text = pb::adopt( pbBufferCreateFromBytes( data, static_cast<pbInt>( size ) ) );
    const auto servers = pb::adopt( in___ImpDnsServersFromResolvConf( text.get() ) );
    for ( pbInt index = 0; index < pbVectorLength( servers.get() ); ++index )
        (void)pb::adopt( pbObjToString( pb::adopt( pbVectorObjAt( servers.get(), index ) ).get() ) );
    return 0;
}
