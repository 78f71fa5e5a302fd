// What is to be said about a text: collected in any order, told in the order of the text with line and column.
#ifndef CS_PROBLEMS_INTERNAL_H
#define CS_PROBLEMS_INTERNAL_H

#include "pb/pb_object.hpp"

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>

struct pbVector;

namespace cs {

// UTF-8 text for a message: at most 64 code points, control characters escaped, so that a file cannot write to a
// terminal.
std::string printable( std::string_view text );

// What a finding is about, as printable text: a record, a key inside it ("udpOptions.portRange"), or, without a record,
// a key of the file's frame.
struct Subject {
    std::string record{};
    std::string key{};

    std::string path() const { return record + ( record.empty() || key.empty() ? "" : "." ) + key; }
};

// What a finding says something about: the text, or why that was not read.
enum class Origin { Text, System, Permission };

struct Finding {
    std::string what{}; // empty: nothing
    std::string expected{};
    std::string nearest{};  // the known name that was probably meant
    Origin origin = Origin::Text;

    // "what is wrong, did you mean "nearest"?" or "what is wrong, expected ...".
    std::string text() const;
};

enum class Severity { Error, Warning };

struct Diagnosis {
    Severity severity;
    Subject subject;
    Finding finding;
    size_t count = 1; // of problems: all that are not told share one diagnosis
};

class Problems {
public:
    // What is looked for: errors always; warnings, and of these those that only this host makes (online).
    explicit Problems( bool wantsWarnings = false, bool online = false ) noexcept
        : wantsWarnings_( wantsWarnings ), online_( online )
    {
    }
    bool wantsWarnings() const noexcept { return wantsWarnings_; }
    bool online() const noexcept { return online_; }

    void add( size_t offset, const Subject &subject, const Finding &finding )
    {
        keep( offset, { Severity::Error, subject, finding } );
    }
    void warn( size_t offset, const Subject &subject, const Finding &finding )
    {
        keep( offset, { Severity::Warning, subject, finding } );
    }
    // Further ones are counted only: what to say about them need not be found out.
    bool full( Severity severity = Severity::Error ) const noexcept
    {
        return counts_[static_cast<size_t>( severity )] >= Maximum;
    }
    // No errors.
    bool empty() const noexcept { return counts_[0] == 0; }

    // In the order of the text; columns count code points. bytes is the text that the offsets belong to.
    void tell( std::string_view bytes,
               const std::function<void( size_t line, size_t column, const Diagnosis & )> &listener ) const;
    // The errors, "FILE:LINE:COLUMN: error: path: what" each, as pbStrings.
    pb::Ref<struct pbVector> messages( std::string_view file, std::string_view bytes ) const;

private:
    static constexpr size_t Maximum = 1'000; // of either severity

    void keep( size_t offset, const Diagnosis &diagnosis );

    std::multimap<size_t, Diagnosis> diagnoses_; // by offset; those of one place in the order in which they were found
    size_t counts_[2] = {};                      // by severity, with those that are not kept
    bool wantsWarnings_;
    bool online_;
};

// "FILE:LINE:COLUMN: error: path: what".
std::string diagnosisText( std::string_view file, size_t line, size_t column, const Diagnosis &diagnosis );

} // namespace cs

#endif
