// inctl manual: fills the parts of the manual pages that the program itself knows into their templates. Not shown; the
// build uses it.
#include "inctl/command.hpp"
#include "inctl/help_formatter.hpp"
#include "inctl/host.hpp"
#include "inctl/items.hpp"

#include "cs/cs_key.h"
#include "cs/cs_schema.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <span>

namespace inctl {
namespace {

// Text as mdoc(7) takes it in the middle of a line, or as an argument of a macro.
std::string escaped( std::string_view text )
{
    std::string result;
    for ( const char c : text )
        result += c == '\\' ? "\\e" : c == '-' ? "\\-" : c == '"' ? "\\(dq" : c == '\'' ? "\\(aq" : std::string( 1, c );
    return result;
}
// A sentence in lines of its own, which are short enough for the style of manual pages.
std::string sentence( std::string_view text )
{
    constexpr size_t longest = 78;
    std::string lines, line;
    for ( const std::string &word : CLI::detail::split( escaped( text ) + ".", ' ' ) ) {
        if ( !line.empty() && line.size() + 1 + word.size() > longest ) {
            lines += line + "\n";
            line.clear();
        }
        // A full stop at the beginning would make the line a request.
        line += line.empty() ? ( word[0] == '.' ? "\\&" : "" ) + word : " " + word;
    }
    return lines + line + "\n";
}

std::string optionHead( const CLI::Option &option )
{
    const bool needsValue = option.get_expected_min() > 0, mayHaveValue = !option.get_type_name().empty();
    std::string names;
    for ( const std::string &name : option.get_snames() )
        names += fmt::format( " Fl {} ,", name );
    for ( const std::string &name : option.get_lnames() )
        names += fmt::format( " Fl \\-{} ,", escaped( name ) );
    names.erase( names.size() - 2 ); // the last comma
    if ( needsValue )
        names += fmt::format( " Ar {}", option.get_type_name() );
    else if ( mayHaveValue )
        names += fmt::format( " Ns Op Ns = Ns Ar {}", option.get_type_name() );
    return names;
}

std::string path( const CLI::App &command )
{
    const CLI::App *parent = command.get_parent();
    std::string text = parent && parent->get_parent() ? path( *parent ) + " " : "";
    for ( const CLI::Option *option : command.get_options( []( const CLI::Option * ) { return true; } ) )
        if ( option->get_positional() && command.get_require_subcommand_min() > 0 )
            return text + command.get_name() + " Ar " + option->get_name();
    return text + command.get_name();
}

void writeCommand( std::string &text, CLI::App &command )
{
    auto options = command.get_options( []( const CLI::Option * ) { return true; } );
    std::string head = path( command );
    for ( const CLI::Option *option : options )
        if ( option->get_positional() && command.get_require_subcommand_min() == 0 )
            head += option->get_required() ? " Ar " + option->get_name() : " Op Ar " + option->get_name();
    text += fmt::format( ".It Nm Cm {}\n", head ) + sentence( command.get_description() );
    text += ".Bl -tag -width Ds -compact\n";
    for ( const CLI::Option *option : options )
        text += ( option->get_positional() ? ".It Ar " + option->get_name() : ".It" + optionHead( *option ) ) + "\n" +
                sentence( option->get_description() );
    text += ".El\n";
    for ( CLI::App *child : command.get_subcommands( []( const CLI::App *app ) { return isShown( *app ); } ) )
        writeCommand( text, *child );
}

std::string commandsText( CLI::App &root )
{
    std::string text = ".Bl -tag -width Ds\n";
    for ( CLI::App *child : root.get_subcommands( []( const CLI::App *app ) { return isShown( *app ); } ) )
        writeCommand( text, *child );
    return text + ".El\n";
}

void writeKeys( std::string &text, std::span<const csKey> keys, const std::string &prefix )
{
    for ( const csKey &key : keys ) {
        const std::string name = prefix + key.key;
        text += fmt::format( ".It Cm {}\n", escaped( name ) );
        if ( key.description )
            text += sentence( key.description );
        const bool isStore = key.kind == CS_KEY_STORE && key.keys;
        if ( isStore )
            text += sentence( "An object of the keys that follow" );
        else
            text += sentence( "Expected: " + pb::utf8( pb::adopt( csSchemaExpected( &key ) ) ) );
        if ( key.recordSort )
            text += sentence( fmt::format( "The record must be of the sort {}", key.recordSort ) );
        if ( isStore )
            writeKeys( text, { key.keys, static_cast<size_t>( key.keyCount ) }, name + "." );
        // The entries of an array have no key of their own.
        else if ( key.kind == CS_KEY_ARRAY && key.keys && key.keys[0].kind == CS_KEY_STORE )
            writeKeys( text, { key.keys[0].keys, static_cast<size_t>( key.keys[0].keyCount ) }, name + "." );
    }
}

std::string keysText()
{
    const Host host;
    std::string text;
    for ( const auto &name : items( pb::adopt( csSchemaSortNames() ), pbStringFrom ) ) {
        pbInt count = 0;
        const csKey *keys = csSchemaKeys( name.get(), &count );
        text += fmt::format( ".Ss {}\n", escaped( pb::utf8( name ) ) );
        text += ".Bl -tag -width Ds\n";
        writeKeys( text, { keys, static_cast<size_t>( count ) }, "" );
        text += ".El\n";
    }
    return text;
}

Exit fill( Output &output, CLI::App &root, const std::string &file )
{
    std::ifstream in( file );
    if ( !in )
        throw Failure{ Exit::System, fmt::format( "{} cannot be read", file ) };
    std::string text;
    for ( std::string line; std::getline( in, line ); )
        text += line == "@COMMANDS@" ? commandsText( root ) : line == "@KEYS@" ? keysText() : line + "\n";
    text.pop_back(); // writing ends the last line
    output.text( text );
    return Exit::Yes;
}

} // namespace

void addManual( CLI::App &root, Context &context )
{
    CLI::App *command = addCommand( root, context, "manual", "Fill the template of a manual page", "" );
    command->group( "" );
    auto file = std::make_shared<std::string>();
    command->add_option( "TEMPLATE", *file, "A page with lines @COMMANDS@ or @KEYS@" )->required();
    command->callback( [&root, &context, file] {
        context.run = [&root, &context, file] { return fill( context.output, root, *file ); };
    } );
}

} // namespace inctl
