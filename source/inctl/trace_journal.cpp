// TraceJournal: sd_journal_sendv(3).
#include "inctl/trace_journal.hpp"

#include "inctl/exit_code.hpp"

#include <cstring>
#include <systemd/sd-journal.h>
#include <unistd.h>
#include <vector>

namespace inctl {

JournalFields &JournalFields::add( std::string_view key, std::string_view value )
{
    const size_t size = key.size() + 1 + value.size();
    text_.append( reinterpret_cast<const char *>( &size ), sizeof size );
    text_.append( key ).append( "=" ).append( value );
    return *this;
}

TraceJournal::TraceJournal()
{
    // The library keeps silent about a journal that is not there.
    if ( access( "/run/systemd/journal/socket", W_OK ) != 0 )
        throw Failure{ Exit::System,
                       std::string( "--trace: the journal: " ) + std::strerror( errno ) +
                           "; a file of that name is ./journal" };
}

void TraceJournal::sink_it_( const spdlog::details::log_msg &message )
{
    std::string text( message.payload.data(), message.payload.size() );
    std::vector<iovec> fields;
    for ( size_t at = 0; at < text.size(); ) {
        size_t size;
        std::memcpy( &size, text.data() + at, sizeof size );
        fields.push_back( { text.data() + at + sizeof size, size } );
        at += sizeof size + size;
    }
    (void)sd_journal_sendv( fields.data(), static_cast<int>( fields.size() ) ); // what is lost is lost
}

} // namespace inctl
