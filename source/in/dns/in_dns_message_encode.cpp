// There is no encoder: the resolver of the system writes the queries.
#include "in/dns/in_dns_message_decode.h"
#include "pb/pb_assert.hpp"

struct pbBuffer *inDnsMessageEncode( const struct inDnsMessage *msg )
{
    PB_ASSERT( msg );
    PB_ASSERT_TEXT( false, "inDnsMessageEncode() not implemented" );
    return nullptr;
}
