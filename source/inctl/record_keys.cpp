// The kinds of the keys that inctl's records hold. Keys that are missing here are shown by what their text looks like.
#include "inctl/record_keys.hpp"

#include "cs/cs_key.h"

namespace inctl {
namespace {

constexpr csKey text( const char *key )
{
    return { key, CS_KEY_TEXT, nullptr, 0, 0, nullptr, nullptr, 0 };
}
template <size_t Count> constexpr csKey store( const char *key, const csKey ( &keys )[Count] )
{
    return { key, CS_KEY_STORE, nullptr, 0, 0, nullptr, keys, Count };
}
constexpr csKey array( const char *key, const csKey &entry )
{
    return { key, CS_KEY_ARRAY, nullptr, 0, 0, nullptr, &entry, 1 };
}

constexpr csKey anyText = text( "" );

constexpr csKey macKeys[] = { text( "type" ), text( "mac" ) };
constexpr csKey macEntry = store( "", macKeys );
constexpr csKey stateKeys[] = { text( "displayName" ), array( "layer2Addresses", macEntry ),
                                array( "layer3UnicastAddresses", anyText ), array( "layer3Networks", anyText ) };
constexpr csKey interfaceKeys[] = { text( "identifier" ), store( "state", stateKeys ) };
constexpr csKey interfaceEntry = store( "", interfaceKeys );

constexpr csKey moduleKeys[] = { text( "name" ), text( "version" ), text( "description" ) };
constexpr csKey moduleEntry = store( "", moduleKeys );
constexpr csKey queryKeys[] = { text( "kind" ), text( "key" ), text( "state" ), array( "result", anyText ) };
constexpr csKey queryEntry = store( "", queryKeys );
constexpr csKey dnsKeys[] = { array( "queries", queryEntry ) };
constexpr csKey stackKeys[] = { text( "address" ), text( "primaryInterface" ), array( "interfaces", anyText ),
                                store( "dns", dnsKeys ) };
constexpr csKey memberKeys[] = { text( "address" ), text( "name" ) };
constexpr csKey memberEntry = store( "", memberKeys );
constexpr csKey noteKeys[] = { text( "name" ), text( "text" ) };
constexpr csKey noteEntry = store( "", noteKeys );
constexpr csKey filterEntryKeys[] = { text( "host" ), array( "addresses", memberEntry ), array( "notes", noteEntry ) };
constexpr csKey filterEntry = store( "", filterEntryKeys );
constexpr csKey explanationKeys[] = { text( "address" ), text( "text" ), text( "stackAddress" ),
                                      array( "entries", filterEntry ) };
constexpr csKey refusedKeys[] = { text( "time" ), text( "file" ), array( "problems", anyText ) };
constexpr csKey objectKeys[] = { text( "name" ),  text( "sort" ),   text( "interface" ),
                                 text( "state" ), text( "reason" ), store( "stack", stackKeys ),
                                 store( "filter", explanationKeys ) };
constexpr csKey objectEntry = store( "", objectKeys );
constexpr csKey traceKeys[] = { text( "name" ), text( "text" ) };
constexpr csKey traceEntry = store( "", traceKeys );

constexpr csKey diagnosisKeys[] = { text( "file" ), text( "record" ), text( "key" ),
                                    text( "what" ), text( "expected" ), text( "nearest" ) };
constexpr csKey diagnosisEntry = store( "", diagnosisKeys );
constexpr csKey candidateKeys[] = { text( "address" ), text( "interface" ), array( "excludedBy", anyText ) };
constexpr csKey candidateEntry = store( "", candidateKeys );
constexpr csKey choiceKeys[] = { array( "candidates", candidateEntry ), text( "address" ),
                                 array( "interfaces", anyText ), text( "primaryInterface" ) };
constexpr csKey checkKeys[] = { text( "name" ), text( "state" ), text( "detail" ), text( "remedy" ) };
constexpr csKey checkEntry = store( "", checkKeys );

constexpr csKey updateKeys[] = { text( "date" ), text( "module" ), text( "before" ), text( "after" ),
                                 array( "objects", anyText ) };
constexpr csKey updateEntry = store( "", updateKeys );

// Of all records together: a key means the same in each.
constexpr csKey recordKeys[] = {
    text( "error" ),
    text( "name" ),
    text( "version" ),
    text( "description" ),
    text( "productName" ),
    text( "productVersion" ),
    text( "identifier" ),
    text( "sort" ),
    text( "text" ),
    text( "key" ),
    text( "value" ),
    text( "payload" ),
    store( "state", stateKeys ),
    store( "store", stateKeys ), // of a trace; see storeText
    array( "interfaces", interfaceEntry ),
    array( "modules", moduleEntry ),
    array( "objects", objectEntry ),
    array( "traces", traceEntry ),
    array( "dnsServers", anyText ),
    text( "file" ),
    text( "object" ),
    text( "host" ),
    text( "reason" ),
    text( "condition" ),
    store( "refused", refusedKeys ),
    array( "problems", anyText ),
    array( "diagnoses", diagnosisEntry ),
    store( "choice", choiceKeys ),
    store( "explanation", explanationKeys ),
    array( "checks", checkEntry ),
    array( "updates", updateEntry ),
    text( "diff" ),
};

} // namespace

std::string jsonText( const Record &record, pbInt style )
{
    return pb::utf8(
        pb::adopt( csJsonFromStoreWithKeys( record.store(), style, recordKeys, PB_SIZEOF_ARRAY( recordKeys ) ) ) );
}

std::string storeText( const struct pbStore *store )
{
    return pb::utf8(
        pb::adopt( csJsonFromStoreWithKeys( store, CS_JSON_SHORT, stateKeys, PB_SIZEOF_ARRAY( stateKeys ) ) ) );
}

} // namespace inctl
