// Screen: control sequences of ECMA-48 and DEC private modes, which terminals have in common.
#include "inctl/screen.hpp"

#include "inctl/waiter.hpp"

#include "pb/pb_abort.hpp"

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <string_view>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace inctl {
namespace {

// The other page, no cursor, long lines cut.
constexpr std::string_view entering = "\033[?1049h\033[?25l\033[?7l";
constexpr std::string_view leaving = "\033[?7h\033[?25h\033[?1049l";

// Milliseconds for the terminal to take that.
constexpr int patience = 1000;

std::atomic<bool> entered = false;
static_assert( std::atomic<bool>::is_always_lock_free ); // a handler uses it

// What ends the program without unwinding.
constexpr int fatalSignals[] = { SIGABRT, SIGBUS,    SIGFPE, SIGILL,  SIGIO,   SIGPROF, SIGPWR,    SIGQUIT, SIGSEGV,
                                 SIGSYS,  SIGSTKFLT, SIGTRAP, SIGUSR1, SIGUSR2, SIGVTALRM, SIGXCPU, SIGXFSZ };
std::array<struct sigaction, std::size( fatalSignals )> actionsBefore;

// In a handler, too. Past what the output says, which may have failed on this very terminal. A terminal that its user
// has stopped (Ctrl-S) goes on; one that takes nothing all the same, as when its other side hangs, stays as it is.
extern "C" void inctlGiveTerminalBack()
{
    if ( !entered )
        return;
    // What has been stopped by a key is started by TCOON behind a TCOOFF only.
    (void)tcflow( STDOUT_FILENO, TCOOFF );
    (void)tcflow( STDOUT_FILENO, TCOON );
    const int flags = fcntl( STDOUT_FILENO, F_GETFL );
    (void)fcntl( STDOUT_FILENO, F_SETFL, flags | O_NONBLOCK );
    pollfd terminal{ STDOUT_FILENO, POLLOUT, 0 };
    for ( std::string_view rest = leaving; !rest.empty() && poll( &terminal, 1, patience ) > 0; ) {
        const ssize_t count = write( STDOUT_FILENO, rest.data(), rest.size() );
        if ( count <= 0 )
            break;
        rest.remove_prefix( static_cast<size_t>( count ) );
    }
    (void)fcntl( STDOUT_FILENO, F_SETFL, flags ); // others have the terminal open with the same flags
    entered = false;                              // after: who is interrupted here leaves again, which does no harm
}

// What is wrong happens again, or is raised again, for who handled it before.
extern "C" void inctlFail( int number )
{
    inctlGiveTerminalBack();
    for ( size_t i = 0; i < std::size( fatalSignals ); ++i )
        (void)sigaction( fatalSignals[i], &actionsBefore[i], nullptr );
    (void)raise( number );
}

void takeFatalSignals()
{
    struct sigaction action{};
    action.sa_handler = inctlFail;
    sigfillset( &action.sa_mask );
    for ( size_t i = 0; i < std::size( fatalSignals ); ++i ) {
        (void)sigaction( fatalSignals[i], &action, &actionsBefore[i] );
        if ( actionsBefore[i].sa_handler == SIG_IGN ) // as who started the program wants it
            (void)sigaction( fatalSignals[i], &actionsBefore[i], nullptr );
    }
}

void returnFatalSignals()
{
    for ( size_t i = 0; i < std::size( fatalSignals ); ++i )
        (void)sigaction( fatalSignals[i], &actionsBefore[i], nullptr );
}

} // namespace

bool Screen::usable( const Output &output )
{
    const char *terminal = std::getenv( "TERM" );
    return !output.json() && isatty( STDOUT_FILENO ) && terminal && *terminal &&
           std::string_view( terminal ) != "dumb" && inFront();
}

bool Screen::inFront()
{
    const pid_t front = tcgetpgrp( STDOUT_FILENO );
    return front < 0 || front == getpgrp(); // no shell shares out one that is not the session's, or that hung up
}

Screen::Size Screen::size()
{
    winsize size{};
    const bool known = ioctl( STDOUT_FILENO, TIOCGWINSZ, &size ) == 0 && size.ws_col > 0 && size.ws_row > 0;
    return known ? Size{ size.ws_col, size.ws_row } : Size{ 80, 24 };
}

Screen::Screen( Output &output ) : output_( output )
{
    setFarewell( inctlGiveTerminalBack );
    pb___SetAbortCall( inctlGiveTerminalBack ); // its text is for the page that stays
    takeFatalSignals();
    enter();
}

Screen::~Screen()
{
    leave();
    returnFatalSignals();
    pb___SetAbortCall( nullptr );
    setFarewell( nullptr );
}

void Screen::draw( const std::vector<std::string> &lines )
{
    if ( !entered )
        enter();
    // Cleared before it is written: behind a line that fills the width the cursor stands on its last character.
    std::string page = "\033[H";
    for ( size_t i = 0; i < lines.size(); ++i )
        page.append( i == 0 ? "" : "\r\n" ).append( i + 1 < lines.size() ? "\033[K" : "\033[J" ).append( lines[i] );
    output_.bytes( page );
}

void Screen::suspend()
{
    leave();
    sigset_t stop;
    sigemptyset( &stop );
    sigaddset( &stop, SIGTSTP );
    // Not SIGSTOP: the system knows where no shell could continue the program, and then drops SIGTSTP alone.
    (void)pthread_sigmask( SIG_UNBLOCK, &stop, nullptr );
    (void)raise( SIGTSTP );
    (void)pthread_sigmask( SIG_BLOCK, &stop, nullptr );
}

void Screen::enter()
{
    entered = true; // before
    output_.bytes( entering );
}

void Screen::leave()
{
    inctlGiveTerminalBack();
}

} // namespace inctl
