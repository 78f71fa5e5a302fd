// Output: what a command shows, either lines for a person or JSON for a program, never both.
#ifndef INCTL_OUTPUT_HPP
#define INCTL_OUTPUT_HPP

#include "inctl/exit_code.hpp"
#include "inctl/record.hpp"

#include <string>
#include <string_view>

namespace inctl {

enum class Paint { Plain, Good, Bad, Faint, Strong };

class Output {
public:
    enum class Form { Text, JsonShort, JsonPretty };

    Form form = Form::Text;

    bool json() const { return form != Form::Text; }
    // Colour is for terminals only, and not where NO_COLOR is set (no-color.org).
    bool colour() const;
    std::string paint( Paint paint, std::string_view text ) const;

    // A line for a person; nothing when JSON is wanted.
    void line( std::string_view text );
    // Text that is the result in either form.
    void text( std::string_view text ) { write( text ); }
    // Bytes that are the result for a person, as they are; nothing when JSON is wanted.
    void bytes( std::string_view bytes );
    // A whole result, or one event of a stream; nothing unless JSON is wanted.
    void record( const Record &record );
    // The sentence to standard error, and for programs {"error": ...} to standard output.
    void failure( const Failure &failure );

    // Standard output takes nothing any more, as when the reader of a pipe has gone: time to stop.
    bool broken() const { return error_ != 0; }
    // Why, as an error number; 0 while it takes everything. EINTR: the user has ended the program meanwhile.
    int error() const { return error_; }

private:
    void write( std::string_view text, std::string_view end = "\n" );

    int error_ = 0;
};

// What broke the output, as a system error.
Failure unwritable( const Output &output );

// To standard error, as it is. Where that takes nothing there is nobody to tell, and the exit code still stands.
void complain( std::string_view text );

// The time of day here, to the millisecond, and for records the time in RFC 3339 form (UTC, microseconds).
std::string timeOfDay();
std::string timeStamp();

// Wraps text in the escape sequence of a paint.
std::string painted( Paint paint, std::string_view text );

} // namespace inctl

#endif
