// Connected descriptors for the observer's tests.
#ifndef UNIX_SOCKETS_HPP
#define UNIX_SOCKETS_HPP

#include "pb/pb_fd.hpp"
#include "pb/pb_object.hpp"
#include "pb/pb_signal.h"
#include "unix/unix_fd_observer.h"

#include <fcntl.h>
#include <sys/socket.h>

constexpr pbInt readable = UNIX_FD_CONDITION_READABLE, writable = UNIX_FD_CONDITION_WRITABLE,
                error = UNIX_FD_CONDITION_ERROR;

using Observer = pb::Ref<struct unixFdObserver>;
using Signal = pb::Ref<struct pbSignal>;

struct Pair {
    enum Kind { sockets, readingPipe, writingPipe };
    pb::Fd own, peer;

    explicit Pair( Kind kind = sockets )
    {
        int fds[2];
        PB_ASSERT( ( kind == sockets ? socketpair( AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, fds )
                                     : pipe2( fds, O_CLOEXEC | O_NONBLOCK ) ) == 0 );
        own = pb::Fd( fds[kind == writingPipe] );
        peer = pb::Fd( fds[kind != writingPipe] );
    }
    void peerWrites() const { PB_ASSERT( write( peer.get(), "x", 1 ) == 1 ); }
    bool tryRead() const
    {
        char byte;
        return read( own.get(), &byte, 1 ) == 1;
    }
};

#endif
