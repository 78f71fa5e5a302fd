// The rules by which a stack's address and interfaces are chosen, apart from where the interfaces come from.
#ifndef IN_NW_UTIL_HPP
#define IN_NW_UTIL_HPP

#include "pb/pb_object.hpp"

#include <optional>
#include <vector>

struct inAddress;
struct inNwInterfaceState;
struct inOptions;
struct pbString;

namespace in {

// One interface at one moment, in ascending order of the identifiers.
struct InterfaceSnapshot {
    pb::Ref<struct pbString> identifier;
    pb::Ref<struct inNwInterfaceState> state;
};

struct AddressChoice {
    pb::Ref<struct inAddress> address;
    std::vector<size_t> interfaces; // indexes into the snapshots
    std::optional<size_t> primaryInterface;
};

// previousAddress may be null; it wins over other addresses of its class.
AddressChoice chooseAddress( const struct inOptions *options, const struct inAddress *previousAddress,
                             std::optional<size_t> previousPrimaryInterface,
                             const std::vector<InterfaceSnapshot> &snapshots );

} // namespace in

#endif
