// inctl version: what is built into this program.
#include "inctl/command.hpp"
#include "inctl/host.hpp"
#include "inctl/table.hpp"

#include <fmt/format.h>

namespace inctl {
namespace {

Exit showVersion( Output &output )
{
    const pbModuleRecord &library = *modules().back()->record;
    const std::string product =
        fmt::format( "{}.{}.{}", library.productVersion[0], library.productVersion[1], library.productVersion[2] );
    Record modulesRecord;
    Table table{ { "MODULE" }, { "VERSION" }, { "DESCRIPTION" } };
    for ( const pbModule *module : modules() ) {
        const pbModuleRecord &record = *module->record;
        table.add( { Cell( record.name ), Cell( record.version ), Cell( record.description ) } );
        modulesRecord.append( Record()
                                  .set( "name", record.name )
                                  .set( "version", record.version )
                                  .set( "description", record.description ) );
    }
    output.line( fmt::format( "{} {} ({} {}, built {})\n", output.paint( Paint::Strong, "inctl" ), library.version,
                              library.productName, product, library.buildTime ) );
    table.print( output );
    output.record( Record()
                       .set( "name", library.name )
                       .set( "version", library.version )
                       .set( "description", library.description )
                       .set( "productName", library.productName )
                       .set( "productVersion", product )
                       .set( "buildTime", library.buildTime )
                       .set( "modules", modulesRecord ) );
    return Exit::Yes;
}

} // namespace

void addVersion( CLI::App &root, Context &context )
{
    CLI::App *command = addCommand( root, context, "version", "Show the versions of the library and its platform",
                                    "  inctl version\n"
                                    "  inctl version --json | jq -r .version\n" );
    command->callback( [&context] { context.run = [&context] { return showVersion( context.output ); }; } );
}

} // namespace inctl
