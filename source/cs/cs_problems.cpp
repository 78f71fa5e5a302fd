// Problems of a text, with their lines and columns.
#include "cs/cs_problems_internal.h"

#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"

#include <algorithm>
#include <cstdio>

namespace cs {
namespace {

bool isContinuation( char byte ) { return ( static_cast<unsigned char>( byte ) & 0xC0 ) == 0x80; }

// Counts lines and columns while it moves forward through the text.
class Place {
public:
    explicit Place( std::string_view bytes ) : bytes_( bytes )
    {
        if ( bytes.starts_with( "\xEF\xBB\xBF" ) )
            offset_ = 3; // a byte order mark is no column
    }
    void moveTo( size_t offset )
    {
        for ( ; offset_ < std::min( offset, bytes_.size() ); ++offset_ )
            if ( bytes_[offset_] == '\n' ) {
                ++line_;
                column_ = 1;
            } else if ( !isContinuation( bytes_[offset_] ) )
                ++column_;
    }
    size_t line() const { return line_; }
    size_t column() const { return column_; }

private:
    std::string_view bytes_;
    size_t offset_ = 0;
    size_t line_ = 1;
    size_t column_ = 1;
};

} // namespace

std::string printable( std::string_view text )
{
    constexpr size_t Maximum = 64;
    std::string result;
    size_t count = 0;
    for ( size_t i = 0; i < text.size(); ++i ) {
        const auto byte = static_cast<unsigned char>( text[i] );
        if ( !isContinuation( text[i] ) && ++count > Maximum )
            return result + "...";
        // U+0080..U+009F are controls, too; in UTF-8 they begin with C2.
        const bool control = byte < 0x20 || byte == 0x7F;
        const bool control1 = byte == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>( text[i + 1] ) < 0xA0;
        if ( !control && !control1 ) {
            result += text[i];
            continue;
        }
        char escape[8];
        std::snprintf( escape, sizeof escape, "\\u%04x", control ? byte : static_cast<unsigned char>( text[++i] ) );
        result += escape;
    }
    return result;
}

std::string Finding::text() const
{
    if ( !nearest.empty() )
        return what + ", did you mean \"" + nearest + "\"?";
    return expected.empty() ? what : what + ", expected " + expected;
}

void Problems::keep( size_t offset, const Diagnosis &diagnosis )
{
    if ( ++counts_[static_cast<size_t>( diagnosis.severity )] <= Maximum )
        diagnoses_.emplace( offset, diagnosis );
}

void Problems::tell( std::string_view bytes,
                     const std::function<void( size_t, size_t, const Diagnosis & )> &listener ) const
{
    Place place( bytes );
    for ( const auto &[offset, diagnosis] : diagnoses_ ) {
        place.moveTo( offset );
        listener( place.line(), place.column(), diagnosis );
    }
    for ( const Severity severity : { Severity::Error, Severity::Warning } )
        if ( const size_t count = counts_[static_cast<size_t>( severity )]; count > Maximum )
            listener( place.line(), place.column(),
                      { severity, {}, { std::to_string( count - Maximum ) + " more problems, not told" },
                        count - Maximum } );
}

pb::Ref<struct pbVector> Problems::messages( std::string_view file, std::string_view bytes ) const
{
    auto messages = pb::adopt( pbVectorCreate() );
    tell( bytes, [&]( size_t line, size_t column, const Diagnosis &diagnosis ) {
        if ( diagnosis.severity == Severity::Error )
            pbVectorAppend( messages.address(),
                            pbStringObj( pb::string( diagnosisText( file, line, column, diagnosis ) ).get() ) );
    } );
    return messages;
}

std::string diagnosisText( std::string_view file, size_t line, size_t column, const Diagnosis &diagnosis )
{
    const std::string path = diagnosis.subject.path();
    return std::string( file ) + ":" + std::to_string( line ) + ":" + std::to_string( column )
           + ( diagnosis.severity == Severity::Error ? ": error: " : ": warning: " ) + path
           + ( path.empty() ? "" : ": " ) + diagnosis.finding.text();
}

} // namespace cs
