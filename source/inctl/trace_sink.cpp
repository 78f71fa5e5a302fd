// TraceSink: the listener of the trace system behind an asynchronous logger.
#include "inctl/trace_sink.hpp"

#include "inctl/exit_code.hpp"
#include "inctl/help_formatter.hpp"
#include "inctl/object_state.hpp"
#include "inctl/output.hpp"
#include "inctl/preview.hpp"
#include "inctl/record_keys.hpp"
#include "inctl/signals_blocked.hpp"
#include "inctl/trace_file.hpp"
#include "inctl/trace_journal.hpp"

#include "pb/pb_buffer.h"
#include "pb/pb_string.hpp"
#include "tr/tr_system.h"

#include <fmt/chrono.h>
#include <spdlog/async.h>
#include <spdlog/async_logger.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <syslog.h>

namespace inctl {
namespace {

// Lines that wait for the writing thread; beyond it the oldest are given up, and counted.
constexpr size_t queuedLines = 16384;

constexpr const char *kindNames[] = { "created",  "released",      "text",    "message",
                                      "property", "configuration", "notable", "linked" };

std::string timeText( pbInt nanoseconds )
{
    return fmt::format( "{:%Y-%m-%dT%H:%M:%S}.{:06}Z",
                        fmt::gmtime( static_cast<time_t>( nanoseconds / 1'000'000'000 ) ),
                        nanoseconds % 1'000'000'000 / 1000 );
}

} // namespace

std::span<const char *const> traceKinds()
{
    return kindNames;
}

Record traceRecord( const struct trEvent &event, const std::string &object )
{
    Record record;
    record.set( "time", timeText( event.time ) ).set( "event", kindNames[event.kind] ).set( "stream", event.stream );
    if ( !object.empty() )
        record.set( "object", object );
    const std::pair<const char *, const struct pbString *> texts[] = {
        { "name", event.name }, { "text", event.text }, { "key", event.key }, { "value", event.value },
        { "payloadType", event.payloadType } };
    for ( const auto &[key, text] : texts )
        if ( text )
            record.set( key, pb::share( text ) );
    if ( event.store )
        record.set( "store", pb::share( event.store ) );
    if ( event.payload )
        record.set( "payload", hexadecimal( event.payload ) );
    if ( event.kind == TR_EVENT_LINKED )
        record.set( "kind", event.anchorKind ).set( "other", event.other );
    return record;
}

namespace {

std::string rawText( const struct trEvent &event )
{
    switch ( event.kind ) {
    case TR_EVENT_TEXT:
        return pb::utf8( event.text );
    case TR_EVENT_MESSAGE:
        return fmt::format( "{}  {}", pb::utf8( event.text ), event.payload ? preview( event.payload ) : "" );
    case TR_EVENT_PROPERTY:
        return fmt::format( "{} = {}", pb::utf8( event.key ),
                            event.value   ? pb::utf8( event.value )
                            : event.store ? storeText( event.store )
                                          : "(gone)" );
    case TR_EVENT_CONFIGURATION:
        return fmt::format( "configuration {}", event.store ? storeText( event.store ) : "{}" );
    case TR_EVENT_NOTABLE:
        return fmt::format( "notable {}", event.value ? pb::utf8( event.value ) : "" );
    case TR_EVENT_LINKED:
        return fmt::format( "linked to #{}{}", event.other, event.text ? " as " + pb::utf8( event.text ) : "" );
    default:
        return kindNames[event.kind];
    }
}

} // namespace

std::string traceText( const struct trEvent &event )
{
    return printable( rawText( event ) );
}

void addTraceOptions( CLI::App &command, TraceChoice &choice )
{
    CLI::Option *trace = command.add_flag(
        "--trace{-}", choice.target, "Trace to standard error, to the journal (FILE: journal), or to the end of a file" );
    trace->type_name( "FILE" );
    command.add_option( "--trace-format", choice.format, "text or json (an object a line)" )
        ->type_name( "FORM" )
        ->needs( trace )
        ->check( oneOf( { "text", "json" } ) );
    command.add_flag( "--trace-packets", choice.packets, "Trace every datagram with its bytes too" )->needs( trace );
}

TraceSink::TraceSink( const TraceChoice &choice ) : json_( choice.format == "json" )
{
    {
        const SignalsBlocked blocked;
        thread_ = std::make_shared<spdlog::details::thread_pool>( queuedLines, 1 );
    }
    logger_ = std::make_shared<spdlog::async_logger>( "trace", makeSink( choice.target ), thread_,
                                                      spdlog::async_overflow_policy::overrun_oldest );
    // A full disk must not end the server; what is lost is lost.
    logger_->set_error_handler( []( const std::string & ) {} );
    trSystemSetListener( listen, this );
    trSystemSetAcceptsHighVolumeMessages( choice.packets );
}

TraceSink::~TraceSink()
{
    trSystemSetAcceptsHighVolumeMessages( 0 );
    trSystemSetListener( nullptr, nullptr );
    const size_t lost = thread_->overrun_counter();
    logger_->flush();
    logger_.reset();
    thread_.reset(); // writes the rest
    if ( lost > 0 )
        complain( fmt::format( "inctl: {} trace lines came too fast and are not in the trace\n", lost ) );
    if ( file_ && file_->lostLines() > 0 )
        complain( fmt::format( "inctl: {} trace lines could not be written\n", file_->lostLines() ) );
}

std::shared_ptr<spdlog::sinks::sink> TraceSink::makeSink( const std::string &target )
{
    if ( target == "-" ) {
        auto standardError = std::make_shared<spdlog::sinks::stderr_sink_st>();
        standardError->set_pattern( "%v" );
        return standardError;
    }
    journal_ = target == "journal";
    if ( journal_ )
        return std::make_shared<TraceJournal>();
    // Asked on the pool's own thread, at the latest while the pool ends and thread_ no longer leads to it.
    file_ = std::make_shared<TraceFile>( target, [pool = thread_.get()] { return pool->queue_size() == 0; } );
    return file_;
}

void TraceSink::reopen()
{
    if ( !file_ )
        return;
    file_->askToReopen();
    logger_->flush(); // by the thread, also when nothing is traced
}

void TraceSink::listen( const struct trEvent *event, void *context )
{
    TraceSink &sink = *static_cast<TraceSink *>( context );
    sink.streams_.follow( *event );
    const std::string line = sink.journal_ ? sink.journalFields( *event ) : sink.line( *event );
    sink.logger_->log( spdlog::level::info, spdlog::string_view_t( line ) );
    sink.streams_.forget( *event );
}

std::string TraceSink::line( const struct trEvent &event ) const
{
    return json_ ? jsonText( traceRecord( event, streams_.of( event ).object ), CS_JSON_SHORT )
                 : fmt::format( "{} {}#{}  {}", timeText( event.time ), pb::utf8( event.name ), event.stream,
                                traceText( event ) );
}

// MESSAGE and PRIORITY are the journal's own (systemd.journal-fields(7)).
std::string TraceSink::journalFields( const struct trEvent &event ) const
{
    const TraceStreams::Stream &stream = streams_.of( event );
    const std::string name = pb::utf8( event.name );
    const std::string message =
        json_ ? line( event ) : fmt::format( "{}#{}  {}", name, event.stream, traceText( event ) );
    const int priority = stream.notable ? LOG_WARNING : event.kind == TR_EVENT_MESSAGE ? LOG_DEBUG : LOG_INFO;
    JournalFields fields;
    fields.add( "MESSAGE", message )
        .add( "PRIORITY", std::to_string( priority ) )
        .add( "SYSLOG_IDENTIFIER", "inctl" )
        .add( "IN_TIME", timeText( event.time ) )
        .add( "IN_EVENT", kindNames[event.kind] )
        .add( "IN_STREAM", std::to_string( event.stream ) )
        .add( "IN_STREAM_NAME", name );
    if ( !stream.object.empty() )
        fields.add( "IN_OBJECT", stream.object );
    if ( event.key )
        fields.add( "IN_KEY", pb::utf8( event.key ) );
    if ( event.value )
        fields.add( "IN_VALUE", pb::utf8( event.value ) );
    if ( event.kind == TR_EVENT_LINKED )
        fields.add( "IN_OTHER", std::to_string( event.other ) );
    return fields.text();
}

} // namespace inctl
