// Screen: control sequences of ECMA-48 and DEC private modes, which terminals have in common.
#include "inctl/screen.hpp"

#include "inctl/waiter.hpp"

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

namespace inctl {
namespace {

// The other page, no cursor, long lines cut.
constexpr std::string_view entering = "\033[?1049h\033[?25l\033[?7l";
constexpr std::string_view leaving = "\033[?7h\033[?25h\033[?1049l";

std::atomic<bool> entered = false;
static_assert( std::atomic<bool>::is_always_lock_free ); // a handler uses it

// What ends the program without unwinding.
constexpr int fatalSignals[] = { SIGABRT, SIGBUS,  SIGFPE,  SIGILL,  SIGIO,     SIGPROF, SIGPWR,  SIGQUIT, SIGSEGV,
                                 SIGSTKFLT, SIGSYS, SIGTRAP, SIGUSR1, SIGUSR2, SIGVTALRM, SIGXCPU, SIGXFSZ };
std::array<struct sigaction, std::size( fatalSignals )> actionsBefore;

extern "C" void inctlGiveTerminalBack()
{
    if ( entered.exchange( false ) )
        [[maybe_unused]] const ssize_t ignored = write( STDOUT_FILENO, leaving.data(), leaving.size() );
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
    return !output.json() && isatty( STDOUT_FILENO ) && terminal && *terminal && std::string_view( terminal ) != "dumb";
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
    takeFatalSignals();
    enter();
}

Screen::~Screen()
{
    leave();
    returnFatalSignals();
    setFarewell( nullptr );
}

void Screen::draw( const std::vector<std::string> &lines )
{
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
    enter();
}

void Screen::enter()
{
    entered = true; // before: leaving once too often does no harm
    output_.bytes( entering );
}

void Screen::leave()
{
    if ( entered.exchange( false ) )
        output_.bytes( leaving );
}

} // namespace inctl
