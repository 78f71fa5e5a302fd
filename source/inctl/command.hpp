// What every sub-command shares: its place on the command line, its output, and how it comes to run.
#ifndef INCTL_COMMAND_HPP
#define INCTL_COMMAND_HPP

#include "inctl/exit_code.hpp"
#include "inctl/output.hpp"

#include <CLI/CLI.hpp>

#include <functional>
#include <string>

namespace inctl {

// What the command line has asked for.
struct Context {
    Output output;
    std::string jsonForm;      // of --json: "", "short" or "pretty"
    std::function<Exit()> run; // the sub-command, with its options
};

// A sub-command with --json; examples are shown below its options.
CLI::App *addCommand( CLI::App &parent, Context &context, const std::string &name, const std::string &description,
                      const std::string &examples );
void addJsonOption( CLI::App &command, Context &context );

// Each in its own file: adds the sub-command, whose callback sets context.run.
void addInterfaces( CLI::App &root, Context &context );
void addDnsServers( CLI::App &root, Context &context );
void addUdpSend( CLI::App &udp, Context &context );
void addUdpReceive( CLI::App &udp, Context &context );
void addRun( CLI::App &root, Context &context );
void addTour( CLI::App &root, Context &context );
void addVersion( CLI::App &root, Context &context );

} // namespace inctl

#endif
