// What a host tells of its objects, for a person.
#include "inctl/status_text.hpp"

#include "inctl/attachment.hpp"
#include "inctl/object_state.hpp"
#include "inctl/store_text.hpp"
#include "inctl/table.hpp"

#include "cs/cs_json.h"

#include <fmt/format.h>

namespace inctl {
namespace {

using Store = pb::Ref<struct pbStore>;

Store storeIn( const struct pbStore *record, const char *key )
{
    auto store = pb::adopt( pbStoreStoreCstr( record, key, -1 ) );
    return store ? std::move( store ) : pb::adopt( pbStoreCreate() );
}

Paint paintOf( const std::string &state )
{
    return state == "up" || state == "ready" || state == "true" ? Paint::Good
           : state == "false"                                   ? Paint::Plain
                                                                : Paint::Bad;
}

// For people; what a host says may come from the network.
std::string printableIn( const struct pbStore *record, const char *key )
{
    return printable( textIn( record, key ) );
}

// Of an array; empty where the host has put something else.
Store storeAt( const Store &array, pbInt index )
{
    auto store = pb::adopt( pbStoreArrayStoreAt( array.get(), index ) );
    return store ? std::move( store ) : pb::adopt( pbStoreCreate() );
}

// The texts of an array, joined.
std::string joined( const Store &array, const char *separator )
{
    std::string text;
    for ( pbInt i = 0; i < pbStoreArrayLength( array.get() ); ++i )
        text += ( i > 0 ? separator : "" ) +
                printable( pb::utf8( pb::adopt( pbStoreArrayValueAt( array.get(), i ) ) ) );
    return text;
}

// "and 20 more", on a line of its own, where an array was cut off and its length told beside it.
std::string moreText( const struct pbStore *record, const char *array, const char *lengthKey )
{
    pbInt length = 0;
    const pbInt shown = pbStoreArrayLength( storeIn( record, array ).get() );
    return pbStoreValueIntCstr( record, &length, lengthKey, -1 ) && length > shown
               ? fmt::format( "\nand {} more", length - shown )
               : "";
}

void printHost( Output &output, const struct pbStore *answer )
{
    output.line( fmt::format( "{} (process {}) runs {} since {}",
                              output.paint( Paint::Strong, printableIn( answer, "host" ) ),
                              printableIn( answer, "process" ), printableIn( answer, "file" ),
                              printableIn( answer, "since" ) ) );
    if ( const auto refused = pb::adopt( pbStoreStoreCstr( answer, "refused", -1 ) ) ) {
        output.line( output.paint( Paint::Bad, fmt::format( "The file was refused at {}; what ran before it runs on:",
                                                            printableIn( refused.get(), "time" ) ) ) );
        output.line( joined( storeIn( refused.get(), "problems" ), "\n" ) );
    }
}

void printStore( Output &output, const char *heading, const Store &store )
{
    output.line( fmt::format( "\n{}:", output.paint( Paint::Strong, heading ) ) );
    output.line( pb::utf8( pb::adopt( csJsonFromStore( store.get(), CS_JSON_PRETTY ) ) ) );
}

void printStack( Output &output, const struct pbStore *stack )
{
    const auto orNone = []( const std::string &text ) { return text.empty() ? std::string( "none" ) : text; };
    output.line( fmt::format( "  address            {}", orNone( printableIn( stack, "address" ) ) ) );
    output.line( fmt::format( "  primary interface  {}", orNone( printableIn( stack, "primaryInterface" ) ) ) );
    output.line( fmt::format( "  interfaces         {}", orNone( joined( storeIn( stack, "interfaces" ), ", " ) ) ) );
    printStore( output, "Options in effect, with defaults", storeIn( stack, "options" ) );

    const Store dns = storeIn( stack, "dns" ), queries = storeIn( dns.get(), "queries" );
    const pbInt shown = pbStoreArrayLength( queries.get() );
    const std::string length = printableIn( dns.get(), "length" );
    output.line( fmt::format( "\n{}: {}{}", output.paint( Paint::Strong, "DNS queries" ), length,
                              length == std::to_string( shown ) ? "" : fmt::format( ", the first {}", shown ) ) );
    if ( shown == 0 )
        return;
    Table table{ { "KIND" }, { "OF" }, { "STATE" }, { "MS LEFT", true }, { "RESULT" } };
    for ( pbInt i = 0; i < shown; ++i ) {
        const Store query = storeAt( queries, i );
        const std::string state = printableIn( query.get(), "state" );
        table.add( { Cell( printableIn( query.get(), "kind" ) ), Cell( printableIn( query.get(), "key" ) ),
                     Cell( state, state == "failed" ? Paint::Bad : Paint::Plain ),
                     Cell( printableIn( query.get(), "remaining" ) ),
                     Cell( joined( storeIn( query.get(), "result" ), "\n" ) +
                           moreText( query.get(), "result", "resultLength" ) ) } );
    }
    table.print( output );
}

// "198.51.100.7", "192.0.2.0/24", each with the name that it was looked up for.
std::string addressesText( const Store &addresses )
{
    std::string text;
    for ( pbInt i = 0; i < pbStoreArrayLength( addresses.get() ); ++i ) {
        const Store address = storeAt( addresses, i );
        const std::string bits = printableIn( address.get(), "bits" ), name = printableIn( address.get(), "name" );
        text += fmt::format( "{}{}{}{}", i > 0 ? "\n" : "", printableIn( address.get(), "address" ),
                             bits.empty() ? "" : "/" + bits, name.empty() ? "" : "  of " + name );
    }
    return text;
}

void printFilter( Output &output, const struct pbStore *filter )
{
    const bool published = textIn( filter, "published" ) == "true",
               rebuilding = textIn( filter, "rebuilding" ) == "true";
    output.line( fmt::format( "  list in force      {}",
                              published ? printableIn( filter, "addresses" ) + " addresses and networks"
                                        : "none yet: nobody is permitted" ) );
    output.line( fmt::format( "  rebuilding         {}", rebuilding ? "yes, names are being looked up" : "no" ) );
    if ( const std::string address = printableIn( filter, "stackAddress" ); !address.empty() )
        output.line( fmt::format( "  stack's address    {}, permitted", address ) );
    const Store entries = storeIn( filter, "entries" );
    const pbInt shown = pbStoreArrayLength( entries.get() );
    if ( shown == 0 )
        return;
    const std::string length = printableIn( filter, "length" );
    output.line( fmt::format( "\n{}: {}{}", output.paint( Paint::Strong, "Entries" ), length,
                              length == std::to_string( shown ) ? "" : fmt::format( ", the first {}", shown ) ) );
    Table table{ { "ENTRY", true }, { "HOST" }, { "PERMITS" }, { "NOTES" } };
    for ( pbInt i = 0; i < shown; ++i ) {
        const Store entry = storeAt( entries, i );
        std::string notes;
        const Store noteList = storeIn( entry.get(), "notes" );
        for ( pbInt j = 0; j < pbStoreArrayLength( noteList.get() ); ++j ) {
            const Store note = storeAt( noteList, j );
            notes += fmt::format( "{}{}: {}", j > 0 ? "\n" : "", printableIn( note.get(), "name" ),
                                  printableIn( note.get(), "text" ) );
        }
        table.add( { Cell( printableIn( entry.get(), "entry" ) ), Cell( printableIn( entry.get(), "host" ) ),
                     Cell( addressesText( storeIn( entry.get(), "addresses" ) ) +
                           moreText( entry.get(), "addresses", "addressesLength" ) ),
                     Cell( notes, Paint::Bad ) } );
    }
    table.print( output );
}

} // namespace

std::string stateText( const Output &output, const std::string &state )
{
    return output.paint( paintOf( state ), fmt::format( "{:<5}", state ) );
}

std::string detailText( const struct pbStore *object )
{
    if ( std::string reason = textIn( object, "reason" ); !reason.empty() )
        return printable( std::move( reason ) );
    std::string text;
    const Store items = storeIn( object, "items" );
    for ( pbInt i = 0; i < pbStoreLength( items.get() ); ++i )
        if ( pbStoreIsValueAt( items.get(), i ) )
            text += fmt::format( "{}{}={}", text.empty() ? "" : "  ",
                                 pb::utf8( pb::adopt( pbStoreKeyAt( items.get(), i ) ) ),
                                 pb::utf8( pb::adopt( pbStoreValueAt( items.get(), i ) ) ) );
    return printable( std::move( text ) );
}

void printStatus( Output &output, const struct pbStore *answer )
{
    printHost( output, answer );
    const Store objects = storeIn( answer, "objects" );
    Table table{ { "OBJECT" }, { "SORT" }, { "STATE" }, { "DETAIL" } };
    for ( pbInt i = 0; i < pbStoreArrayLength( objects.get() ); ++i ) {
        const Store object = storeAt( objects, i );
        const std::string state = printableIn( object.get(), "state" );
        table.add( { Cell( printableIn( object.get(), "name" ) ), Cell( printableIn( object.get(), "sort" ) ),
                     Cell( state, paintOf( state ) ), Cell( detailText( object.get() ) ) } );
    }
    if ( pbStoreArrayLength( objects.get() ) > 0 )
        table.print( output );
    else
        output.line( "It has no objects." );
}

void printDetails( Output &output, const struct pbStore *answer )
{
    printHost( output, answer );
    const Store object = storeAt( storeIn( answer, "objects" ), 0 );
    output.line( fmt::format( "\n{}  {}  {}", output.paint( Paint::Strong, printableIn( object.get(), "name" ) ),
                              printableIn( object.get(), "sort" ),
                              stateText( output, printableIn( object.get(), "state" ) ) ) );
    if ( const std::string detail = detailText( object.get() ); !detail.empty() )
        output.line( "  " + detail );
    if ( const auto stack = pb::adopt( pbStoreStoreCstr( object.get(), "stack", -1 ) ) )
        printStack( output, stack.get() );
    if ( const auto filter = pb::adopt( pbStoreStoreCstr( object.get(), "filter", -1 ) ) )
        printFilter( output, filter.get() );
    printStore( output, "Configuration", storeIn( object.get(), "config" ) );
}

} // namespace inctl
