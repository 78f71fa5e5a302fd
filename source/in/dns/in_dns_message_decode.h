// Reading DNS messages in their wire format (RFC 1035, 4.1). Writing is not supported.
#ifndef IN_DNS_MESSAGE_DECODE_H
#define IN_DNS_MESSAGE_DECODE_H

#include "in/base/in_api.h"
#include "pb/pb_base.h"

PB_DECLS_BEGIN

struct inDnsMessage;
struct pbBuffer;

// Null unless every record that the header counts is well-formed and every name in them is a valid domain name; bytes
// behind the last record are ignored. Names come out in Unicode. The length of a name is not limited, and neither is
// looked at what a message says: a name longer than 1,024 code points becomes text each time that it is asked for.
IN_API struct inDnsMessage *inDnsMessageTryDecode( const struct pbBuffer *buffer );

// Always ends the process: there is no encoder.
IN_API struct pbBuffer *inDnsMessageEncode( const struct inDnsMessage *msg );

PB_DECLS_END

#endif
