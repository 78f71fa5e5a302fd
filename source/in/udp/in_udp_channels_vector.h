// Pairs of UDP channels for RTP and RTCP (RFC 3550, section 11): RTP on an even port, RTCP on the next one.
#ifndef IN_UDP_CHANNELS_VECTOR_H
#define IN_UDP_CHANNELS_VECTOR_H

#include "in/base/in_api.h"
#include "in/filter/in_filter.h"
#include "in/map/in_map_stack.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inQosStack;
struct inStack;
struct pbVector;
struct trAnchor;

// Two inUdpChannel, RTP first; ports from the range of the stack's UDP options, else as the system chooses. Null, and
// the step traced, when the stack has no address or no pair was found within a bounded search. The map stack must be null
// until there are any.
IN_API struct pbVector *inUdpChannelsVectorTryCreateRtp( struct inStack *stack, struct inQosStack *optionalQosStack,
                                                         struct inMapStack *optionalMapStack,
                                                         struct inFilter *optionalFilter, uint64_t flags,
                                                         struct trAnchor *optionalAnchor );

PB_DECLS_END

#endif
