// What a person should know about the configuration of an address filter although it is valid.
#include "in/filter/in_filter_warnings_internal.h"

#include "cs/cs_warnings.h"
#include "in/base/in_address.h"
#include "in/dns/in_dns_query.h"
#include "in/filter/in_filter_entry.h"
#include "in/filter/in_filter_entry_flags.h"
#include "in/filter/in_filter_options.h"
#include "pb/pb_format.hpp"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"

namespace {

constexpr uint64_t dnsFlags = IN_FILTER_ENTRY_FLAG_DNS_QUERY_ADDRESSES | IN_FILTER_ENTRY_FLAG_DNS_QUERY_SRV;

class Warner {
public:
    Warner( const struct pbStore *config, struct csWarnings *warnings )
        : options_( pb::adopt( inFilterOptionsRestore( config ) ) ),
          entries_( pb::adopt( pbStoreStoreCstr( config, "entries", -1 ) ) ), warnings_( warnings )
    {
    }

    void run()
    {
        const pbInt length = entries_ ? pbStoreArrayLength( entries_.get() ) : 0;
        if ( !length )
            add( "", inFilterOptionsHasStackName( options_.get() ) ? "no entry: at most the stack's own address is let in"
                                                                   : "no entry and no stack: nobody is let in" );
        // By their places in the configuration, from which the restored options leave out what is not valid.
        for ( pbInt i = 0; i < length; ++i ) {
            const auto store = pb::adopt( pbStoreArrayStoreAt( entries_.get(), i ) );
            if ( const auto entry = store ? pb::adopt( inFilterEntryTryRestore( store.get() ) ) : nullptr )
                Entry( *this, i, entry ).run();
        }
    }

private:
    class Entry {
    public:
        Entry( const Warner &warner, pbInt index, const pb::Ref<struct inFilterEntry> &entry )
            : warner_( warner ), path_( "entries." + std::to_string( index ) ), entry_( entry ),
              host_( pb::adopt( inFilterEntryHost( entry_.get() ) ) ),
              address_( pb::adopt( inAddressTryCreateFromString( host_.get() ) ) ),
              flags_( inFilterEntryFlags( entry_.get() ) )
        {
        }

        void run() const
        {
            if ( !flags_ )
                add( "", "has no flag that says how its host becomes addresses: it lets nobody in" );
            if ( flags_ == IN_FILTER_ENTRY_FLAG_ADDRESS && !address_ )
                add( ".host", "is no address, and no flag lets it be looked up: the entry lets nobody in" );
            if ( flags_ & IN_FILTER_ENTRY_FLAG_ADDRESS && address_ )
                warnOfAddress();
            if ( flags_ & dnsFlags && !inFilterOptionsHasStackName( warner_.options_.get() ) )
                add( ".flags", "names are looked up on a stack, and the filter has none (\"stackName\")" );
            if ( flags_ & IN_FILTER_ENTRY_FLAG_DNS_QUERY_ADDRESSES && !inDnsQueryNameOk( host_.get() ) )
                add( ".host", "is a name that the resolver cannot be asked for" );
            warnOfPrefixes();
        }

    private:
        void warnOfAddress() const
        {
            const pbInt length = inAddressLength( address_.get() ) * 8;
            if ( inFilterEntryHasAddressVersion( entry_.get() ) &&
                 inFilterEntryAddressVersion( entry_.get() ) != inAddressVersion( address_.get() ) )
                add( ".addressVersion", "leaves the entry's own address out" );
            if ( inFilterEntryAddressMatchingBits( entry_.get() ) > length )
                add( ".addressMatchingBits",
                     "the address has " + std::to_string( length ) + " bits: the entry lets nobody in" );
        }
        void warnOfPrefixes() const
        {
            const pbInt length = inFilterEntryDnsSrvPrefixesLength( entry_.get() );
            const bool asked = flags_ & IN_FILTER_ENTRY_FLAG_DNS_QUERY_SRV;
            if ( asked != ( length > 0 ) )
                add( asked ? ".flags" : ".dnsSrvPrefixes",
                     asked ? "no prefix (\"dnsSrvPrefixes\") names a service that could be looked up"
                           : "has no effect without the flag IN_FILTER_ENTRY_FLAG_DNS_QUERY_SRV" );
            for ( pbInt i = 0; asked && i < length; ++i )
                if ( !inDnsQueryNameOk(
                         pb::format( "%~s.%s", pb::adopt( inFilterEntryDnsSrvPrefixAt( entry_.get(), i ) ), host_ )
                             .get() ) )
                    add( ".dnsSrvPrefixes." + std::to_string( i ),
                         "gives with the host a name that the resolver cannot be asked for" );
        }
        void add( const std::string &key, const std::string &text ) const { warner_.add( path_ + key, text ); }

        const Warner &warner_;
        const std::string path_;
        const pb::Ref<struct inFilterEntry> entry_;
        const pb::String host_;
        const pb::Ref<struct inAddress> address_; // of the host, or null
        const uint64_t flags_;
    };

    void add( const std::string &key, const std::string &text ) const
    {
        csWarningsAdd( warnings_, key.c_str(), pb::string( text ).get() );
    }

    const pb::Ref<struct inFilterOptions> options_;
    const pb::Ref<struct pbStore> entries_; // or null
    struct csWarnings *const warnings_;
};

} // namespace

void in___FilterWarningsFunc( const struct pbStore *config, pbBool, struct csWarnings *warnings )
{
    Warner( config, warnings ).run();
}
