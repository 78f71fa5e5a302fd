// Saving: what changes in the text, and that the file is whole whatever happens. IN_SOAK kills a saving process 1,000
// times instead of 12.
#include "cs/cs_json_patch_internal.h"
#include "cs/live.hpp"
#include "cs/tables.hpp"
#include "pb/pb_fd.hpp"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <random>
#include <sched.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>

using namespace test;
using testing::HasSubstr;
using testing::IsEmpty;
namespace fs = std::filesystem;

namespace {

std::string read( const fs::path &path )
{
    std::ifstream file( path );
    return { std::istreambuf_iterator<char>( file ), {} };
}
void write( const fs::path &path, std::string_view text )
{
    std::ofstream( path ) << text;
}

class CsSave : public testing::Test {
protected:
    CsSave()
    {
        std::string name = testing::TempDir() + "cs_save_test.XXXXXX";
        directory = ::mkdtemp( name.data() );
        path = directory / "in.json";
        write( path, Written );
        fs::permissions( path, fs::perms( 0640 ) );
    }
    ~CsSave()
    {
        fs::permissions( directory, fs::perms( 0755 ) );
        fs::remove_all( directory );
    }

    Configuration loaded() const
    {
        struct pbVector *problems = nullptr;
        auto configuration = pb::adopt( csConfigurationTryLoad( pb::string( path.string() ).get(), &problems ) );
        EXPECT_THAT( texts( problems ), IsEmpty() );
        if ( configuration )
            csConfigurationStart( configuration.get() );
        return configuration;
    }
    static void flip( const Configuration &configuration, bool value )
    {
        csConditionSetValue( condition( configuration, "active" ).get(), value );
    }
    // Empty, or why not.
    static std::string save( const Configuration &configuration, const fs::path &where )
    {
        struct pbString *problem = nullptr;
        const bool saved = csConfigurationTrySave( configuration.get(), pb::string( where.string() ).get(), &problem );
        const auto owned = pb::adopt( problem );
        EXPECT_EQ( saved, !owned );
        return saved ? "" : pb::utf8( owned );
    }
    std::vector<std::string> names() const
    {
        std::vector<std::string> names;
        for ( const auto &entry : fs::directory_iterator( directory ) )
            names.push_back( entry.path().filename() );
        std::sort( names.begin(), names.end() );
        return names;
    }
    // In another process: what it sets for itself ends with it. Its text, or "killed".
    static std::string inChild( const std::function<std::string()> &body )
    {
        int ends[2];
        EXPECT_EQ( ::pipe2( ends, O_CLOEXEC ), 0 );
        const pb::Fd in( ends[0] );
        pb::Fd out( ends[1] );
        const pid_t child = ::fork();
        if ( child == 0 ) {
            const std::string text = body();
            ::_exit( ::write( out.get(), text.data(), text.size() ) == static_cast<ssize_t>( text.size() ) ? 0 : 1 );
        }
        out.reset();
        std::string text;
        char block[4096];
        for ( ssize_t count; ( count = ::read( in.get(), block, sizeof block ) ) > 0; )
            text.append( block, static_cast<size_t>( count ) );
        int status = 0;
        ::waitpid( child, &status, 0 );
        return WIFEXITED( status ) ? text : "killed";
    }
    static struct stat statusOf( const fs::path &where )
    {
        struct stat status = {};
        EXPECT_EQ( ::stat( where.c_str(), &status ), 0 );
        return status;
    }

    const Modules modules;
    const std::vector<std::string> texts_ = rowsOf( "saved.txt" ).at( 0 );
    const std::string Written = texts_.at( 1 ) + "\n", Edited = texts_.at( 2 ) + "\n";
    fs::path directory, path;
};

// The text, what it is to say, the text then.
TEST_F( CsSave, ReplacesOnlyWhatDiffersInTheText )
{
    for ( const auto &row : rowsOf( "edits.txt" ) ) {
        SCOPED_TRACE( row[0] );
        const auto wanted = cs::storeFromJsonText( row.at( 2 ) );
        ASSERT_TRUE( wanted );
        EXPECT_EQ( cs::editedText( row.at( 1 ), cs::jsonEdits( row.at( 1 ), wanted ) ), row.at( 3 ) );
        EXPECT_EQ( cs::storeFromJsonText( row.at( 3 ) ), wanted );
    }
}

TEST_F( CsSave, ThePersonsTextStaysButForWhatChanged )
{
    fs::create_symlink( "in.json", directory / "link" );
    const Configuration configuration = loaded();
    EXPECT_EQ( save( configuration, path ), "" );
    EXPECT_EQ( read( path ), Written ); // no object changed

    flip( configuration, false );
    EXPECT_EQ( save( configuration, directory / "link" ), "" );
    EXPECT_TRUE( fs::is_symlink( directory / "link" ) );
    EXPECT_EQ( read( path ), Edited );
    EXPECT_EQ( statusOf( path ).st_mode & 07777, 0640u );

    const ino_t inode = statusOf( path ).st_ino;
    EXPECT_EQ( save( configuration, path ), "" );
    EXPECT_EQ( statusOf( path ).st_ino, inode ); // nothing was written
    struct pbVector *problems = nullptr;
    testPhone::events.clear();
    EXPECT_TRUE(
        csConfigurationTryReload( configuration.get(), pb::string( path.string() ).get(), &problems, nullptr ) );
    pbVectorRelease( problems );
    EXPECT_THAT( testPhone::events, IsEmpty() ); // the own save changes nothing

    write( path, "{ // being edited" );
    flip( configuration, true );
    EXPECT_THAT( save( configuration, path ), HasSubstr( "in.json: not saved: it was changed since it was read" ) );
    EXPECT_EQ( read( path ), "{ // being edited" );

    const fs::path other = directory / "state.json";
    EXPECT_EQ( save( configuration, other ), "" );
    EXPECT_EQ( statusOf( other ).st_mode & 07777, 0600u );
    EXPECT_THAT( read( other ), HasSubstr( "\"info\": {\n        \"phones\": 2" ) );
    const ino_t otherInode = statusOf( other ).st_ino;
    EXPECT_EQ( save( configuration, other ), "" );
    EXPECT_EQ( statusOf( other ).st_ino, otherInode );
}

TEST_F( CsSave, RecordsNamedByNumbersAreReadAgain )
{
    write( path, R"({"objects": {"0": {"sort": "CS_CONDITION"}, "1": {"sort": "TEST_PHONE"}}})" );
    const Configuration configuration = loaded();
    csConditionSetValue( condition( configuration, "0" ).get(), true );
    EXPECT_EQ( save( configuration, directory / "state.json" ), "" );
    EXPECT_EQ( save( configuration, path ), "" );
    const auto tree = pb::adopt( csConfigurationTree( configuration.get() ) );
    EXPECT_TRUE( tree == pb::adopt( csConfigurationTree( loaded().get() ) ) );
    fs::rename( directory / "state.json", path );
    EXPECT_TRUE( tree == pb::adopt( csConfigurationTree( loaded().get() ) ) );
}

TEST_F( CsSave, SweepsUpWhatKilledProcessesLeft )
{
    const Configuration configuration = loaded();
    write( directory / ".in.json.cs-save-abcdef", "left" );
    write( directory / ".in.json.cs-save-ghijkl", "of a process that lives" );
    write( directory / ".in.json.cs-save-x", "somebody's" );
    write( directory / ".other.json.cs-save-abcdef", "another file's" );
    const pb::Fd alive( ::open( ( directory / ".in.json.cs-save-ghijkl" ).c_str(), O_RDONLY | O_CLOEXEC ) );
    ASSERT_EQ( ::flock( alive.get(), LOCK_EX ), 0 );
    flip( configuration, false );
    EXPECT_EQ( save( configuration, path ), "" );
    EXPECT_THAT( names(), testing::ElementsAre( ".in.json.cs-save-ghijkl", ".in.json.cs-save-x",
                                                ".other.json.cs-save-abcdef", "in.json" ) );
}

TEST_F( CsSave, WhatCannotBeSavedIsToldAndTheOldFileStays )
{
    const Configuration configuration = loaded();
    flip( configuration, false );
    const bool root = ::geteuid() == 0;
    const auto asNobody = [&] { return !root || ::seteuid( 65534 ) == 0; };
    const struct Row {
        const char *problem;
        bool needsRoot;
        std::function<bool()> prepare; // in the child
        fs::path where;
    } table[] = {
        { "not saved: writing: File too large", false,
          [] {
              const struct rlimit limit = { 100, 100 };
              return ::setrlimit( RLIMIT_FSIZE, &limit ) == 0;
          },
          path },
        { "not saved: creating a file beside it: Permission denied", false,
          [&] {
              fs::permissions( path, fs::perms( 0644 ) );
              fs::permissions( directory, fs::perms( 0555 ) );
              return asNobody();
          },
          path },
        { "not saved: keeping its owner: Operation not permitted", true,
          [&] {
              fs::permissions( directory, fs::perms( 0777 ) );
              return asNobody();
          },
          path },
        { "not saved: opening its directory: No such file or directory", false, [] { return true; },
          directory / "none" / "in.json" },
        { "not saved: not a regular file: Invalid argument", false, [] { return true; }, directory },
        { "not saved: finding the file: No such file or directory", false, [] { return true; },
          directory / "dangling" },
        { "not saved: finding the file: Invalid argument", false, [] { return true; },
          path.string() + std::string( "\0b", 2 ) },
    };
    fs::create_symlink( "nowhere", directory / "dangling" );
    for ( const Row &row : table ) {
        if ( row.needsRoot && !root )
            continue;
        SCOPED_TRACE( row.problem );
        EXPECT_EQ( inChild( [&] {
                       return row.prepare() ? save( configuration, row.where ) + " " + save( configuration, row.where )
                                            : "cannot be prepared";
                   } ),
                   row.where.string() + ": " + row.problem + " " + row.where.string() + ": " + row.problem );
        EXPECT_EQ( read( path ), Written );
        EXPECT_THAT( names(), testing::ElementsAre( "dangling", "in.json" ) );
    }
    EXPECT_EQ( save( configuration, path ), "" ); // and once it can be, it is
    EXPECT_EQ( read( path ), Edited );
}

TEST_F( CsSave, AFullDiskKeepsTheOldTextAndTheNextSaveFindsRoom )
{
    const Configuration configuration = loaded();
    flip( configuration, false );
    const std::string told = inChild( [&]() -> std::string {
        if ( ::unshare( CLONE_NEWNS ) != 0 || ::mount( nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr ) != 0 ||
             ::mount( "none", directory.c_str(), "tmpfs", 0, "size=64k" ) != 0 )
            return "not permitted";
        write( path, Written );
        write( directory / "filler", std::string( 100'000, 'x' ) );
        const std::string full = save( configuration, path );
        const bool kept = read( path ) == Written && names() == std::vector<std::string>{ "filler", "in.json" };
        fs::remove( directory / "filler" );
        const std::string then = save( configuration, path );
        return full + ( kept && then.empty() && read( path ) == Edited ? " kept" : " lost" );
    } );
    if ( told == "not permitted" )
        GTEST_SKIP() << "mounting is not permitted here";
    EXPECT_EQ( told, path.string() + ": not saved: writing: No space left on device kept" );
}

TEST_F( CsSave, AKilledProcessLeavesTheOldOrTheNewTextWhole )
{
    std::string old = Edited; // large enough for several writes of the file system
    old.insert( old.find( "        \"desk\"" ), "        // " + std::string( 100'000, 'x' ) + "\n" );
    std::string fresh = old;
    fresh.replace( fresh.find( "false" ), 5, "true" );
    write( path, old );
    std::minstd_rand random( 1 );
    for ( int kill = 0; kill < ( std::getenv( "IN_SOAK" ) ? 1'000 : 12 ); ++kill ) {
        int ends[2];
        ASSERT_EQ( ::pipe2( ends, O_CLOEXEC ), 0 );
        const pb::Fd in( ends[0] ), out( ends[1] );
        const pid_t child = ::fork();
        if ( child == 0 ) {
            const Configuration configuration = loaded();
            for ( bool value = false;; value = !value ) {
                flip( configuration, value );
                if ( !save( configuration, path ).empty() || ::write( out.get(), "s", 1 ) != 1 )
                    ::_exit( 1 );
            }
        }
        char saved[8];
        for ( unsigned wait = 1 + random() % 4; wait > 0; --wait )
            ASSERT_EQ( ::read( in.get(), saved, 1 ), 1 );
        using Clock = std::chrono::steady_clock;
        const auto end = Clock::now() + std::chrono::microseconds( random() % 3'000 );
        while ( Clock::now() < end )
            ; // into the middle of a later one
        ASSERT_EQ( ::kill( child, SIGKILL ), 0 );
        ASSERT_EQ( ::waitpid( child, nullptr, 0 ), child );
        const std::string text = read( path );
        ASSERT_TRUE( text == old || text == fresh ) << "kill " << kill << ": " << text.size() << " bytes";
        ASSERT_LE( names().size(), 2u ) << "kill " << kill;
    }
    const Configuration configuration = loaded();
    flip( configuration, !csConditionValue( condition( configuration, "active" ).get() ) );
    EXPECT_EQ( save( configuration, path ), "" );
    EXPECT_THAT( names(), testing::ElementsAre( "in.json" ) );
}

} // namespace
