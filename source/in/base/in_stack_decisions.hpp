// What a stack decides, apart from the object that runs: whether it is up, why it is not, and whom its TCP blacklist
// holds.
#ifndef IN_STACK_DECISIONS_HPP
#define IN_STACK_DECISIONS_HPP

#include "pb/pb_dict.h"
#include "pb/pb_object.hpp"
#include "pb/pb_priority_map.h"

#include <optional>
#include <string>

struct inAddress;
struct inNwInterface;
struct inOptions;
struct inTcpAddress;
struct pbVector;

namespace in {

// At least one inNwInterface of the vector is up.
bool anyInterfaceUp( const struct pbVector *interfaces );

// For a person: why a stack with these options has no address or is down; empty when it has one and is up. The primary
// interface is the configured one where there is one.
std::string stackReason( const struct inOptions *options, const struct inAddress *optionalAddress,
                         const struct inNwInterface *optionalPrimaryInterface, bool up );

// TCP addresses, each until a time of the monotonic clock.
class TcpBlacklist {
public:
    // Moves the expiry of an address that is there already.
    void set( const struct inTcpAddress *address, pbInt expiry );
    bool contains( const struct inTcpAddress *address ) const;
    // Drops what expires at or before now.
    void expire( pbInt now );
    std::optional<pbInt> earliestExpiry() const;

private:
    pb::Ref<struct pbDict> addresses_ = pb::adopt( pbDictCreate() );
    pb::Ref<struct pbPriorityMap> expiries_ = pb::adopt( pbPriorityMapCreate() );
};

} // namespace in

#endif
