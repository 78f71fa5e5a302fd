// TraceFile: a file that traces are appended to.
#include "inctl/trace_file.hpp"

#include "inctl/exit_code.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>

namespace inctl {
namespace {

constexpr size_t waitingMaximum = 65536;
constexpr int appending = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY;
constexpr mode_t ownersAndGroups = 0640; // traces tell what is sent, and to whom

} // namespace

TraceFile::TraceFile( std::string path, std::function<bool()> idle )
    : path_( std::move( path ) ), idle_( std::move( idle ) ), file_( open( path_.c_str(), appending, ownersAndGroups ) )
{
    if ( !file_ )
        throw Failure{ errno == EACCES || errno == EPERM ? Exit::Permission : Exit::System,
                       fmt::format( "--trace: {}: {}", path_, std::strerror( errno ) ) };
}

void TraceFile::sink_it_( const spdlog::details::log_msg &message )
{
    if ( reopen_ )
        flush_();
    waiting_.append( message.payload.data(), message.payload.size() ).push_back( '\n' );
    if ( waiting_.size() >= waitingMaximum || idle_() )
        write();
}

void TraceFile::flush_()
{
    write();
    if ( !reopen_.exchange( false ) )
        return;
    // Not waiting for the reader of a pipe: there is a file that works.
    if ( pb::Fd now( open( path_.c_str(), appending | O_NONBLOCK, ownersAndGroups ) ); now ) {
        (void)fcntl( now.get(), F_SETFL, O_APPEND ); // and waiting from now on
        file_ = std::move( now );
        torn_ = false;
    }
}

void TraceFile::write()
{
    if ( waiting_.empty() )
        return;
    if ( torn_ )
        waiting_.insert( 0, 1, '\n' ); // so that the line that was cut off does not take the next one with it
    std::string_view left = waiting_;
    while ( !left.empty() ) {
        const ssize_t written = ::write( file_.get(), left.data(), left.size() );
        if ( written > 0 )
            left.remove_prefix( static_cast<size_t>( written ) );
        else if ( errno != EINTR )
            break;
    }
    const std::string_view done = std::string_view( waiting_ ).substr( 0, waiting_.size() - left.size() );
    lostLines_ += static_cast<size_t>( std::count( left.begin(), left.end(), '\n' ) ) -
                  ( torn_ && done.empty() ? 1 : 0 ); // the end that was put in front is no line
    if ( !done.empty() )
        torn_ = done.back() != '\n';
    waiting_.clear();
}

} // namespace inctl
