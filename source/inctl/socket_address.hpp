// SocketAddress: an address and port in the system's form, for the plain sockets that look at the library from outside.
#ifndef INCTL_SOCKET_ADDRESS_HPP
#define INCTL_SOCKET_ADDRESS_HPP

#include "pb/pb_base.h"
#include "pb/pb_fd.hpp"

#include <sys/socket.h>

struct inAddress;

namespace inctl {

struct SocketAddress {
    sockaddr_storage storage{}; // what is not used is zero, so that equal addresses are equal bytes
    socklen_t length = 0;

    // port 0..65535; 0 lets the system choose
    SocketAddress( const struct inAddress *address, pbInt port );

    bool isV4() const { return storage.ss_family == AF_INET; }
    pbInt port() const;
    const sockaddr *get() const { return reinterpret_cast<const sockaddr *>( &storage ); }
    sockaddr *get() { return reinterpret_cast<sockaddr *>( &storage ); }
};

// A plain UDP socket, closed with its owner; the descriptor is -1 when the system refuses one.
class PlainSocket {
public:
    explicit PlainSocket( const SocketAddress &address );

    int descriptor() const { return descriptor_.get(); }

private:
    pb::Fd descriptor_;
};

} // namespace inctl

#endif
