// Network interfaces as inctl shows them: a table row, a record, a line.
#include "inctl/interface_view.hpp"

#include "inctl/items.hpp"
#include "inctl/nearest.hpp"

#include "in/base/in_address.h"
#include "in/base/in_network.h"
#include "in/nw/in_nw_address.h"
#include "in/nw/in_nw_interface_status.h"
#include "in/nw/in_nw_interfaces.h"
#include "in/nw/in_nw_mac_address.h"

#include <fmt/format.h>

#include <algorithm>

namespace inctl {
namespace {

// What a driver that does not know its speed answers: 32 bits of ones, in Mbit/s (linux/ethtool.h, SPEED_UNKNOWN).
constexpr pbInt unknownSpeed = PB_INT_FROM( 0xFFFFFFFF ) * 1'000'000;

std::string speedText( const struct inNwInterfaceState *state )
{
    const pbInt speed = inNwInterfaceStateLayer2SpeedTransmit( state );
    if ( speed < 0 )
        return "-";
    if ( speed == unknownSpeed )
        return "unknown";
    if ( speed >= 1'000'000'000 )
        return fmt::format( "{:g} Gbit/s", static_cast<double>( speed ) / 1e9 );
    return fmt::format( "{:g} Mbit/s", static_cast<double>( speed ) / 1e6 );
}

std::string mtuText( const struct inNwInterfaceState *state )
{
    return inNwInterfaceStateLayer2HasMtu( state ) ? std::to_string( inNwInterfaceStateLayer2Mtu( state ) ) : "-";
}

std::string statusText( const struct inNwInterfaceState *state )
{
    switch ( inNwInterfaceStateStatus( state ) ) {
    case IN_NW_INTERFACE_STATUS_UP:
        return "up";
    case IN_NW_INTERFACE_STATUS_DOWN:
        return "down";
    default:
        return "unknown";
    }
}

Paint statusPaint( const struct inNwInterfaceState *state )
{
    return inNwInterfaceStateStatus( state ) == IN_NW_INTERFACE_STATUS_UP ? Paint::Good : Paint::Faint;
}

// The texts of all objects of a vector, or "-".
std::string texts( const pb::Ref<struct pbVector> &vector, const char *separator )
{
    std::string text;
    for ( pbInt i = 0; i < pbVectorLength( vector.get() ); ++i )
        text += ( i ? separator : "" ) +
                pb::utf8( pb::adopt( pbObjToString( pb::adopt( pbVectorObjAt( vector.get(), i ) ).get() ) ) );
    return text.empty() ? "-" : text;
}

std::string macTexts( const struct inNwInterfaceState *state )
{
    std::string text;
    for ( const auto &address :
          items( pb::adopt( inNwInterfaceStateLayer2AddressesVector( state ) ), inNwAddressFrom ) )
        if ( const auto mac = pb::adopt( inNwAddressMac( address.get() ) ) )
            text += ( text.empty() ? "" : "\n" ) + pb::utf8( pb::adopt( inNwMacAddressToString( mac.get() ) ) );
    return text.empty() ? "-" : text;
}

} // namespace

InterfaceView::InterfaceView( pb::Ref<struct inNwInterface> of )
    : interface( std::move( of ) ), state( pb::adopt( inNwInterfaceState( interface.get() ) ) )
{
}

std::string InterfaceView::name() const
{
    return pb::utf8( pb::adopt( inNwInterfaceIdentifier( interface.get() ) ) );
}

Record InterfaceView::record() const
{
    return Record()
        .set( "identifier", pb::adopt( inNwInterfaceIdentifier( interface.get() ) ) )
        .set( "state", pb::adopt( inNwInterfaceStateStore( state.get() ) ) );
}

std::string InterfaceView::line() const
{
    return fmt::format( "{}, {}, MTU {}, {}", statusText( state.get() ), speedText( state.get() ),
                        mtuText( state.get() ),
                        texts( pb::adopt( inNwInterfaceStateLayer3UnicastAddressesVector( state.get() ) ), " " ) );
}

std::vector<InterfaceView> interfaces()
{
    std::vector<InterfaceView> views;
    for ( auto &interface : items( pb::adopt( inNwInterfacesVector() ), inNwInterfaceFrom ) )
        views.emplace_back( std::move( interface ) );
    return views;
}

void requireInterface( const std::string &name )
{
    std::vector<std::string> names;
    for ( const InterfaceView &view : interfaces() )
        names.push_back( view.name() );
    if ( std::find( names.begin(), names.end(), name ) == names.end() )
        throw Failure{ Exit::No, fmt::format( "no interface is named {}{}", name, suggestion( name, names ) ) };
}

void printInterfaces( Output &output, const std::vector<InterfaceView> &views )
{
    Table table{ { "NAME" },        { "STATE" },     { "MAC" },     { "MTU", true },
                 { "SPEED", true }, { "ADDRESSES" }, { "NETWORKS" } };
    for ( const InterfaceView &view : views ) {
        const struct inNwInterfaceState *state = view.state.get();
        table.add( { Cell( view.name(), Paint::Strong ), Cell( statusText( state ), statusPaint( state ) ),
                     Cell( macTexts( state ) ), Cell( mtuText( state ) ), Cell( speedText( state ) ),
                     Cell( texts( pb::adopt( inNwInterfaceStateLayer3UnicastAddressesVector( state ) ), "\n" ) ),
                     Cell( texts( pb::adopt( inNwInterfaceStateLayer3NetworksVector( state ) ), "\n" ) ) } );
    }
    table.print( output );
}

Record interfacesRecord( const std::vector<InterfaceView> &views )
{
    Record list;
    for ( const InterfaceView &view : views )
        list.append( view.record() );
    return list;
}

} // namespace inctl
