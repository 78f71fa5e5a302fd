// inctl migrate: what the updates make of a file that an older version stored.
#include "inctl/command.hpp"
#include "inctl/configuration.hpp"
#include "inctl/help_formatter.hpp"
#include "inctl/host.hpp"
#include "inctl/items.hpp"
#include "inctl/signals_blocked.hpp"

#include "cs/cs_migration.h"
#include "pb/pb_buffer.h"

#include <fmt/format.h>

#include <memory>

namespace inctl {
namespace {

struct MigrateOptions {
    std::string file;
    bool diff = false;
    bool write = false;
};

using Update = pb::Ref<struct pbStore>;

std::string bytesOf( const pb::Ref<struct pbBuffer> &buffer )
{
    return { reinterpret_cast<const char *>( pbBufferBacking( buffer.get() ) ),
             static_cast<size_t>( pbBufferLength( buffer.get() ) ) };
}

std::string value( const Update &update, const char *key, const char *otherwise )
{
    const auto text = pb::adopt( pbStoreValueCstr( update.get(), key, -1 ) );
    return text ? pb::utf8( text ) : otherwise;
}

// "2013-01-04  in none -> 3.0  2 objects: office, home"
std::string lineOf( const Update &update )
{
    constexpr pbInt most = 5;
    const auto names = pb::adopt( pbStoreStoreCstr( update.get(), "objects", -1 ) );
    const pbInt count = pbStoreArrayLength( names.get() );
    std::string changed = count ? fmt::format( "{} object{}:", count, count == 1 ? "" : "s" ) : "";
    for ( pbInt i = 0; i < std::min( count, most ); ++i )
        changed += ( i ? ", " : " " ) + pb::utf8( pb::adopt( pbStoreArrayValueAt( names.get(), i ) ) );
    if ( count > most )
        changed += ", ...";
    if ( value( update, "info", "" ) == "true" )
        changed += ( changed.empty() ? "" : "; " ) + std::string( "the stored information of modules" );
    return fmt::format( "{}  {} {} -> {}  {}", value( update, "date", "" ), value( update, "module", "-" ),
                        value( update, "before", "none" ), value( update, "after", "none" ),
                        changed.empty() ? "nothing to change" : changed );
}

// Where standard output holds the file or the difference, what is told of it goes beside it.
class Teller {
public:
    Teller( Output &output, const MigrateOptions &options ) : output_( output ), aside_( !options.write ) {}
    void line( const std::string &text )
    {
        if ( !aside_ )
            output_.line( text );
        else if ( !output_.json() )
            complain( text + "\n" );
    }

private:
    Output &output_;
    const bool aside_;
};

Exit migrate( Output &output, const MigrateOptions &options )
{
    const Host host;
    struct pbVector *diagnoses = nullptr;
    const auto migration = pb::adopt( csMigrationTryLoad( pathOf( options.file ).get(), &diagnoses ) );
    if ( const auto told = pb::adopt( diagnoses ); !migration )
        refuse( told );
    struct pbString *problem = nullptr;
    pbInt origin = CS_DIAGNOSIS_OF_SYSTEM;
    if ( options.write ) {
        const SignalsBlocked blocked; // one that ends the program would leave half of the new file beside the old one
        if ( !csMigrationTryWrite( migration.get(), &problem, &origin ) )
            throw Failure{ exitOf( origin ), pb::utf8( pb::adopt( problem ) ) };
    }

    const bool changed = csMigrationChanged( migration.get() );
    const std::string text = bytesOf( pb::adopt( csMigrationText( migration.get() ) ) );
    const std::string diff = bytesOf( pb::adopt( csMigrationDiff( migration.get() ) ) );
    Teller teller( output, options );
    Record updates;
    for ( const Update &update : items( pb::adopt( csMigrationUpdates( migration.get() ) ), pbStoreFrom ) ) {
        updates.append( update );
        teller.line( lineOf( update ) );
    }
    teller.line( fmt::format( "{}: {}", options.file,
                              !changed        ? "up to date"
                              : options.write ? "brought up to date"
                                              : "to be brought up to date" ) );
    Record record;
    record.set( "file", options.file ).set( "changed", changed ).set( "written", options.write && changed );
    record.set( "updates", updates );
    if ( options.diff )
        record.set( "diff", diff );
    else if ( !options.write )
        record.set( "text", text );
    output.record( record );
    if ( !options.write )
        output.bytes( options.diff ? diff : text );
    return Exit::Yes;
}

} // namespace

void addMigrate( CLI::App &root, Context &context )
{
    CLI::App *command = addCommand( root, context, "migrate", "Bring a stored configuration of an older version up to date",
                                    "  inctl migrate old.json              the file as it would be, the updates beside it\n"
                                    "  inctl migrate old.json --diff       what would change, as diff -u shows it\n"
                                    "  inctl migrate old.json --write      replaces the file, whole or not at all\n"
                                    "Exit code 0 also when there is nothing to do; inctl check tells what else is wrong.\n" );
    auto options = std::make_shared<MigrateOptions>();
    command->add_option( "FILE", options->file, "The configuration, JSON with comments" )->required();
    CLI::Option *diff = command->add_flag( "--diff", options->diff, "Show the difference instead of the file" );
    command->add_flag( "--write", options->write, "Replace the file" )->excludes( diff );
    command->callback(
        [&context, options] { context.run = [&context, options] { return migrate( context.output, *options ); }; } );
}

} // namespace inctl
