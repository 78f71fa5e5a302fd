// Output: lines, JSON, colour and the times in front of lines.
#include "inctl/output.hpp"

#include "inctl/record_keys.hpp"

#include <fmt/chrono.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdio_ext.h>
#include <unistd.h>

namespace inctl {
namespace {

bool wantsColour( int descriptor )
{
    const char *refusal = std::getenv( "NO_COLOR" );
    const char *terminal = std::getenv( "TERM" );
    return isatty( descriptor ) && !( refusal && *refusal ) && terminal && std::string_view( terminal ) != "dumb";
}

std::string_view sequence( Paint paint )
{
    switch ( paint ) {
    case Paint::Good:
        return "\033[32m";
    case Paint::Bad:
        return "\033[31m";
    case Paint::Faint:
        return "\033[2m";
    case Paint::Strong:
        return "\033[1m";
    case Paint::Plain:
        break;
    }
    return "";
}

} // namespace

std::string painted( Paint paint, std::string_view text )
{
    return paint == Paint::Plain ? std::string( text ) : fmt::format( "{}{}\033[0m", sequence( paint ), text );
}

bool Output::colour() const
{
    static const bool wanted = wantsColour( STDOUT_FILENO );
    return wanted && form == Form::Text;
}

std::string Output::paint( Paint paint, std::string_view text ) const
{
    return colour() ? painted( paint, text ) : std::string( text );
}

void Output::write( std::string_view text, std::string_view end )
{
    if ( broken() )
        return;
    errno = 0;
    // Flushed line by line: the output is followed live, by people and by scripts.
    if ( std::fwrite( text.data(), 1, text.size(), stdout ) != text.size() ||
         std::fwrite( end.data(), 1, end.size(), stdout ) != end.size() || std::fflush( stdout ) != 0 ) {
        error_ = errno ? errno : EIO;
        __fpurge( stdout ); // else the end of the program would try once more, and might block
    }
}

void Output::line( std::string_view text )
{
    if ( form == Form::Text )
        write( text );
}

void Output::bytes( std::string_view bytes )
{
    if ( form == Form::Text )
        write( bytes, "" );
}

void Output::record( const Record &record )
{
    if ( json() )
        write( jsonText( record, form == Form::JsonPretty ? CS_JSON_PRETTY : CS_JSON_SHORT ) );
}

void Output::failure( const Failure &failure )
{
    const bool colour = wantsColour( STDERR_FILENO );
    // A bad configuration comes as lines that editors and compilers' readers understand; they stand for themselves.
    const std::string_view prefix = failure.exit == Exit::Configuration ? "" : "inctl: ";
    complain( fmt::format( "{}{}\n", colour && !prefix.empty() ? painted( Paint::Bad, prefix ) : prefix,
                           failure.sentence ) );
    record( Record().set( "error", failure.sentence ) );
}

Failure unwritable( const Output &output )
{
    return { Exit::System, fmt::format( "standard output: {}", std::strerror( output.error() ) ) };
}

void complain( std::string_view text )
{
    (void)std::fwrite( text.data(), 1, text.size(), stderr );
}

std::string timeOfDay()
{
    const auto now = std::chrono::system_clock::now();
    const auto fraction =
        std::chrono::duration_cast<std::chrono::milliseconds>( now.time_since_epoch() ).count() % 1000;
    return fmt::format( "{:%H:%M:%S}.{:03}", fmt::localtime( std::chrono::system_clock::to_time_t( now ) ), fraction );
}

std::string timeStamp()
{
    const auto now = std::chrono::system_clock::now();
    const auto fraction =
        std::chrono::duration_cast<std::chrono::microseconds>( now.time_since_epoch() ).count() % 1000000;
    return fmt::format( "{:%Y-%m-%dT%H:%M:%S}.{:06}Z", fmt::gmtime( std::chrono::system_clock::to_time_t( now ) ),
                        fraction );
}

} // namespace inctl
