// TraceFile: the end of a file that traces are appended to, given up and opened anew when it was moved away.
#ifndef INCTL_TRACE_FILE_HPP
#define INCTL_TRACE_FILE_HPP

#include "pb/pb_fd.hpp"

#include <spdlog/details/null_mutex.h>
#include <spdlog/sinks/base_sink.h>

#include <atomic>
#include <functional>
#include <string>

namespace inctl {

// One thread writes; any may ask for the file to be opened anew.
class TraceFile final : public spdlog::sinks::base_sink<spdlog::details::null_mutex> {
public:
    // Throws Failure when the file cannot be written. What is written waits in memory until idle() or a flush.
    TraceFile( std::string path, std::function<bool()> idle );

    // Before the next line, or with the next flush: the file of that name, which may be another one now. When it cannot
    // be opened the old one goes on.
    void askToReopen() { reopen_ = true; }

    // Lines that a full disk, or whatever else stands in the way, has cost; read when nobody writes any more.
    size_t lostLines() const { return lostLines_; }

private:
    void sink_it_( const spdlog::details::log_msg &message ) override;
    void flush_() override;
    void write();

    const std::string path_;
    const std::function<bool()> idle_;
    std::atomic<bool> reopen_ = false;
    pb::Fd file_;
    std::string waiting_;
    size_t lostLines_ = 0;
    bool torn_ = false; // the file ends within a line
};

} // namespace inctl

#endif
