// Connected pairs for the observer's tests.
#ifndef UNIX_SOCKETS_HPP
#define UNIX_SOCKETS_HPP

#include "pb/pb_fd.hpp"
#include "pb/pb_object.hpp"
#include "pb/pb_signal.h"
#include "unix/unix_fd_observer.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>

constexpr pbInt readable = UNIX_FD_CONDITION_READABLE, writable = UNIX_FD_CONDITION_WRITABLE,
                error = UNIX_FD_CONDITION_ERROR;

using Observer = pb::Ref<struct unixFdObserver>;
using Signal = pb::Ref<struct pbSignal>;

struct Pair {
    pb::Fd own, peer;

    static Pair sockets()
    {
        int fds[2];
        PB_ASSERT( socketpair( AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, fds ) == 0 );
        return { pb::Fd( fds[0] ), pb::Fd( fds[1] ) };
    }
    static Pair pipeOwningRead()
    {
        int fds[2];
        PB_ASSERT( pipe2( fds, O_CLOEXEC | O_NONBLOCK ) == 0 );
        return { pb::Fd( fds[0] ), pb::Fd( fds[1] ) };
    }
    static Pair pipeOwningWrite()
    {
        Pair pair = pipeOwningRead();
        std::swap( pair.own, pair.peer );
        return pair;
    }
    // UDP sockets on loopback that are connected to each other.
    static Pair udp()
    {
        Pair pair;
        sockaddr_in addresses[2];
        pb::Fd *const fds[2] = { &pair.own, &pair.peer };
        for ( int i = 0; i < 2; ++i ) {
            *fds[i] = pb::Fd( socket( AF_INET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0 ) );
            addresses[i] = { .sin_family = AF_INET, .sin_port = 0, .sin_addr = { htonl( INADDR_LOOPBACK ) }, .sin_zero = {} };
            const auto address = reinterpret_cast<sockaddr *>( &addresses[i] );
            socklen_t length = sizeof addresses[i];
            PB_ASSERT( bind( fds[i]->get(), address, length ) == 0 );
            PB_ASSERT( getsockname( fds[i]->get(), address, &length ) == 0 );
        }
        for ( int i = 0; i < 2; ++i )
            PB_ASSERT( connect( fds[i]->get(), reinterpret_cast<sockaddr *>( &addresses[1 - i] ), sizeof addresses[0] ) == 0 );
        return pair;
    }

    void peerWrites( char byte = 'x' ) { PB_ASSERT( write( peer.get(), &byte, 1 ) == 1 ); }
    // What the own end has to read, or -1.
    int read()
    {
        unsigned char byte;
        return ::read( own.get(), &byte, 1 ) == 1 ? byte : -1;
    }
};

#endif
