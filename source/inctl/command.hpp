// What every sub-command shares: its place on the command line, its output, and how it comes to run.
#ifndef INCTL_COMMAND_HPP
#define INCTL_COMMAND_HPP

#include "inctl/exit_code.hpp"
#include "inctl/output.hpp"

#include "pb/pb_base.h"

#include <CLI/App.hpp>

#include <functional>
#include <string>

namespace inctl {

// What the command line has asked for.
struct Context {
    Output output;
    std::string jsonForm;      // of --json: "", "short" or "pretty"
    std::function<Exit()> run; // the sub-command, with its options
};

// The end of every --help.
inline constexpr const char *exitCodes = "Exit codes:\n"
                                  "  0 yes        1 the answer is no    2 wrong usage    3 bad configuration\n"
                                  "  4 not permitted (the message names the capability)  5 system error\n";

// A sub-command with --json; examples are shown below its options.
CLI::App *addCommand( CLI::App &parent, Context &context, const std::string &name, const std::string &description,
                      const std::string &examples );
void addJsonOption( CLI::App &command, Context &context );
// --timeout, for all look-ups of names together.
void addTimeout( CLI::App &command, pbInt &milliseconds );

// Not one of those that only the build uses.
inline bool isShown( const CLI::App &command )
{
    return !command.get_group().empty();
}

// Each in its own file: adds the sub-command, whose callback sets context.run.
void addInterfaces( CLI::App &root, Context &context );
void addDnsServers( CLI::App &root, Context &context );
void addResolve( CLI::App &root, Context &context );
void addUdpSend( CLI::App &udp, Context &context );
void addUdpReceive( CLI::App &udp, Context &context );
void addRun( CLI::App &root, Context &context );
void addStatus( CLI::App &root, Context &context );
void addWatch( CLI::App &root, Context &context );
void addTrace( CLI::App &root, Context &context );
void addSet( CLI::App &root, Context &context );
void addTour( CLI::App &root, Context &context );
void addTourNames( CLI::App &root, Context &context ); // run by the tour, not shown
void addCheck( CLI::App &root, Context &context );
void addMigrate( CLI::App &root, Context &context );
void addExplain( CLI::App &root, Context &context );
void addFilter( CLI::App &root, Context &context );
void addDoctor( CLI::App &root, Context &context );
void addCompletion( CLI::App &root, Context &context );
void addManual( CLI::App &root, Context &context ); // for the build of the manual pages, not shown
void addVersion( CLI::App &root, Context &context );

} // namespace inctl

#endif
