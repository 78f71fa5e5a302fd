// inctl interfaces: the host's network interfaces, once or as they change.
#include "inctl/command.hpp"
#include "inctl/host.hpp"
#include "inctl/interface_view.hpp"
#include "inctl/waiter.hpp"

#include "in/nw/in_nw_interfaces.h"

#include <fmt/format.h>

#include <map>
#include <memory>

namespace inctl {
namespace {

struct InterfacesOptions {
    std::string name; // empty: all
    bool watch = false;
};

void keepNamed( std::vector<InterfaceView> &views, const std::string &name )
{
    if ( !name.empty() )
        std::erase_if( views, [&name]( const InterfaceView &view ) { return view.name() != name; } );
}

void showChange( Output &output, const char *change, Paint paint, const InterfaceView &view )
{
    output.line( fmt::format( "{}  {}  {}  {}", timeOfDay(), output.paint( paint, fmt::format( "{:<7}", change ) ),
                              view.name(), view.line() ) );
    output.record( view.record().set( "change", change ).set( "time", timeStamp() ) );
}

// What has changed since the last look, a line each. Registers before it reads, so that nothing is missed.
void showChanges( Output &output, Waiter &waiter, std::map<std::string, InterfaceView> &known, const std::string &name )
{
    inNwInterfacesUpdateAddSignalable( waiter.signalable() );
    for ( const auto &[key, view] : known )
        inNwInterfaceUpdateAddSignalable( view.interface.get(), waiter.signalable() );
    std::vector<InterfaceView> views = interfaces();
    keepNamed( views, name );

    std::map<std::string, InterfaceView> current;
    for ( InterfaceView &view : views ) {
        const auto before = known.find( view.name() );
        // An interface that went and came back under its name is another object.
        const bool same = before != known.end() && before->second.interface.is( view.interface );
        if ( !same ) {
            inNwInterfaceUpdateAddSignalable( view.interface.get(), waiter.signalable() );
            view.state = pb::adopt( inNwInterfaceState( view.interface.get() ) );
            showChange( output, "added", Paint::Good, view );
        }
        else if ( before->second.state != view.state )
            showChange( output, "changed", Paint::Plain, view );
        current.emplace( view.name(), std::move( view ) );
    }
    for ( const auto &[key, view] : known )
        if ( !current.contains( key ) ) {
            inNwInterfaceUpdateDelSignalable( view.interface.get(), waiter.signalable() );
            showChange( output, "ended", Paint::Bad, InterfaceView( view.interface ) );
        }
    known = std::move( current );
}

Exit showInterfaces( Output &output, const InterfacesOptions &options )
{
    const Host host;
    if ( !options.name.empty() )
        requireInterface( options.name );
    std::vector<InterfaceView> views = interfaces();
    keepNamed( views, options.name );
    printInterfaces( output, views );
    if ( !options.watch ) {
        output.record( Record().set( "interfaces", interfacesRecord( views ) ) );
        return views.empty() ? Exit::No : Exit::Yes;
    }

    Waiter waiter;
    std::map<std::string, InterfaceView> known;
    for ( InterfaceView &view : views ) {
        output.record( view.record().set( "change", "known" ).set( "time", timeStamp() ) );
        known.emplace( view.name(), std::move( view ) );
    }
    output.line( "Watching for changes; Ctrl-C ends." );
    do
        showChanges( output, waiter, known, options.name );
    while ( !output.broken() && waiter.wait( {} ) == Waiter::Woken::Library );
    inNwInterfacesUpdateDelSignalable( waiter.signalable() );
    for ( const auto &[key, view] : known )
        inNwInterfaceUpdateDelSignalable( view.interface.get(), waiter.signalable() );
    return Exit::Yes;
}

} // namespace

void addInterfaces( CLI::App &root, Context &context )
{
    CLI::App *command = addCommand( root, context, "interfaces", "Show the host's network interfaces",
                                    "  inctl interfaces               all, as a table\n"
                                    "  inctl interfaces eth0 --watch  each change of eth0 as it happens\n"
                                    "  inctl interfaces --json | jq -r '.interfaces[].identifier'\n" );
    auto options = std::make_shared<InterfacesOptions>();
    command->add_option( "NAME", options->name, "Only this interface" );
    command->add_flag( "--watch", options->watch, "Then a line for every change, until Ctrl-C" );
    command->callback( [&context, options] {
        context.run = [&context, options] { return showInterfaces( context.output, *options ); };
    } );
}

} // namespace inctl
