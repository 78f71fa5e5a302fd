// NetNamespace: a host of its own for a test, made of an unnamed network namespace.
// It lives by descriptors and processes alone: however the test ends, the kernel removes it with all its interfaces.
#ifndef SUPPORT_NET_NAMESPACE_HPP
#define SUPPORT_NET_NAMESPACE_HPP

#include "pb/pb_fd.hpp"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <sched.h>
#include <stdexcept>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>

// First line of a test that needs namespaces.
#define SKIP_WITHOUT_NAMESPACES()                                                                                      \
    if ( !support::NetNamespace::permitted() )                                                                         \
    GTEST_SKIP() << "network namespaces are not permitted here"

namespace support {

// A process that runs a scenario; killed when it is dropped unawaited, and when the test program goes.
class Child {
public:
    explicit Child( const std::function<void()> &scenario )
    {
        fflush( nullptr );
        const pid_t parent = getpid();
        pid_ = fork();
        if ( pid_ < 0 )
            throw std::runtime_error( "fork failed" );
        if ( pid_ > 0 )
            return;
        if ( prctl( PR_SET_PDEATHSIG, SIGKILL ) != 0 || getppid() != parent )
            _exit( 3 );
        try {
            scenario();
        } catch ( const std::exception &exception ) {
            ADD_FAILURE() << exception.what();
        }
        exit( testing::Test::HasFailure() ? 1 : 0 ); // not _exit: the leak check runs
    }
    ~Child()
    {
        if ( pid_ > 0 )
            kill( pid_, SIGKILL );
        wait();
    }
    Child( Child &&other ) noexcept : pid_( std::exchange( other.pid_, -1 ) ) {}
    Child &operator=( Child && ) = delete;

    pid_t pid() const { return pid_; }
    // True when the scenario came to its end and no expectation failed in it.
    bool wait()
    {
        int status = 0;
        const pid_t pid = std::exchange( pid_, -1 );
        return pid > 0 && waitpid( pid, &status, 0 ) == pid && WIFEXITED( status ) && WEXITSTATUS( status ) == 0;
    }

private:
    pid_t pid_ = -1;
};

class NetNamespace {
public:
    // Its loopback interface is up. Make it before the process has other threads.
    NetNamespace()
    {
        const pb::Fd own = open();
        require( unshare( CLONE_NEWNET ) == 0, "unshare" );
        fd_ = open();
        require( setns( own.get(), CLONE_NEWNET ) == 0, "setns" );
        run( "ip link set lo up" );
    }

    static bool permitted()
    {
        return Child( [] { _exit( unshare( CLONE_NEWNET ) == 0 ? 0 : 1 ); } ).wait();
    }

    // Runs the scenario inside, as the only thread of a new process; it may start the module there.
    Child start( const std::function<void()> &scenario ) const
    {
        return Child( [&] {
            require( setns( fd_.get(), CLONE_NEWNET ) == 0, "setns" );
            scenario();
        } );
    }
    // The same, awaited; its failures are the test's.
    void scenario( const std::function<void()> &steps ) const
    {
        if ( !start( steps ).wait() )
            ADD_FAILURE() << "the scenario failed, see above, or did not come to its end";
    }

    // Runs a shell command inside; one that fails is an exception.
    void run( const std::string &command ) const
    {
        const auto execute = [&command] {
            execl( "/bin/sh", "sh", "-ec", command.c_str(), nullptr );
            _exit( 127 );
        };
        require( start( execute ).wait(), command );
    }
    // Joins an interface here and one of the other host by a cable.
    void connect( const std::string &name, const NetNamespace &other, const std::string &otherName ) const
    {
        run( "ip link add " + name + " type veth peer name " + otherName + " netns /proc/" +
             std::to_string( getpid() ) + "/fd/" + std::to_string( other.fd_.get() ) );
    }

private:
    static pb::Fd open() { return pb::Fd( ::open( "/proc/thread-self/ns/net", O_RDONLY | O_CLOEXEC ) ); }
    static void require( bool done, const std::string &what )
    {
        if ( !done )
            throw std::runtime_error( what + " failed" );
    }

    pb::Fd fd_;
};

// For scenarios: a command in the namespace that the process is in.
inline void shell( const std::string &command )
{
    if ( std::system( command.c_str() ) != 0 )
        throw std::runtime_error( command + " failed" );
}

} // namespace support

#endif
