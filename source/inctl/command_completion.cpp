// inctl completion: the command line's own definition as a script that completes it in a shell.
#include "inctl/command.hpp"
#include "inctl/help_formatter.hpp"

#include <fmt/format.h>

#include <memory>

namespace inctl {
namespace {

using Commands = std::vector<CLI::App *>;

Commands shownCommands( CLI::App &command )
{
    return command.get_subcommands( []( const CLI::App *child ) { return isShown( *child ); } );
}

std::string joined( const std::vector<std::string> &names )
{
    return CLI::detail::join( names, " " );
}

// How a value of this type is completed: words of the script, which has the current word in $cur.
std::string completionOf( CLI::Option &option )
{
    if ( const std::vector<std::string> names = namesOf( option ); !names.empty() )
        return fmt::format( "words='{}'", joined( names ) );
    const std::string type = option.get_positional() ? option.get_name() : option.get_type_name();
    if ( type == "FILE" || type == "FILE:OBJECT" )
        return "files=1";
    if ( type == "NAME" ) // of an interface
        return "words=$(cd /sys/class/net 2>/dev/null && echo *)";
    return "";
}

class Script {
public:
    explicit Script( CLI::App &root ) { addCommand( root, root.get_name() ); }

    std::string text() const
    {
        return fmt::format( R"(# Completion of inctl for bash, made by: inctl completion bash
_inctl() {{
    local cur=${{COMP_WORDS[COMP_CWORD]}} command=inctl option='' words='' files='' i
    # bash takes "--option=value" for three words.
    if [[ $cur == = ]]; then
        cur='' option=${{COMP_WORDS[COMP_CWORD - 1]}}=
    elif [[ ${{COMP_WORDS[COMP_CWORD - 1]}} == = ]]; then
        option=${{COMP_WORDS[COMP_CWORD - 2]}}=
    else
        option=${{COMP_WORDS[COMP_CWORD - 1]}}
    fi
    for (( i = 1; i < COMP_CWORD; ++i )); do
        case "$command ${{COMP_WORDS[i]}}" in
{commands}        esac
    done
    COMPREPLY=()
    case "$command $option" in
{values}        *)
            if [[ $option == *= ]]; then return; fi
            if [[ $cur == -* ]]; then
                case $command in
{options}                esac
            else
                case $command in
{arguments}                esac
            fi ;;
    esac
    if [[ $words ]]; then mapfile -t COMPREPLY < <(compgen -W "$words" -- "$cur"); fi
    if [[ $files ]]; then
        compopt -o filenames 2>/dev/null
        mapfile -t -O "${{#COMPREPLY[@]}}" COMPREPLY < <(compgen -f -- "$cur")
    fi
}}
complete -F _inctl inctl
)",
                            fmt::arg( "commands", commands_ ), fmt::arg( "values", values_ ),
                            fmt::arg( "options", options_ ), fmt::arg( "arguments", arguments_ ) );
    }

private:
    void addCommand( CLI::App &command, const std::string &path )
    {
        std::vector<std::string> optionNames, words;
        std::string arguments;
        for ( CLI::Option *option : command.get_options( []( const CLI::Option * ) { return true; } ) ) {
            if ( option->get_positional() ) {
                if ( const std::string how = completionOf( *option ); !how.empty() )
                    arguments += how + "; ";
                continue;
            }
            for ( const std::string &name : option->get_lnames() ) {
                optionNames.push_back( "--" + name );
                addValue( path + " --" + name, *option );
            }
            for ( const std::string &name : option->get_snames() )
                optionNames.push_back( "-" + name );
        }
        options_ += fmt::format( "                    '{}') words='{}' ;;\n", path, joined( optionNames ) );
        for ( CLI::App *child : shownCommands( command ) ) {
            const std::string childPath = path + " " + child->get_name();
            words.push_back( child->get_name() );
            commands_ += fmt::format( "            '{0}') command='{0}' ;;\n", childPath );
        }
        if ( !words.empty() )
            arguments += fmt::format( "words+=' {}'; ", joined( words ) );
        if ( !arguments.empty() )
            arguments_ += fmt::format( "                    '{}') {};;\n", path, arguments );
        for ( CLI::App *child : shownCommands( command ) )
            addCommand( *child, path + " " + child->get_name() );
    }
    // An option that must have a value takes the next word; a flag that may have one takes it after "=".
    void addValue( const std::string &option, CLI::Option &of )
    {
        const bool needsOne = of.get_expected_min() > 0, mayHaveOne = !needsOne && !of.get_type_name().empty();
        const std::string how = completionOf( of );
        if ( needsOne )
            values_ += fmt::format( "        '{0}' | '{0}=') {1} ;;\n", option, how.empty() ? ":" : how );
        else if ( mayHaveOne && !how.empty() )
            values_ += fmt::format( "        '{}=') {} ;;\n", option, how );
    }

    std::string commands_, values_, options_, arguments_;
};

} // namespace

void addCompletion( CLI::App &root, Context &context )
{
    CLI::App *command =
        addCommand( root, context, "completion", "Print a script that completes inctl's command line in a shell",
                    "  source <(inctl completion bash)                               in this shell\n"
                    "  inctl completion bash > /etc/bash_completion.d/inctl          in all\n" );
    auto shell = std::make_shared<std::string>();
    command->add_option( "SHELL", *shell, "bash" )->required()->check( oneOf( { "bash" } ) );
    command->callback( [&root, &context, shell] { // which owns the place of the name
        context.run = [&root, &context] {
            context.output.text( Script( root ).text() );
            return Exit::Yes;
        };
    } );
}

} // namespace inctl
