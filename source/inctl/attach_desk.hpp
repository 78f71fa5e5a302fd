// AttachDesk: answers the requests of clients. Used by the thread of the server alone.
#ifndef INCTL_ATTACH_DESK_HPP
#define INCTL_ATTACH_DESK_HPP

#include "inctl/attach_client.hpp"
#include "inctl/configuration.hpp"
#include "inctl/record.hpp"
#include "inctl/run_board.hpp"

#include <string>
#include <vector>

namespace inctl {

class AttachDesk {
  public:
    // Of the host of that name; all of these outlive it.
    AttachDesk( std::string name, const Configuration &configuration, RunBoard &board, AttachTrace &trace );

    // The first line of every connection.
    std::string hello() const;
    // The answer to a line of the client, which it may subscribe.
    std::string answer( AttachClient &client, const std::string &line );
    static std::string error( const std::string &sentence, int exit );

    // What watchers are told of the file: that it was refused, or that it no longer is; "": nothing new since the last
    // call.
    std::string fileEvent();

  private:
    Record perform( AttachClient &client, const struct pbStore *request );
    Record status( const struct pbStore *request ) const;
    Record watch( AttachClient &client, const struct pbStore *request ) const;
    Record trace( AttachClient &client, const struct pbStore *request );
    Record set( const struct pbStore *request ) const;
    pb::Ref<struct csRecord> recordAskedFor( const std::string &name ) const; // refuses where there is none
    Record &tellHost( Record &record ) const;

    const std::string name_;
    const std::string file_; // absolute
    const std::string since_;
    const Configuration &configuration_;
    AttachTrace &trace_;

    RunBoard &board_;
    std::string refusedAt_; // as last told; "": not refused
};

} // namespace inctl

#endif
