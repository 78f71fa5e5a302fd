// Objects that are replaced while they are read: none is freed too early, and none too many are kept.
#include "in/base/in_published.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstddef>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr int replacements = 1000;
constexpr int exitBase = 10; // none that a sanitizer exits with

struct Counted {
    static inline std::atomic<int> alive{ 0 };
    const int value = 1;
    Counted() { ++alive; }
    ~Counted() { --alive; }
};

// For the calling thread, as a service manager or the host itself may do.
bool tryForbidMembarrier()
{
    sock_filter code[] = { BPF_STMT( BPF_LD | BPF_W | BPF_ABS, offsetof( seccomp_data, nr ) ),
                           BPF_JUMP( BPF_JMP | BPF_JEQ | BPF_K, SYS_membarrier, 0, 1 ),
                           BPF_STMT( BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM ),
                           BPF_STMT( BPF_RET | BPF_K, SECCOMP_RET_ALLOW ) };
    const sock_fprog program{ std::size( code ), code };
    return prctl( PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0 ) == 0 && prctl( PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program ) == 0;
}

// Exits with the number of objects that are left when all have been replaced. Forbids before the replacement; -1: before
// the first object, the number of replacements: never.
[[noreturn]] void replaceAndExit( int forbidden )
{
    const auto forbid = [=]( int replacement ) {
        if ( replacement == forbidden && !tryForbidMembarrier() )
            _exit( exitBase - 1 );
    };
    forbid( -1 );
    {
        in::Published<Counted> published( std::make_unique<const Counted>() );
        std::atomic<bool> reads{ false }, stop{ false };
        std::thread reader( [&] {
            while ( !stop )
                published.read( [&]( const Counted &counted ) {
                    reads = true;
                    std::this_thread::yield(); // to be caught in the middle
                    return counted.value;
                } );
        } );
        while ( !reads )
            std::this_thread::yield();
        for ( int i = 0; i < replacements; ++i ) {
            forbid( i );
            (void)published.replace( std::make_unique<const Counted>() );
        }
        stop = true;
        reader.join();
    }
    _exit( exitBase + Counted::alive );
}

TEST( PublishedDeath, KeepsNothingButWhatWasReadInRelianceOnTheKernel )
{
    const struct {
        int forbidden, kept;
    } rows[] = { { replacements, 0 }, { -1, 0 }, { replacements / 2, 2 } };
    for ( const auto &row : rows )
        EXPECT_EXIT( replaceAndExit( row.forbidden ), testing::ExitedWithCode( exitBase + row.kept ), "" )
            << row.forbidden;
}

} // namespace
