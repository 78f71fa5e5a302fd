// AttachServer: lets clients look into a running host and set its conditions, over a UNIX socket; docs/attach.md tells
// the lines. It has a thread of its own, which takes a bounded part of one processor, and keeps bounded queues: clients
// that are slow, hung or hostile cost the host nothing more.
#ifndef INCTL_ATTACH_SERVER_HPP
#define INCTL_ATTACH_SERVER_HPP

#include "inctl/attach_socket.hpp"

#include <memory>
#include <string>

namespace CLI {
class App;
}

namespace inctl {

class Configuration;
class RunBoard;

void addAttachOptions( CLI::App &command, AttachChoice &choice );

class AttachServer {
  public:
    // Of the host that runs the configuration, started or not; all of these outlive it. Throws Failure when there is no
    // safe place for the socket, or another host has it.
    AttachServer( const AttachChoice &choice, const Configuration &configuration, RunBoard &board );
    // Waits for what the thread does right now, never for a client.
    ~AttachServer();
    AttachServer( const AttachServer & ) = delete;
    AttachServer &operator=( const AttachServer & ) = delete;

  private:
    class Thread;
    std::unique_ptr<Thread> thread_; // null: no socket wanted
};

} // namespace inctl

#endif
