// ObjectState: what the status of an object says, in words.
#include "inctl/object_state.hpp"

#include "cs/cs_condition.h"

namespace inctl {
namespace {

void append( std::string &text, std::string_view separator, std::string_view more )
{
    text.append( text.empty() || more.empty() ? "" : separator ).append( more );
}

// By custom of the library's sorts an item whose key ends in this says why.
constexpr std::string_view reasonSuffix = "Reason";

void readItems( const struct pbStore *items, ObjectState &state )
{
    for ( pbInt i = 0; i < pbStoreLength( items ); ++i ) {
        if ( !pbStoreIsValueAt( items, i ) )
            continue;
        const std::string key = pb::utf8( pb::adopt( pbStoreKeyAt( items, i ) ) );
        const std::string value = pb::utf8( pb::adopt( pbStoreValueAt( items, i ) ) );
        if ( key.ends_with( reasonSuffix ) )
            append( state.reason, "; ", value );
        else
            append( state.items, "  ", key + "=" + value );
    }
}

} // namespace

std::string printable( std::string text )
{
    for ( size_t i = 0; i < text.size(); ++i ) {
        const auto byte = static_cast<unsigned char>( text[i] );
        // U+0080 to U+009F, which some terminals obey, are C2 80 to C2 9F.
        const bool second = byte >= 0x80 && byte <= 0x9F && i > 0 && text[i - 1] == '\xC2';
        if ( byte < 0x20 || byte == 0x7F )
            text[i] = '?';
        else if ( second )
            text.replace( --i, 2, "?" );
    }
    return text;
}

std::string ObjectState::detail() const
{
    std::string text = reason;
    append( text, "  ", items );
    return printable( std::move( text ) );
}

Record ObjectState::record( Record record ) const
{
    record.set( "name", name ).set( "sort", sort ).set( "created", created );
    if ( reported )
        record.set( "up", up ).set( "items", reported );
    if ( !reason.empty() )
        record.set( "reason", reason );
    return record;
}

ObjectState objectState( const Configuration::Object &object )
{
    ObjectState state{ .name = object.name, .sort = object.sort, .created = bool( object.object ) };
    if ( !object.object ) {
        state.state = "not created";
        state.reason = "not made yet; what the system refuses is tried again with the next re-load";
        return state;
    }
    if ( object.status ) {
        state.up = csStatusReporterUp( object.status.get() );
        state.reported = pb::adopt( csStatusReporterItems( object.status.get() ) );
        readItems( state.reported.get(), state );
    }
    if ( pbObjSort( object.object.get() ) == csConditionSort() )
        state.items = csConditionValue( csConditionFrom( object.object.get() ) ) ? "value=true" : "value=false";
    state.good = !object.status || state.up;
    state.state = !object.status ? "ready" : state.up ? "up" : "down";
    return state;
}

} // namespace inctl
