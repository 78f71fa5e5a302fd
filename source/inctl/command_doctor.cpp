// inctl doctor: what this kernel and this host will not do, mostly without saying so, and what to do about it.
#include "inctl/command.hpp"
#include "inctl/configuration.hpp"
#include "inctl/doctor.hpp"
#include "inctl/host.hpp"
#include "inctl/items.hpp"
#include "inctl/table.hpp"

#include "cs/cs_diagnosis.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>

namespace inctl {
namespace {

std::vector<std::string> diagnoses( const std::string &file, bool online, bool withWarnings )
{
    std::vector<std::string> texts;
    for ( const auto &diagnosis :
          items( pb::adopt( csDiagnoseFile( pathOf( file ).get(), online ) ), csDiagnosisFrom ) )
        if ( withWarnings || csDiagnosisSeverity( diagnosis.get() ) == CS_DIAGNOSIS_ERROR )
            texts.push_back( pb::utf8( pb::adopt( csDiagnosisToString( diagnosis.get() ) ) ) );
    return texts;
}

// What is wrong with a file, or what only this host makes wrong.
std::vector<Finding> findingsOfFile( const std::string &file )
{
    std::vector<Finding> findings;
    for ( const std::string &error : diagnoses( file, false, false ) )
        findings.push_back( { "configuration", State::Bad, error, "correct the file" } );
    const std::vector<std::string> everywhere = diagnoses( file, false, true );
    for ( const std::string &text : diagnoses( file, true, true ) )
        if ( std::find( everywhere.begin(), everywhere.end(), text ) == everywhere.end() )
            findings.push_back( { "configuration", State::Bad, text, "adapt the host, or the file to it" } );
    if ( findings.empty() )
        findings.push_back( { "configuration", State::Good, file + " fits this host", "" } );
    return findings;
}

Cell stateCell( State state )
{
    switch ( state ) {
    case State::Good:
        return { "good", Paint::Good };
    case State::Note:
        return { "note", Paint::Plain };
    case State::Bad:
        break;
    }
    return { "bad", Paint::Bad };
}

Exit examine( Output &output, const std::string &file )
{
    const Host host;
    std::vector<Finding> findings = examineHost();
    if ( !file.empty() )
        for ( Finding &finding : findingsOfFile( file ) )
            findings.push_back( std::move( finding ) );

    Table table{ { "SUBJECT" }, { "STATE" }, { "DETAIL" } };
    Record checks;
    for ( const Finding &finding : findings ) {
        const std::string remedy = finding.remedy.empty() ? "" : "\n-> " + finding.remedy;
        table.add(
            { Cell( finding.name, Paint::Strong ), stateCell( finding.state ), Cell( finding.detail + remedy ) } );
        Record check;
        check.set( "name", finding.name )
            .set( "state", stateCell( finding.state ).text )
            .set( "detail", finding.detail );
        if ( !finding.remedy.empty() )
            check.set( "remedy", finding.remedy );
        checks.append( check );
    }
    table.print( output );
    output.record( Record().set( "checks", checks ) );
    const bool bad = std::any_of( findings.begin(), findings.end(),
                                  []( const Finding &finding ) { return finding.state == State::Bad; } );
    return bad ? Exit::No : Exit::Yes;
}

} // namespace

void addDoctor( CLI::App &root, Context &context )
{
    CLI::App *command =
        addCommand( root, context, "doctor", "Tell what this host will silently not do, and what to do about it",
                    "  inctl doctor                as the user who will run the server: capabilities are a user's\n"
                    "  inctl doctor server.json    also whether the file fits this host\n"
                    "  inctl doctor --json | jq -r '.checks[] | select(.state == \"bad\").remedy'\n" );
    auto file = std::make_shared<std::string>();
    command->add_option( "FILE", *file, "A configuration that this host is to run" );
    command->callback(
        [&context, file] { context.run = [&context, file] { return examine( context.output, *file ); }; } );
}

} // namespace inctl
