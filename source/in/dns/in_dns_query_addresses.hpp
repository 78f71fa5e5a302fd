// The choice among the addresses of a name, apart from the query. In-tree only.
#ifndef IN_DNS_QUERY_ADDRESSES_HPP
#define IN_DNS_QUERY_ADDRESSES_HPP

#include "pb/pb_object.hpp"

struct inAddress;
struct pbVector;

namespace in::dns {

// As inDnsQueryAddressesBestAddress says; null for an empty vector.
pb::Ref<struct inAddress> bestAddress( const struct inAddress *optionalStackAddress, const struct pbVector *addresses );

} // namespace in::dns

#endif
