// inctl check: what is wrong with a configuration file, and what should be known about it.
#include "inctl/command.hpp"
#include "inctl/configuration.hpp"
#include "inctl/help_formatter.hpp"
#include "inctl/host.hpp"
#include "inctl/items.hpp"

#include "cs/cs_diagnosis.h"
#include "cs/cs_schema.h"

#include <fmt/format.h>

#include <memory>

namespace inctl {
namespace {

struct CheckOptions {
    std::string file;
    bool online = false;
    bool strict = false;
    bool schema = false;
};

std::string counted( size_t count, std::string_view name )
{
    return fmt::format( "{} {}{}", count, name, count == 1 ? "" : "s" );
}

std::string summary( size_t errors, size_t warnings )
{
    std::string text = errors ? "bad, " + counted( errors, "error" ) : "good";
    if ( warnings )
        text += ( errors ? " and " : ", but " ) + counted( warnings, "warning" );
    return text;
}

Exit checkFile( Output &output, const CheckOptions &options )
{
    const Host host;
    size_t errors = 0, warnings = 0;
    Exit worst = Exit::Yes;
    Record diagnoses;
    for ( const auto &diagnosis :
          items( pb::adopt( csDiagnoseFile( pathOf( options.file ).get(), options.online ) ), csDiagnosisFrom ) ) {
        const bool isError = csDiagnosisSeverity( diagnosis.get() ) == CS_DIAGNOSIS_ERROR;
        ( isError ? errors : warnings ) += static_cast<size_t>( csDiagnosisCount( diagnosis.get() ) );
        if ( isError )
            worst = exitOf( csDiagnosisOrigin( diagnosis.get() ) );
        output.line( output.paint( isError ? Paint::Bad : Paint::Plain,
                                   pb::utf8( pb::adopt( csDiagnosisToString( diagnosis.get() ) ) ) ) );
        diagnoses.append( pb::adopt( csDiagnosisStore( diagnosis.get() ) ) );
    }
    const bool unread = worst == Exit::System || worst == Exit::Permission;
    output.line( fmt::format( "{}: {}", options.file, unread ? "not read" : summary( errors, warnings ) ) );
    output.record( Record()
                       .set( "file", options.file )
                       .set( "errors", errors )
                       .set( "warnings", warnings )
                       .set( "diagnoses", diagnoses ) );
    return worst == Exit::Yes && options.strict && warnings ? Exit::Configuration : worst;
}

Exit showSchema( Output &output )
{
    const Host host;
    output.text( pb::utf8( pb::adopt( csSchema() ) ) );
    return Exit::Yes;
}

Exit check( Output &output, const CheckOptions &options )
{
    if ( options.schema )
        return showSchema( output );
    if ( options.file.empty() )
        throw Failure{ Exit::Usage, "FILE is required, or --schema" };
    return checkFile( output, options );
}

} // namespace

void addCheck( CLI::App &root, Context &context )
{
    CLI::App *command = addCommand( root, context, "check", "Tell what is wrong with a configuration file",
                                    "  inctl check server.json                every mistake in one pass; exit code 3\n"
                                    "  inctl check server.json --online       also what this host makes of it\n"
                                    "  inctl check --schema > in.schema.json  for editors\n" );
    auto options = std::make_shared<CheckOptions>();
    CLI::Option *file = command->add_option( "FILE", options->file, "The configuration, JSON with comments" );
    CLI::Option *online = command->add_flag( "--online", options->online, "Compare it with this host, too" );
    CLI::Option *strict = command->add_flag( "--strict", options->strict, "A warning makes the file bad, too" );
    command->add_flag( "--schema", options->schema, "Print the JSON schema of configuration files" )
        ->excludes( file )
        ->excludes( online )
        ->excludes( strict );
    command->callback(
        [&context, options] { context.run = [&context, options] { return check( context.output, *options ); }; } );
}

} // namespace inctl
