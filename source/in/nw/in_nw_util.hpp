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

// An address of an interface as the options see it.
struct AddressCandidate {
    pb::Ref<struct inAddress> address;
    size_t interface;                     // index into the snapshots
    std::vector<const char *> excludedBy; // keys of the options that do not admit it
    const char *kind;                     // what its score is for: "loopback", "link-local", "other"
    pbInt score;                          // 0 of one that is excluded; the highest wins, of equals the first
};

// Every unicast address of the host, in the order in which they are looked at. Here it is decided what is chosen.
std::vector<AddressCandidate> examineAddresses( const struct inOptions *options,
                                                const struct inAddress *previousAddress,
                                                const std::vector<InterfaceSnapshot> &snapshots );

// The keys of the options, other than the interface, that do not admit the address.
std::vector<const char *> excludingOptions( const struct inOptions *options, const struct inAddress *address );

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
