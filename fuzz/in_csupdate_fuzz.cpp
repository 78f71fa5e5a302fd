// Any stored tree through the steps of the migration: none ends the process, each does its work once whether or not its
// version was recorded, what is up to date stays as it is, and objects of other sorts are nobody's business. The input
// is read as choices: names from the vocabulary, shapes from the bytes.
#include "cs/cs_update.h"
#include "cs/cs_update_backend.h"
#include "in/base/in_module.h"
#include "in/csupdate/in_csupdate_internal.h"
#include "pb/pb_assert.hpp"
#include "pb/pb_module_version.h"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"

#include <iterator>

namespace {

using Store = pb::Ref<struct pbStore>;
using Update = pb::Ref<struct csUpdate>;

constexpr const char *words[] = {
    "objects", "modules", "in", "info", "interfaces", "version", "sort", "config", "x", "0", "1", "2", "", "entries",
    "ipcAccessToolInitializeInStack", "IN_STACK", "IN_FILTER", "IN_TLS_STACK", "OTHER", "disableReverseDnsLookup",
    "dnsOptions", "disableQueryDomainNames", "true", "false", "interface", "flags", "IN_FLAG_LOOPBACK_ONLY",
    "privateKey", "rsaPrivateKey", "certificateFlags", "IN_TLS_FLAG_DISABLE_TLS_V1|IN_TLS_FLAG_DONT_VALIDATE_HOSTNAME",
    "IN_TLS_FLAG_GENERATE_AD_HOC_CERTIFICATE | IN_TLS_FLAG_INCLUDE_INSECURE_CIPHER_SUITES", "network", "address",
    "addressMatchingBits", "10.0.0.1", "24", "state", "IN_SYSTEM_INTERFACE_STATE_UP", "IN_SYSTEM_INTERFACE_STATE_DOWN",
    "status", "eui48Address", "layer2Addresses", "mtu", "layer2Mtu", "linkSpeedReceive", "layer2SpeedReceive",
    "linkSpeedTransmit", "layer2SpeedTransmit", "unicastAddresses", "layer3UnicastAddresses", "layer3Networks",
    "displayName", "2.9", "3.0", "7.0", "12.255", "13.0", "99.1", "no version", "9223372036854775807.0",
};

class Choices {
public:
    Choices( const uint8_t *data, size_t size ) : at_( data ), end_( data + size ) {}
    uint8_t next() { return at_ == end_ ? 0 : *at_++; }
    bool more() const { return at_ != end_; }
    pb::String word() { return pb::string( words[next() % std::size( words )] ); }

private:
    const uint8_t *at_, *end_;
};

Store anyStore( Choices &choices, int depth )
{
    auto store = pb::adopt( pbStoreCreate() );
    while ( choices.more() ) {
        const uint8_t shape = choices.next() % 8;
        if ( shape == 0 )
            break;
        const auto key = choices.word();
        if ( shape < 4 && depth < 8 )
            pbStoreSetStore( store.address(), key.get(), anyStore( choices, depth + 1 ).get() );
        else
            pbStoreSetValue( store.address(), key.get(), choices.word().get() );
    }
    return store;
}

void setStore( Store &parent, const char *key, const Store &store )
{
    pbStoreSetStoreCstr( parent.address(), key, -1, store.get() );
}

// Objects with sorts and configurations, and modules that tell of interfaces: what the steps look for.
Store likelyTree( Choices &choices )
{
    auto tree = pb::adopt( pbStoreCreate() ), objects = tree, modules = tree, module = tree, info = tree;
    for ( int count = choices.next() % 5; count > 0; --count ) {
        auto object = pb::adopt( pbStoreCreate() );
        pbStoreSetValueCstr( object.address(), "sort", -1, choices.word().get() );
        setStore( object, "config", anyStore( choices, 3 ) );
        pbStoreSetStore( objects.address(), choices.word().get(), object.get() );
    }
    setStore( tree, "objects", objects );
    setStore( info, "interfaces", anyStore( choices, 4 ) );
    setStore( module, "info", info );
    if ( const uint8_t recorded = choices.next(); recorded & 1 )
        pbStoreSetValueCstr( module.address(), "version", -1, choices.word().get() );
    setStore( modules, "in", module );
    setStore( tree, "modules", modules );
    return tree;
}

Store current( const Update &update ) { return pb::adopt( csUpdateCurrent( update.get() ) ); }

pbInt majorOf( const Update &update )
{
    const auto version = pb::adopt( csUpdateModuleVersion( update.get(), inModule() ) );
    return version ? pbModuleVersionMajor( version.get() ) : -1;
}

Store storeOf( const Store &parent, const char *key )
{
    auto store = pb::adopt( pbStoreStoreCstr( parent.get(), key, -1 ) );
    return store ? store : pb::adopt( pbStoreCreate() );
}

// The tree as a crash before the version was recorded would have left it.
Store withVersionOf( Store tree, const Store &before )
{
    auto modules = storeOf( tree, "modules" ), module = storeOf( modules, "in" );
    const auto was = pb::adopt( pbStoreValueCstr( storeOf( storeOf( before, "modules" ), "in" ).get(), "version", -1 ) );
    if ( was )
        pbStoreSetValueCstr( module.address(), "version", -1, was.get() );
    else
        pbStoreDelValueCstr( module.address(), "version", -1 );
    setStore( modules, "in", module );
    setStore( tree, "modules", modules );
    return tree;
}

constexpr struct Step {
    csUpdateFunc *func;
    pbInt lastMajor, target;
} steps[] = { { in___Csupdate20130104Func, 2, 3 },   { in___Csupdate20171013Func, 7, 8 },
              { in___Csupdate20180703Func, 8, 9 },   { in___Csupdate20190306Func, 10, 11 },
              { in___Csupdate20200204Func, 11, 12 }, { in___Csupdate20200219Func, 12, 13 } };

void checkStep( const Step &step, Update &update )
{
    const Store before = current( update );
    const pbInt major = majorOf( update );
    step.func( nullptr, update.address() );
    const Store once = current( update );
    if ( major > step.lastMajor ) {
        PB_ASSERT( pbStoreEquals( once.get(), before.get() ) );
        return;
    }
    PB_ASSERT( majorOf( update ) == step.target );
    auto again = pb::adopt( csUpdateCreate( withVersionOf( once, before ).get() ) );
    step.func( nullptr, again.address() );
    PB_ASSERT( pbStoreEquals( current( again ).get(), once.get() ) );
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *data, size_t size )
{
    Choices choices( data, size );
    const Store tree = choices.next() & 1 ? likelyTree( choices ) : anyStore( choices, 0 );
    auto update = pb::adopt( csUpdateCreate( tree.get() ) );
    for ( const Step &step : steps )
        checkStep( step, update );
    const Store all = current( update );
    PB_ASSERT( majorOf( update ) >= 13 );
    for ( const Step &step : steps )
        step.func( nullptr, update.address() );
    PB_ASSERT( pbStoreEquals( current( update ).get(), all.get() ) );

    const Store objects = storeOf( tree, "objects" ), now = storeOf( all, "objects" );
    for ( pbInt i = 0; i < pbStoreLength( objects.get() ); ++i ) {
        const auto name = pb::adopt( pbStoreKeyAt( objects.get(), i ) );
        const auto object = pb::adopt( pbStoreStoreAt( objects.get(), i ) );
        const auto sort = object ? pb::adopt( pbStoreValueCstr( object.get(), "sort", -1 ) ) : nullptr;
        const bool known = sort && ( pb::utf8( sort ) == "IN_STACK" || pb::utf8( sort ) == "IN_FILTER" ||
                                     pb::utf8( sort ) == "IN_TLS_STACK" );
        const bool named = pbStringEqualsCstr( name.get(), "ipcAccessToolInitializeInStack", -1 );
        PB_ASSERT( !object || known || named ||
                   pbStoreEquals( pb::adopt( pbStoreStore( now.get(), name.get() ) ).get(), object.get() ) );
    }
    return 0;
}
