// AttachClient: one connection to a host.
#include "inctl/attach_client.hpp"

#include <cerrno>
#include <poll.h>
#include <sys/socket.h>

namespace inctl {
namespace {

// To ask for something, and to ask again.
constexpr std::chrono::seconds silence( 10 );
// Without taking a byte of what is waiting.
constexpr std::chrono::seconds stall( 30 );
constexpr std::chrono::seconds closingStall( 1 );
constexpr size_t mostNotices = 16;

bool isTemporary()
{
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

} // namespace

AttachClient::AttachClient( pb::Fd connection, Clock::time_point now )
    : lastRequest( now ), lastWrite( now ), connection_( std::move( connection ) )
{
}

// Who has not taken what it is told is not asked for more.
short AttachClient::polledEvents() const
{
    if ( hasOutput() )
        return POLLOUT;
    return closing_ || ended_ ? 0 : POLLIN;
}

void AttachClient::note( const std::vector<std::string> &names )
{
    for ( const std::string &name : names )
        if ( watchedObject.empty() || watchedObject == name )
            changed.insert( name );
}

// Who cannot follow hears of the last ones.
void AttachClient::note( const std::string &notice )
{
    if ( notices.size() >= mostNotices )
        notices.pop_front();
    notices.push_back( notice );
}

void AttachClient::read()
{
    char bytes[4096];
    if ( closing_ || ended_ || input_.size() > longestLine )
        return;
    const ssize_t count = recv( connection_.get(), bytes, sizeof bytes, MSG_DONTWAIT );
    if ( count > 0 )
        input_.append( bytes, static_cast<size_t>( count ) );
    ended_ = count == 0 || ( count < 0 && !isTemporary() );
}

bool AttachClient::hasLine() const
{
    return input_.find( '\n' ) <= longestLine;
}

std::optional<std::string> AttachClient::takeLine()
{
    const size_t end = input_.find( '\n' );
    if ( end > longestLine )
        return std::nullopt;
    std::string line = input_.substr( 0, end );
    input_.erase( 0, end + 1 );
    return line;
}

bool AttachClient::write( Clock::time_point now )
{
    if ( output_.empty() ) {
        lastWrite = now; // nothing has been waiting up to now
        return true;
    }
    const ssize_t count = ::send( connection_.get(), output_.data(), output_.size(), MSG_DONTWAIT | MSG_NOSIGNAL );
    if ( count < 0 )
        return isTemporary();
    output_.erase( 0, static_cast<size_t>( count ) );
    if ( count > 0 )
        lastWrite = now;
    return true;
}

bool AttachClient::late( Clock::time_point now ) const
{
    if ( hasOutput() && now - lastWrite > ( closing_ ? closingStall : stall ) )
        return true;
    return !subscribed() && !hasOutput() && now - lastRequest > silence;
}

} // namespace inctl
