// AttachDesk: answers the requests of clients.
#include "inctl/attach_desk.hpp"

#include "inctl/attach_view.hpp"
#include "inctl/exit_code.hpp"
#include "inctl/nearest.hpp"
#include "inctl/output.hpp"
#include "inctl/record_keys.hpp"
#include "inctl/records.hpp"
#include "inctl/store_text.hpp"

#include "cs/cs_condition.h"
#include "pb/pb_buffer.h"
#include "pb/pb_charset.h"

#include <fmt/format.h>

#include <filesystem>
#include <unistd.h>

namespace inctl {
namespace {

constexpr int protocolVersion = 1;
const std::vector<std::string> requestNames = { "status", "watch", "trace", "set" };

std::string lineOf( const Record &record )
{
    return jsonText( record, CS_JSON_SHORT ) + "\n";
}

[[noreturn]] void refuse( const std::string &sentence, Exit exit = Exit::Usage )
{
    throw Failure{ exit, sentence };
}

// Null when it is no JSON object.
pb::Ref<struct pbStore> parsed( const std::string &line )
{
    const auto bytes = pb::adopt( pbBufferCreateFromBytes( line.data(), static_cast<pbInt>( line.size() ) ) );
    const auto text = pb::adopt( pbCharsetTryConvertBufferToStringWithFlags( PB_CHARSET_UTF8, bytes.get(), 0 ) );
    return text ? pb::adopt( csJsonTryToStore( text.get() ) ) : nullptr;
}

void requireValue( const struct pbStore *request, const char *key, const char *what )
{
    if ( pb::adopt( pbStoreStoreCstr( request, key, -1 ) ) )
        refuse( fmt::format( "\"{}\" must be {}", key, what ) );
}

std::string textOf( const struct pbStore *request, const char *key )
{
    requireValue( request, key, "a text" );
    return textIn( request, key );
}

bool flagOf( const struct pbStore *request, const char *key )
{
    pbBool flag = 0;
    requireValue( request, key, "true or false" );
    if ( pbStoreHasValueCstr( request, key, -1 ) && !pbStoreValueBoolCstr( request, &flag, key, -1 ) )
        refuse( fmt::format( "\"{}\" must be true or false", key ) );
    return flag != 0;
}

// Clients may stand in another directory.
std::string fromRoot( const std::string &file )
{
    std::error_code error; // a host whose directory is gone has no better name for it
    const std::string path = std::filesystem::absolute( file, error ).lexically_normal().string();
    return error ? file : path;
}

Record recordOfRefusal( const RunBoard::Refusal &refusal, const std::string &file )
{
    Record problems;
    for ( const std::string &problem : refusal.problems )
        problems.append( pb::string( problem ) );
    return Record().set( "time", refusal.time ).set( "file", file ).set( "problems", problems );
}

} // namespace

AttachDesk::AttachDesk( std::string name, const Configuration &configuration, RunBoard &board, AttachTrace &trace )
    : name_( std::move( name ) ), file_( fromRoot( configuration.path() ) ), since_( timeStamp() ),
      configuration_( configuration ), trace_( trace ), board_( board )
{
}

Record &AttachDesk::tellHost( Record &record ) const
{
    return record.set( "host", name_ )
        .set( "process", getpid() )
        .set( "file", file_ )
        .set( "since", since_ );
}

std::string AttachDesk::hello() const
{
    Record record;
    record.set( "event", "hello" ).set( "protocol", protocolVersion );
    return lineOf( tellHost( record ) );
}

std::string AttachDesk::error( const std::string &sentence, int exit )
{
    return lineOf( Record().set( "error", sentence ).set( "exit", exit ) );
}

std::string AttachDesk::answer( AttachClient &client, const std::string &line )
{
    try {
        const auto request = parsed( line );
        if ( !request ) {
            client.closeWhenWritten();
            refuse( "not a JSON object on a line" );
        }
        return lineOf( perform( client, request.get() ) );
    } catch ( const Failure &failure ) {
        return error( failure.sentence, static_cast<int>( failure.exit ) );
    }
}

Record AttachDesk::perform( AttachClient &client, const struct pbStore *request )
{
    const std::string name = textOf( request, "request" );
    if ( name == "status" )
        return status( request );
    if ( name == "watch" )
        return watch( client, request );
    if ( name == "trace" )
        return trace( client, request );
    if ( name == "set" )
        return set( request );
    refuse( fmt::format( "unknown request {}{}", name.empty() ? "(none)" : name, suggestion( name, requestNames ) ) );
}

pb::Ref<struct csRecord> AttachDesk::recordAskedFor( const std::string &name ) const
{
    if ( auto record = recordNamed( configuration_.configuration(), name ) )
        return record;
    std::vector<std::string> names;
    for ( const auto &record : recordsOf( configuration_.configuration() ) )
        names.push_back( pb::utf8( pb::adopt( csRecordName( record.get() ) ) ) );
    refuse( fmt::format( "the host {} has no object {}{}", name_, name, suggestion( name, names ) ), Exit::No );
}

Record AttachDesk::status( const struct pbStore *request ) const
{
    Record answer = Record().set( "answer", "status" );
    tellHost( answer );
    if ( const RunBoard::Refusal refusal = board_.refusal(); !refusal.problems.empty() )
        answer.set( "refused", recordOfRefusal( refusal, configuration_.path() ) );
    Record objects;
    if ( const std::string object = textOf( request, "object" ); !object.empty() )
        objects.append( detailsOf( recordAskedFor( object ).get() ) );
    else
        for ( const auto &record : recordsOf( configuration_.configuration() ) )
            objects.append( recordOf( stateOf( record.get() ) ) );
    return answer.set( "objects", objects );
}

Record AttachDesk::watch( AttachClient &client, const struct pbStore *request ) const
{
    std::string object = textOf( request, "object" );
    if ( !object.empty() )
        (void)recordAskedFor( object );
    client.watchedObject = std::move( object );
    client.watching = client.fresh = true;
    if ( const RunBoard::Refusal refusal = board_.refusal(); !refusal.problems.empty() )
        client.note( lineOf( recordOfRefusal( refusal, configuration_.path() ).set( "event", "refused" ) ) );
    return Record().set( "answer", "watch" );
}

Record AttachDesk::trace( AttachClient &client, const struct pbStore *request )
{
    const TraceWish wish{ textOf( request, "object" ), flagOf( request, "tree" ), flagOf( request, "packets" ) };
    if ( !wish.object.empty() )
        (void)recordAskedFor( wish.object );
    if ( wish.tree && wish.object.empty() )
        refuse( "\"tree\" needs an \"object\" to begin at" );
    if ( client.trace )
        refuse( "traces are on their way already" );
    client.trace = trace_.subscribe( wish );
    client.fresh = true;
    return Record().set( "answer", "trace" );
}

Record AttachDesk::set( const struct pbStore *request ) const
{
    const std::string name = textOf( request, "condition" );
    if ( name.empty() )
        refuse( "\"condition\" is missing, the name of an object" );
    const bool value = flagOf( request, "value" );
    if ( !pbStoreHasValueCstr( request, "value", -1 ) )
        refuse( "\"value\" is missing, true or false" );
    const auto record = recordAskedFor( name );
    const auto object = pb::adopt( csRecordObject( record.get() ) );
    if ( const std::string sort = pb::utf8( pb::adopt( csRecordSortName( record.get() ) ) ); sort != "CS_CONDITION" )
        refuse( fmt::format( "the object {} is of the sort {}, not a condition (CS_CONDITION)", name, sort ),
                Exit::No );
    if ( !object )
        refuse( fmt::format( "the condition {} is not there yet", name ), Exit::No );
    csConditionSetValue( csConditionFrom( object.get() ), value );
    return Record().set( "answer", "set" ).set( "condition", name ).set( "state", value ? "true" : "false" );
}

std::string AttachDesk::fileEvent()
{
    const RunBoard::Refusal refusal = board_.refusal();
    if ( std::exchange( refusedAt_, refusal.time ) == refusal.time )
        return "";
    if ( refusal.problems.empty() )
        return lineOf( Record().set( "event", "accepted" ).set( "time", timeStamp() ) );
    return lineOf( recordOfRefusal( refusal, configuration_.path() ).set( "event", "refused" ) );
}

} // namespace inctl
