// ControlSignals: a signalfd.
#include "inctl/control_signals.hpp"

#include "inctl/exit_code.hpp"

#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace inctl {

ControlSignals::ControlSignals( bool forTerminal )
{
    sigset_t taken;
    sigemptyset( &taken );
    sigaddset( &taken, SIGHUP );
    if ( forTerminal ) {
        sigaddset( &taken, SIGWINCH );
        sigaddset( &taken, SIGTSTP );
        sigaddset( &taken, SIGTTOU ); // what gives the terminal back in the background is not to stop the program
    }
    (void)pthread_sigmask( SIG_BLOCK, &taken, &before_ ); // fails for a wrong first argument only
    descriptor_.reset( signalfd( -1, &taken, SFD_CLOEXEC | SFD_NONBLOCK ) );
    if ( !descriptor_ )
        throw Failure{ Exit::System, fmt::format( "signalfd(): {}", std::strerror( errno ) ) };
}

ControlSignals::~ControlSignals()
{
    (void)take(); // one that came too late must not end the program now
    (void)pthread_sigmask( SIG_SETMASK, &before_, nullptr );
}

ControlSignals::Asked ControlSignals::take()
{
    Asked asked;
    signalfd_siginfo one;
    while ( read( descriptor_.get(), &one, sizeof one ) == sizeof one ) {
        asked.reload |= one.ssi_signo == SIGHUP;
        asked.resize |= one.ssi_signo == SIGWINCH;
        asked.stop |= one.ssi_signo == SIGTSTP;
    }
    return asked;
}

} // namespace inctl
