// Why a stack has the address that it has, told by the library's own choice.
#include "inctl/explain.hpp"
#include "inctl/interface_view.hpp"
#include "inctl/nearest.hpp"
#include "inctl/record_keys.hpp"
#include "inctl/store_text.hpp"
#include "inctl/table.hpp"

#include "in/base/in_options.h"
#include "in/base/in_stack.h"
#include "in/nw/in_nw_address_choice.h"

#include <fmt/format.h>

#include <algorithm>

namespace inctl {
namespace {

using Store = pb::Ref<struct pbStore>;

std::string joined( const Store &store, const char *key )
{
    const Store array = pb::adopt( pbStoreStoreCstr( store.get(), key, -1 ) );
    std::string result;
    for ( pbInt i = 0; i < pbStoreArrayLength( array.get() ); ++i )
        result += ( i ? ", " : "" ) + pb::utf8( pb::adopt( pbStoreArrayValueAt( array.get(), i ) ) );
    return result;
}

pbInt score( const Store &candidate )
{
    pbInt value = 0;
    (void)pbStoreValueIntCstr( candidate.get(), &value, "score", -1 ); // every candidate has one
    return value;
}

std::string verdict( const Store &candidate, const Store &best )
{
    if ( const std::string keys = joined( candidate, "excludedBy" ); !keys.empty() )
        return "excluded by " + keys;
    if ( textIn( candidate, "address" ) == textIn( best, "address" ) )
        return "chosen";
    return score( candidate ) < score( best ) ? "admitted, but " + textIn( best, "class" ) + " is better"
                                              : "admitted, but another of its class comes first";
}

void print( Output &output, const Store &choice )
{
    const std::vector<Store> candidates = storesIn( choice, "candidates" );
    const auto best =
        std::max_element( candidates.begin(), candidates.end(),
                          []( const Store &a, const Store &b ) { return score( a ) < score( b ); } );
    Table table{ { "ADDRESS" }, { "INTERFACE" }, { "CLASS" }, { "VERDICT" } };
    for ( const Store &candidate : candidates ) {
        const std::string told = verdict( candidate, *best );
        table.add( { Cell( textIn( candidate, "address" ) ), Cell( textIn( candidate, "interface" ) ),
                     Cell( textIn( candidate, "class" ) ),
                     Cell( told, told == "chosen" ? Paint::Good : Paint::Faint ) } );
    }
    table.print( output );
}

// What the options say, but for what plays no part in the choice.
std::string demands( const struct inOptions *options )
{
    const Store store = pb::adopt( inOptionsStore( options, false ) );
    std::string result;
    for ( const char *key : { "interface", "addressVersion", "network", "address", "flags" } )
        if ( const std::string value = textIn( store, key ); !value.empty() )
            result += fmt::format( "{}{} {}", result.empty() ? "" : ", ", key, value );
    return result.empty() ? "any address of the host" : result;
}

// An interface that the host lacks explains an empty choice better than the addresses of the others.
std::string absentInterface( const struct inOptions *options )
{
    const auto wanted = pb::adopt( inOptionsInterface( options ) );
    std::vector<std::string> names;
    for ( const InterfaceView &view : interfaces() )
        names.push_back( view.name() );
    if ( !wanted || std::find( names.begin(), names.end(), pb::utf8( wanted ) ) != names.end() )
        return "";
    return fmt::format( ": no interface is named {}{}", pb::utf8( wanted ), suggestion( pb::utf8( wanted ), names ) );
}

} // namespace

Exit explainStack( Output &output, const Configuration &configuration, const std::vector<std::string> &arguments,
                   pbInt )
{
    const std::string &name = arguments[0];
    const auto options = pb::adopt( inOptionsRestore( configuration.store( name, inStackSort() ).get() ) );
    const Store choice = pb::adopt( inNwExplainAddressChoice( options.get(), nullptr ) );
    output.line( fmt::format( "{} asks for: {}\n", output.paint( Paint::Strong, name ), demands( options.get() ) ) );
    print( output, choice );

    const std::string address = textIn( choice, "address" ), primary = textIn( choice, "primaryInterface" );
    if ( address.empty() )
        output.line( fmt::format( "\nNo address is chosen{}.", absentInterface( options.get() ) ) );
    else
        output.line( fmt::format( "\nChosen: {}, primary interface {}, interfaces {}.", address, primary,
                                  joined( choice, "interfaces" ) ) );
    output.line( "A stack that runs keeps the address that it has while no other class is better." );
    output.record( Record().set( "object", name ).set( "choice", choice ) );
    return address.empty() ? Exit::No : Exit::Yes;
}

} // namespace inctl
