// inctl trace: what a running host traces, live.
#include "inctl/attachment.hpp"
#include "inctl/command.hpp"
#include "inctl/object_state.hpp"
#include "inctl/store_text.hpp"
#include "inctl/trace_sink.hpp"

#include "pb/pb_buffer.h"
#include "tr/tr_system.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>

namespace inctl {
namespace {

struct TraceOptions {
    std::string object; // "": everything
    bool tree = false;
    bool packets = false;
    HostChoice host;
};

int digit( char c )
{
    return c >= '0' && c <= '9' ? c - '0' : c >= 'a' && c <= 'f' ? c - 'a' + 10 : 0;
}

pb::Ref<struct pbBuffer> bytesOf( const std::string &hexadecimal )
{
    std::string bytes;
    for ( size_t i = 0; i + 1 < hexadecimal.size(); i += 2 )
        bytes += static_cast<char>( digit( hexadecimal[i] ) << 4 | digit( hexadecimal[i + 1] ) );
    return pb::adopt( pbBufferCreateFromBytes( bytes.data(), static_cast<pbInt>( bytes.size() ) ) );
}

// The line that the host would write into its own trace, with the name of the object in front of its stream.
std::string lineOf( const Output &output, const struct pbStore *record )
{
    const auto shown = [record]( const char *key ) { return printable( textIn( record, key ) ); };
    const std::string kind = shown( "event" );
    if ( kind == "lost" )
        return output.paint( Paint::Bad,
                             fmt::format( "{} lines came too fast and are lost", shown( "count" ) ) );
    const auto kinds = traceKinds();
    const auto found = std::find( kinds.begin(), kinds.end(), kind );
    if ( found == kinds.end() )
        return kind;
    const auto text = []( const struct pbStore *store, const char *key ) {
        return pb::adopt( pbStoreValueCstr( store, key, -1 ) );
    };
    const auto eventText = text( record, "text" ), key = text( record, "key" ), value = text( record, "value" );
    const auto store = pb::adopt( pbStoreStoreCstr( record, "store", -1 ) );
    const auto payload = bytesOf( textIn( record, "payload" ) );
    struct trEvent event = { .kind = found - kinds.begin(),
                             .text = eventText.get(),
                             .key = key.get(),
                             .value = value.get(),
                             .store = store.get(),
                             .payload = payload.get() };
    (void)pbStoreValueIntCstr( record, &event.other, "other", -1 ); // of links alone
    const std::string object = shown( "object" );
    return fmt::format( "{} {}{}#{}  {}", shown( "time" ),
                        object.empty() ? "" : output.paint( Paint::Strong, object ) + " ", shown( "name" ),
                        shown( "stream" ), traceText( event ) );
}

Exit follow( Output &output, const TraceOptions &options )
{
    Record request = Record().set( "request", "trace" ).set( "tree", options.tree ).set( "packets", options.packets );
    if ( !options.object.empty() )
        request.set( "object", options.object );
    Attachment( options.host ).follow(
        request, output, [&output]( const struct pbStore *event ) { return lineOf( output, event ); } );
    return Exit::Yes;
}

} // namespace

void addTrace( CLI::App &root, Context &context )
{
    CLI::App *command = addCommand( root, context, "trace", "Show what a running host traces, until Ctrl-C",
                                    "  inctl trace                  everything from now on\n"
                                    "  inctl trace sip --tree       sip and all that it works with, what stands first\n"
                                    "  inctl trace --packets --json | jq -r 'select(.payload).payload'\n" );
    auto options = std::make_shared<TraceOptions>();
    CLI::Option *object = command->add_option( "OBJECT", options->object, "Only this object" );
    command
        ->add_flag( "--tree", options->tree,
                    "And what is reached from it: the interfaces of a stack, the look-ups of a query" )
        ->needs( object );
    command->add_flag( "--packets", options->packets, "Every datagram with its bytes too" );
    addHostOptions( *command, options->host );
    command->callback(
        [&context, options] { context.run = [&context, options] { return follow( context.output, *options ); }; } );
}

} // namespace inctl
