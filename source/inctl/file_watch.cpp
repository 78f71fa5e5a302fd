// FileWatch: inotify(7) on every directory that leads to the file, links included, and on the file.
#include "inctl/file_watch.hpp"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <filesystem>
#include <fmt/format.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace inctl {
namespace {

using std::chrono::milliseconds;

// After a change that looks whole (a rename, a close), after one that looks like a part (a write, a removal), and for
// all that never comes to rest.
constexpr milliseconds wholePause{ 50 }, partPause{ 1000 }, longestPause{ 5000 };

constexpr int linksMaximum = 40; // as the kernel's

constexpr uint32_t directoryMask = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_ONLYDIR;
// The file itself too: it may be written by another name of it, as through a bind mount.
constexpr uint32_t fileMask = IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB;
constexpr uint32_t wholeMask = IN_CLOSE_WRITE | IN_MOVED_TO | IN_ATTRIB;

std::string linkTarget( const std::string &path )
{
    std::string target( PATH_MAX, '\0' );
    const ssize_t length = readlink( path.c_str(), target.data(), target.size() );
    target.resize( length > 0 ? static_cast<size_t>( length ) : 0 );
    return target;
}

bool isRegular( const std::string &path )
{
    struct stat status;
    return lstat( path.c_str(), &status ) == 0 && S_ISREG( status.st_mode );
}

} // namespace

// Each name is looked up after its directory is watched: what changes behind the walk is an event.
struct FileWatch::Walk {
    int inotify;
    std::map<int, std::set<std::string>> watches;
    std::deque<std::string> pending; // components
    std::string directory = "/";     // without links
    int links = 0;
    int error = 0; // of the last directory, where changes are to be expected

    void follow( const std::string &path )
    {
        push( path );
        while ( !pending.empty() )
            if ( !step() )
                return;
    }

private:
    void push( const std::string &path )
    {
        std::deque<std::string> components;
        for ( const auto &component : std::filesystem::path( path ) )
            components.push_back( component.string() );
        pending.insert( pending.begin(), components.begin(), components.end() );
        if ( path.starts_with( '/' ) )
            directory = "/";
    }

    // False at the end of what there is.
    bool step()
    {
        const std::string name = std::move( pending.front() );
        pending.pop_front();
        if ( name.empty() || name == "/" || name == "." )
            return true;
        if ( name == ".." ) {
            directory = std::filesystem::path( directory ).parent_path().string();
            return true;
        }
        const bool last = pending.empty();
        add( directory, directoryMask | ( last ? IN_CLOSE_WRITE : 0u ), name );
        const std::string path = directory == "/" ? "/" + name : directory + "/" + name;
        if ( const std::string target = linkTarget( path ); !target.empty() ) {
            push( target );
            return ++links <= linksMaximum;
        }
        if ( last && isRegular( path ) )
            add( path, fileMask, "" );
        directory = path;
        return true;
    }

    void add( const std::string &path, uint32_t mask, const std::string &name )
    {
        const int watch = inotify_add_watch( inotify, path.c_str(), mask | IN_DONT_FOLLOW | IN_MASK_ADD );
        if ( watch < 0 ) {
            if ( errno != ENOENT && errno != ENOTDIR )
                error = errno;
            return;
        }
        std::set<std::string> &names = watches[watch];
        if ( !name.empty() )
            names.insert( name );
        error = 0;
    }
};

FileWatch::FileWatch( const std::string &path )
{
    std::error_code unknown;
    path_ = std::filesystem::absolute( path, unknown ).string();
    inotify_.reset( inotify_init1( IN_CLOEXEC | IN_NONBLOCK ) );
    if ( !inotify_ )
        problem_ = fmt::format( "inotify_init1(): {}", std::strerror( errno ) );
    renew();
}

void FileWatch::renew()
{
    first_.reset();
    settled_.reset();
    if ( !inotify_ )
        return;
    Walk walk{ .inotify = inotify_.get() };
    walk.follow( path_ );
    for ( const auto &[watch, names] : watches_ )
        if ( !walk.watches.contains( watch ) )
            (void)inotify_rm_watch( inotify_.get(), watch ); // it may be gone already
    watches_ = std::move( walk.watches );
    problem_ = walk.error != 0 ? fmt::format( "inotify_add_watch(): {}", std::strerror( walk.error ) ) : "";
}

void FileWatch::take()
{
    alignas( inotify_event ) char buffer[16384];
    for ( ssize_t length; ( length = read( inotify_.get(), buffer, sizeof buffer ) ) > 0; )
        for ( ssize_t at = 0; at < length; ) {
            const auto *event = reinterpret_cast<const inotify_event *>( buffer + at ); // the kernel aligns them
            note( *event );
            at += static_cast<ssize_t>( sizeof *event + event->len );
        }
}

void FileWatch::note( const struct inotify_event &event )
{
    if ( event.mask & IN_Q_OVERFLOW )
        return settleBy( wholePause ); // whatever it was
    const auto watch = watches_.find( event.wd );
    if ( watch == watches_.end() )
        return;
    const std::set<std::string> &names = watch->second;
    const bool isFile = names.empty();
    const bool gone = event.mask & IN_IGNORED; // with what it watched
    // That a file is gone is told by its directory, as a part of the change or as all of it.
    if ( event.len > 0 ? names.contains( event.name ) : !( gone && isFile ) )
        settleBy( event.mask & wholeMask ? wholePause : partPause );
    if ( gone )
        watches_.erase( watch ); // the kernel may give the number again
}

// The last event decides: a write after a close is the beginning of another change.
void FileWatch::settleBy( milliseconds time )
{
    const auto now = Clock::now();
    first_ = first_.value_or( now );
    settled_ = std::min( now + time, *first_ + longestPause );
}

} // namespace inctl
