// The run directory of hosts.
#include "inctl/run_directory.hpp"

#include "inctl/exit_code.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace inctl {
namespace {

constexpr const char *rootDirectory = "/run/inctl";

[[noreturn]] void refuse( const std::string &sentence )
{
    throw Failure{ errno == EACCES || errno == EPERM || errno == EROFS ? Exit::Permission : Exit::System, sentence };
}

std::string variable( const char *name )
{
    const char *value = std::getenv( name );
    return value ? value : "";
}

bool isNameCharacter( char c )
{
    return ( c >= 'a' && c <= 'z' ) || ( c >= 'A' && c <= 'Z' ) || ( c >= '0' && c <= '9' ) || c == '_' || c == '-' ||
           c == '.';
}

void addSockets( std::vector<HostPlace> &places, const std::filesystem::path &directory, bool andBelow )
{
    std::error_code error; // a directory that cannot be read has no hosts for us
    for ( const auto &entry : std::filesystem::directory_iterator( directory, error ) ) {
        if ( entry.path().extension() == ".sock" &&
             entry.symlink_status( error ).type() == std::filesystem::file_type::socket )
            places.push_back( { entry.path().stem().string(), entry.path().string() } );
        else if ( andBelow && entry.symlink_status( error ).type() == std::filesystem::file_type::directory )
            addSockets( places, entry.path(), false );
    }
}

} // namespace

std::string runDirectory()
{
    // A service manager may list several, separated by colons; the first is meant for such as this.
    if ( const std::string given = variable( "RUNTIME_DIRECTORY" ); !given.empty() )
        return given.substr( 0, given.find( ':' ) );
    if ( geteuid() == 0 )
        return rootDirectory;
    if ( const std::string user = variable( "XDG_RUNTIME_DIR" ); !user.empty() )
        return user + "/inctl";
    return fmt::format( "/tmp/inctl-{}", geteuid() );
}

void requireRunDirectory( const std::string &path )
{
    if ( mkdir( path.c_str(), 0700 ) == 0 ) {
        // Services of other users have directories of their own inside, whoever of them and root was the first.
        if ( path == rootDirectory )
            (void)chmod( path.c_str(), 0755 ); // else they are told that they may not
    }
    else if ( errno != EEXIST )
        refuse( fmt::format( "the run directory {} cannot be made: {}; --socket names another place, --no-socket none",
                             path, std::strerror( errno ) ) );
    struct stat status {};
    if ( lstat( path.c_str(), &status ) != 0 )
        refuse( fmt::format( "the run directory {} cannot be examined: {}", path, std::strerror( errno ) ) );
    errno = 0;
    if ( !S_ISDIR( status.st_mode ) )
        refuse( fmt::format( "the run directory {} is not a directory but {}", path,
                             S_ISLNK( status.st_mode ) ? "a symbolic link" : "something else" ) );
    if ( status.st_uid != geteuid() )
        refuse(
            fmt::format( "the run directory {} belongs to the user {}, not to {}", path, status.st_uid, geteuid() ) );
    // Root's may have been made for the directories of services inside.
    const mode_t tooMuch = geteuid() == 0 ? 0022 : 0077;
    if ( status.st_mode & tooMuch )
        refuse( fmt::format( "the run directory {} is open to others (mode {:04o}, not 0700)", path,
                             status.st_mode & 07777 ) );
}

std::vector<HostPlace> hostPlaces( const std::string &directory )
{
    std::vector<HostPlace> places;
    addSockets( places, directory, true );
    std::sort( places.begin(), places.end(), []( const HostPlace &a, const HostPlace &b ) { return a.name < b.name; } );
    return places;
}

std::string hostName( const std::string &file )
{
    std::string name = std::filesystem::path( file ).stem().string();
    std::replace_if(
        name.begin(), name.end(), []( char c ) { return !isNameCharacter( c ); }, '_' );
    return name;
}

} // namespace inctl
