// TestSort: a sort for the tests of the configuration service, registered with its module while it lives. Its
// configuration shows every kind of key and the ways in which a sort drops, rewrites and overrides values.
#ifndef TESTS_CS_TEST_SORT_HPP
#define TESTS_CS_TEST_SORT_HPP

#include "cs/cs_key.h"
#include "cs/cs_module_backend.h"
#include "cs/cs_sort_backend.h"
#include "cs/cs_status_reporter.h"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"

#include <algorithm>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

PB_SORT_DECLARE( test___sort_TEST_PHONE )

struct testPhone final : pb::Object<struct testPhone, test___sort_TEST_PHONE> {
    static inline std::vector<std::string> events; // what happened to all of them
    static inline std::function<void()> onNormalize;

    explicit testPhone( struct pbStore *optionalStore )
        : store( optionalStore ? pb::share( optionalStore ) : pb::adopt( pbStoreCreate() ) ), title( titleOf() )
    {
        note( "+" + title );
    }
    ~testPhone() { note( "-" + title ); }

    void configure( struct pbStore *newStore )
    {
        store = pb::share( newStore );
        title = titleOf();
        note( "=" + title );
    }
    static void note( const std::string &event )
    {
        static std::mutex mutex;
        const std::lock_guard guard( mutex );
        events.push_back( event );
    }
    std::string titleOf() const
    {
        const auto text = pb::adopt( pbStoreValueCstr( store.get(), "title", -1 ) );
        return text ? pb::utf8( text ) : "untitled";
    }

    pb::Ref<struct pbStore> store;
    std::string title;
    const pb::Ref<struct csStatusReporter> status = pb::adopt( csStatusReporterCreate( nullptr ) );
};

inline constinit const struct pbSort test___sort_TEST_PHONE = pb::detail::makeSort<struct testPhone>( "TEST_PHONE" );

namespace test {

using Store = pb::Ref<struct pbStore>;

constexpr const char *Versions[] = { "V4", "V6", nullptr };
constexpr const char *Flags[] = { "LOOPBACK", "QUIET", nullptr };
constexpr csKey RangeKeys[] = { { "first", CS_KEY_INT, nullptr, 1, 65535 },
                                { "count", CS_KEY_INT, nullptr, 0, 65535 } };
constexpr csKey ServerKeys[] = { { "host", CS_KEY_TEXT, "a lower-case name" },
                                 { "weight", CS_KEY_INT, nullptr, 0, PB_INT_MAX } };
constexpr csKey ServerEntry[] = { { "", CS_KEY_STORE, nullptr, 0, 0, nullptr, ServerKeys, 2 } };
constexpr csKey NameEntry[] = { { "", CS_KEY_TEXT, "a lower-case name" } };
constexpr csKey PhoneKeys[] = {
    { "title", CS_KEY_TEXT },
    { "flags", CS_KEY_FLAGS, nullptr, 0, 0, Flags },
    { "version", CS_KEY_ENUM, nullptr, 0, 0, Versions },
    { "enabled", CS_KEY_BOOL },
    { "tos", CS_KEY_INT, "0..255", 0, 255 },
    { "timeout", CS_KEY_INT },
    { "negativeTimeout", CS_KEY_INT }, // read after timeout and into it
    { "host", CS_KEY_TEXT, "a lower-case name" },
    { "domain", CS_KEY_TEXT, "a part of the host" },
    { "range", CS_KEY_STORE, nullptr, 0, 0, nullptr, RangeKeys, 2 },
    { "servers", CS_KEY_ARRAY, nullptr, 0, 0, nullptr, ServerEntry, 1 },
    { "names", CS_KEY_ARRAY, nullptr, 0, 0, nullptr, NameEntry, 1 },
};

inline std::string text( const Store &store, const char *key )
{
    const auto value = pb::adopt( pbStoreValueCstr( store.get(), key, -1 ) );
    return value ? pb::utf8( value ) : "";
}
inline void set( Store &store, const char *key, const std::string &value )
{
    pbStoreSetValueCstr( store.address(), key, -1, pb::string( value ).get() );
}
// Trailing dots are taken off; upper case makes it invalid.
inline std::string hostFrom( std::string host )
{
    while ( host.ends_with( '.' ) )
        host.pop_back();
    return host.find_first_not_of( "abcdefghijklmnopqrstuvwxyz." ) == host.npos ? host : "";
}
// Sorted and without the invalid ones, as a set would hold them.
inline Store namesFrom( const Store &names )
{
    std::vector<std::string> kept;
    for ( pbInt i = 0; i < pbStoreArrayLength( names.get() ); ++i )
        if ( const auto name = pb::adopt( pbStoreArrayValueAt( names.get(), i ) );
             name && !hostFrom( pb::utf8( name ) ).empty() )
            kept.push_back( hostFrom( pb::utf8( name ) ) );
    std::sort( kept.begin(), kept.end() );
    auto result = pb::adopt( pbStoreCreate() );
    for ( const std::string &name : kept )
        pbStoreArrayAppendValue( result.address(), pb::string( name ).get() );
    return result;
}
inline Store serversFrom( const Store &servers )
{
    auto result = pb::adopt( pbStoreCreate() );
    for ( pbInt i = 0; i < pbStoreArrayLength( servers.get() ); ++i ) {
        const Store server = pb::adopt( pbStoreArrayStoreAt( servers.get(), i ) );
        const std::string host = server ? hostFrom( text( server, "host" ) ) : "";
        if ( host.empty() )
            continue;
        pbInt weight = 0;
        (void)pbStoreValueIntCstr( server.get(), &weight, "weight", -1 ); // absent: 0
        auto kept = pb::adopt( pbStoreCreate() );
        set( kept, "host", host );
        pbStoreSetValueIntCstr( kept.address(), "weight", -1, weight );
        pbStoreArrayAppendStore( result.address(), kept.get() );
    }
    return result;
}

inline struct pbStore *normalize( struct pbStore *config, pbBool storeDefaults )
{
    if ( testPhone::onNormalize )
        testPhone::onNormalize();
    const Store store = pb::share( config );
    Store result = pb::adopt( pbStoreCreate() );
    set( result, "flags", text( store, "flags" ) );
    for ( const char *key : { "title", "version" } )
        if ( !text( store, key ).empty() )
            set( result, key, text( store, key ) );
    if ( pbBool enabled = true; pbStoreValueBoolCstr( store.get(), &enabled, "enabled", -1 ) || storeDefaults )
        pbStoreSetValueBoolCstr( result.address(), "enabled", -1, enabled );
    if ( pbInt tos = 0; pbStoreValueIntCstr( store.get(), &tos, "tos", -1 ) || storeDefaults )
        set( result, "tos", { '0', 'x', "0123456789ABCDEF"[tos >> 4 & 15], "0123456789ABCDEF"[tos & 15] } );
    pbInt timeout = 60;
    const bool given = pbStoreValueIntCstr( store.get(), &timeout, "timeout", -1 );
    if ( pbStoreValueIntCstr( store.get(), &timeout, "negativeTimeout", -1 ) || given || storeDefaults )
        pbStoreSetValueIntCstr( result.address(), "timeout", -1, timeout );
    if ( storeDefaults )
        pbStoreSetValueIntCstr( result.address(), "negativeTimeout", -1, 60 );
    const std::string host = hostFrom( text( store, "host" ) ), domain = text( store, "domain" );
    if ( !host.empty() )
        set( result, "host", host );
    if ( !domain.empty() && ( host.empty() || host.ends_with( domain ) ) )
        set( result, "domain", domain );
    if ( const Store range = pb::adopt( pbStoreStoreCstr( store.get(), "range", -1 ) ) )
        if ( pbStoreHasValueCstr( range.get(), "first", -1 ) && pbStoreHasValueCstr( range.get(), "count", -1 ) )
            pbStoreSetStoreCstr( result.address(), "range", -1, range.get() );
    if ( const Store names = pb::adopt( pbStoreStoreCstr( store.get(), "names", -1 ) ) )
        pbStoreSetStoreCstr( result.address(), "names", -1, namesFrom( names ).get() );
    if ( const Store servers = pb::adopt( pbStoreStoreCstr( store.get(), "servers", -1 ) ) )
        pbStoreSetStoreCstr( result.address(), "servers", -1, serversFrom( servers ).get() );
    return result.release();
}

inline struct pbObj *tryCreate( struct pbStore *optionalStore, struct trAnchor * )
{
    const bool broken = optionalStore && text( pb::share( optionalStore ), "title" ) == "broken";
    return broken ? nullptr : pb::make<struct testPhone>( optionalStore ).release();
}

// The module TEST with the sort TEST_PHONE.
class TestSort {
public:
    explicit TestSort( bool withKeys = true )
        : sort( pb::adopt( csSortBackendCreate(
              &test___sort_TEST_PHONE, tryCreate,
              []( struct pbObj *obj, pbBool storeDefaults ) {
                  return normalize( static_cast<struct testPhone *>( obj )->store.get(), storeDefaults );
              },
              []( struct pbObj *obj, struct pbStore *store ) {
                  static_cast<struct testPhone *>( obj )->configure( store );
              },
              normalize, []( struct pbObj *obj ) { return static_cast<struct testPhone *>( obj )->status.share(); },
              nullptr ) ) )
    {
        if ( withKeys )
            csSortBackendSetKeys( sort.get(), PhoneKeys, PB_SIZEOF_ARRAY( PhoneKeys ) );
        module = pb::adopt( csModuleBackendCreate( &descriptor, [] {
            auto info = pb::adopt( pbStoreCreate() );
            set( info, "phones", "2" );
            return info.release();
        } ) );
    }

    static constexpr pbModuleRecord record = { "test", "Test", "1.0", "", "", {}, "", "" };
    static constexpr pbModule descriptor = { &record };
    pb::Ref<struct csSortBackend> sort;
    pb::Ref<struct csModuleBackend> module;
};

} // namespace test

#endif
