// TraceJournal: traces in the journal of systemd, with fields of their own to select by.
#ifndef INCTL_TRACE_JOURNAL_HPP
#define INCTL_TRACE_JOURNAL_HPP

#include <spdlog/details/null_mutex.h>
#include <spdlog/sinks/base_sink.h>

#include <string>
#include <string_view>

namespace inctl {

// Fields on their way to the journal, as the text of one message.
class JournalFields {
public:
    // value may hold anything.
    JournalFields &add( std::string_view key, std::string_view value );
    const std::string &text() const { return text_; }

private:
    std::string text_; // each field: its length, then "KEY=value"
};

// Takes the text of JournalFields.
class TraceJournal final : public spdlog::sinks::base_sink<spdlog::details::null_mutex> {
public:
    // Throws Failure where there is no journal.
    TraceJournal();

private:
    void sink_it_( const spdlog::details::log_msg &message ) override;
    void flush_() override {}
};

} // namespace inctl

#endif
