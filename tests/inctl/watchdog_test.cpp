// The watchdog against a real socket of a service manager and a real scheduler that hangs.
#include "inctl/watchdog.hpp"

#include "pb/pb_barrier.h"
#include "pb/pb_fd.hpp"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"
#include "pr/pr_module.h"
#include "pr/pr_test.hpp"

#include <algorithm>
#include <cstdlib>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>

namespace {

using Barrier = pb::Ref<struct pbBarrier>;

// The manager's end: an abstract socket, which leaves no file.
class Manager {
public:
    Manager()
    {
        const std::string name = "@inctl-watchdog-test-" + std::to_string( getpid() );
        sockaddr_un address{ .sun_family = AF_UNIX };
        std::copy( name.begin() + 1, name.end(), address.sun_path + 1 );
        EXPECT_EQ( bind( socket_.get(), reinterpret_cast<const sockaddr *>( &address ),
                         static_cast<socklen_t>( offsetof( sockaddr_un, sun_path ) + name.size() ) ),
                   0 );
        setenv( "NOTIFY_SOCKET", name.c_str(), 1 );
    }
    // What was told since the last time.
    std::vector<std::string> told()
    {
        std::vector<std::string> messages;
        char text[4096];
        for ( ssize_t length; ( length = recv( socket_.get(), text, sizeof text, MSG_DONTWAIT ) ) >= 0; )
            messages.emplace_back( text, static_cast<size_t>( length ) );
        return messages;
    }

private:
    pb::Fd socket_{ socket( AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0 ) };
};

// Holds a thread of the scheduler: says so, and waits until it is let go. The argument: both barriers.
void hold( struct pbObj *argument )
{
    struct pbVector *barriers = pbVectorFrom( argument );
    pbBarrierUnblock( pb::adopt( pbBarrierFrom( pbVectorObjAt( barriers, 0 ) ) ).get() );
    pbBarrierPass( pb::adopt( pbBarrierFrom( pbVectorObjAt( barriers, 1 ) ) ).get() );
}

TEST( WatchdogTest, BeatsOnlyWhenTheSchedulerHasRunAProcessSinceTheLastBeat )
{
    Manager socket;
    setenv( "WATCHDOG_USEC", "2", 1 ); // a beat is always due
    unsetenv( "WATCHDOG_PID" );
    prModule()->startup();
    {
        inctl::Waiter waiter;
        inctl::ServiceManager manager;
        inctl::Watchdog watchdog( manager, waiter );
        const auto beatOnce = [&] {
            watchdog.beat(); // begins
            EXPECT_EQ( waiter.wait( {} ), inctl::Waiter::Woken::Library );
            watchdog.beat(); // ends, and begins the next
            EXPECT_EQ( waiter.wait( {} ), inctl::Waiter::Woken::Library );
        };
        beatOnce();
        EXPECT_THAT( socket.told(), testing::ElementsAre( "WATCHDOG=1" ) );
        pr___Quiesce();

        const auto threads = std::clamp<pbInt>( std::thread::hardware_concurrency(), 2, 4 ); // of the scheduler
        const Barrier held = pb::adopt( pbBarrierCreate( threads ) ), letGo = pb::adopt( pbBarrierCreate( 1 ) );
        auto barriers = pb::adopt( pbVectorCreate() );
        pbVectorAppend( barriers.address(), pbBarrierObj( held.get() ) );
        pbVectorAppend( barriers.address(), pbBarrierObj( letGo.get() ) );
        std::vector<pb::Ref<struct prProcess>> holders;
        for ( pbInt i = 0; i < threads; ++i ) {
            holders.push_back( pb::adopt(
                prProcessCreateWithPriorityCstr( 9, hold, pbVectorObj( barriers.get() ), "hold", -1 ) ) );
            prProcessSchedule( holders.back().get() );
        }
        pbBarrierPass( held.get() );
        watchdog.beat(); // the one that had run, and the next, which hangs
        EXPECT_THAT( socket.told(), testing::ElementsAre( "WATCHDOG=1" ) );
        watchdog.beat();
        watchdog.beat();
        EXPECT_THAT( socket.told(), testing::IsEmpty() );
        pbBarrierUnblock( letGo.get() );
        EXPECT_EQ( waiter.wait( {} ), inctl::Waiter::Woken::Library );
        watchdog.beat();
        EXPECT_THAT( socket.told(), testing::ElementsAre( "WATCHDOG=1" ) );
    }
    prModule()->shutdown();
    prModule()->shutdownWait();
}

} // namespace
