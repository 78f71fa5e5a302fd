// AttachSocket: the listening UNIX socket of a host, there for its owner alone and only while the host lives.
#ifndef INCTL_ATTACH_SOCKET_HPP
#define INCTL_ATTACH_SOCKET_HPP

#include "pb/pb_fd.hpp"

#include <string>
#include <sys/un.h>

namespace inctl {

// What the command line says about it.
struct AttachChoice {
    std::string name;   // "": that of the file
    std::string socket; // "": NAME.sock in the run directory
    bool none = false;  // no socket at all
};

// Throws Failure when the path is longer than the system takes.
sockaddr_un socketAddress( const std::string &path );

class AttachSocket {
  public:
    // Takes the place of a host that is dead; throws Failure when one of that name lives, or the directory is not safe.
    AttachSocket( const AttachChoice &choice, const std::string &file );
    ~AttachSocket();
    AttachSocket( const AttachSocket & ) = delete;
    AttachSocket &operator=( const AttachSocket & ) = delete;

    int descriptor() const { return listening_.get(); } // non-blocking
    const std::string &name() const { return name_; }
    const std::string &path() const { return path_; }

  private:
    pb::Fd takeLock() const;
    pb::Fd listen() const;

    std::string name_;
    std::string path_;
    std::string lockPath_;
    pb::Fd lock_; // held as long as the host lives: the kernel lets go of it however the host ends
    pb::Fd listening_;
};

} // namespace inctl

#endif
