// inctl explain: why the objects of a configuration do what they do on this host. Each subject is a row of a table.
#include "inctl/asking_host.hpp"
#include "inctl/command.hpp"
#include "inctl/configuration.hpp"
#include "inctl/explain.hpp"

#include <algorithm>
#include <iterator>
#include <memory>

namespace inctl {
namespace {

struct Argument {
    const char *name;
    const char *description;
};

struct Subject {
    const char *name;
    const char *description;
    const char *examples;
    std::vector<Argument> arguments;
    // The arguments come in their order, all of them.
    Exit ( *explain )( Output &output, const Configuration &configuration, const std::vector<std::string> &arguments,
                       pbInt timeout );
    bool looksNamesUp = false; // takes --timeout
};

const Subject subjects[] = {
    { "stack",
      "Tell which option excludes which address of this host, what is chosen, and why",
      "  inctl explain server.json stack sip\n"
      "  inctl explain server.json stack sip --json | jq -r .choice.address\n",
      { { "OBJECT", "The name of a stack (IN_STACK) in the file" } },
      explainStack },
    { "peer",
      "Tell which entries of a filter match a peer and in how many bits, what their names resolved to, and the verdict",
      "  inctl explain server.json peer phones 192.0.2.1\n"
      "  inctl explain server.json peer phones 192.0.2.1 --json | jq -r .explanation.text\n",
      { { "FILTER", "The name of a filter (IN_FILTER) in the file" }, { "ADDRESS", "The peer's IP address" } },
      explainPeer,
      true },
};

struct ExplainOptions {
    std::string file;
    std::vector<std::string> arguments;
    pbInt timeout = 5000;
};

Exit explain( Output &output, const Subject &subject, const ExplainOptions &options )
{
    startAskingHost();
    const Configuration configuration( options.file );
    return subject.explain( output, configuration, options.arguments, options.timeout );
}

void addSubject( CLI::App &command, Context &context, const Subject &subject,
                 const std::shared_ptr<ExplainOptions> &options )
{
    CLI::App *added = addCommand( command, context, subject.name, subject.description, subject.examples );
    // The file stands before the subject.
    added->formatter_fn( [help = added->get_formatter()]( const CLI::App *app, std::string name,
                                                          CLI::AppFormatMode mode ) {
        return help->make_help( app, name.insert( name.rfind( ' ' ), " FILE" ), mode );
    } );
    // Each in a place of its own, which the parser fills.
    auto values = std::make_shared<std::vector<std::string>>( subject.arguments.size() );
    for ( size_t i = 0; i < subject.arguments.size(); ++i )
        added->add_option( subject.arguments[i].name, ( *values )[i], subject.arguments[i].description )->required();
    if ( subject.looksNamesUp )
        addTimeout( *added, options->timeout );
    added->callback( [&context, &subject, options, values] {
        options->arguments = *values;
        context.run = [&context, &subject, options] { return explain( context.output, subject, *options ); };
    } );
}

} // namespace

void addExplain( CLI::App &root, Context &context )
{
    CLI::App *command = root.add_subcommand( "explain", "Tell why an object of a configuration does what it does" );
    command->require_subcommand( 1 );
    command->footer( exitCodes );
    auto options = std::make_shared<ExplainOptions>();
    command->add_option( "FILE", options->file, "The configuration, JSON with comments" )->required();
    for ( const Subject &subject : subjects )
        addSubject( *command, context, subject, options );
}

} // namespace inctl
