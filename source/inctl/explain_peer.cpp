// Why a filter lets a peer in or not, told by the library from the list that it checks with.
#include "inctl/explain.hpp"
#include "inctl/filter_answer.hpp"
#include "inctl/object_state.hpp"
#include "inctl/store_text.hpp"
#include "inctl/table.hpp"

#include "pb/pb_store.h"

#include <fmt/format.h>

namespace inctl {
namespace {

using Store = pb::Ref<struct pbStore>;

std::string network( const Store &address )
{
    const std::string bits = textIn( address, "bits" );
    return textIn( address, "address" ) + ( bits.empty() ? "" : "/" + bits );
}

// A row for each address or network of an entry, and one for each name of it that contributes nothing.
void addEntry( Table &table, const Store &entry )
{
    const std::string number = textIn( entry, "entry" );
    for ( const Store &address : storesIn( entry, "addresses" ) ) {
        const std::string name = textIn( address, "name" ), matching = textIn( address, "matchingBits" );
        table.add( { Cell( number ), Cell( printable( name.empty() ? textIn( entry, "host" ) : name ) ),
                     Cell( network( address ) ),
                     Cell( matching.empty() ? "other version" : matching + " bits agree" ) } );
    }
    for ( const Store &note : storesIn( entry, "notes" ) )
        table.add( { Cell( number ), Cell( printable( textIn( note, "name" ) ) ), Cell( "" ),
                     Cell( printable( textIn( note, "text" ) ), Paint::Faint ) } );
}

} // namespace

Exit explainPeer( Output &output, const Configuration &configuration, const std::vector<std::string> &arguments,
                  pbInt timeout )
{
    constexpr size_t most = 1000; // entries, for a person
    const FilterQuestion question{ arguments[0], arguments[1], timeout };
    const FilterAnswer answer = askFilter( configuration, question );
    Table table{ { "ENTRY", true }, { "HOST" }, { "LETS IN" }, { "THE PEER" } };
    const std::vector<Store> all = storesIn( answer.explanation, "entries" );
    for ( size_t i = 0; i < all.size() && i < most; ++i )
        addEntry( table, all[i] );
    table.print( output );
    if ( all.size() > most )
        output.line( fmt::format( "... and {} more entries", all.size() - most ) );
    if ( const std::string own = textIn( answer.explanation, "stackAddress" ); !own.empty() )
        output.line( fmt::format( "The stack's own address, {}, is let in as well.", own ) );
    output.line( fmt::format( "\n{} {}", printable( question.address ),
                              output.paint( answer.permitted ? Paint::Good : Paint::Bad,
                                            printable( answer.sentence( question ) ) ) ) );
    output.record( Record()
                       .set( "object", question.filter )
                       .set( "complete", answer.complete )
                       .set( "explanation", answer.explanation ) );
    return answer.permitted ? Exit::Yes : Exit::No;
}

} // namespace inctl
