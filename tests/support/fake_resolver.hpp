// FakeResolver: the look-ups of the library, answered from a table instead of by the host's resolver: nothing leaves the
// process. To be included once in a test program, since it defines the functions that look up.
#ifndef SUPPORT_FAKE_RESOLVER_HPP
#define SUPPORT_FAKE_RESOLVER_HPP

#include "in/base/in_address.h"
#include "in/dns/in_dns_data_in_srv.h"
#include "in/dns/in_dns_query_addresses_imp_internal.h"
#include "in/dns/in_dns_query_domain_names_imp_internal.h"
#include "in/dns/in_dns_query_srv_imp_internal.h"
#include "in/imp/in_imp_dns_unix_internal.h"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"

#include <algorithm>
#include <condition_variable>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace support {

class FakeResolver {
public:
    static FakeResolver &instance()
    {
        static FakeResolver resolver;
        return resolver;
    }

    // Texts of addresses, and for a service names of targets, "" for none. A name that is not there is not found.
    void set( const std::string &name, std::vector<std::string> answers )
    {
        std::lock_guard lock( mutex_ );
        answers_[name] = std::move( answers );
    }
    // Look-ups that come wait until they are let go, but for those of names that begin so.
    void hold( const std::string &butFor = "" )
    {
        std::lock_guard lock( mutex_ );
        held_ = true;
        notHeld_ = butFor;
    }
    // Until it has been asked for since takeAsked.
    void awaitAsked( const std::string &name )
    {
        std::unique_lock lock( mutex_ );
        changed_.wait( lock, [&] { return std::find( asked_.begin(), asked_.end(), name ) != asked_.end(); } );
    }
    void letGo()
    {
        std::lock_guard lock( mutex_ );
        held_ = false;
        changed_.notify_all();
    }
    // Since the last time that it was asked for, in any order.
    std::vector<std::string> takeAsked()
    {
        std::lock_guard lock( mutex_ );
        return std::exchange( asked_, {} );
    }

    // Null: not found.
    pb::Ref<struct pbVector> answer( const struct pbString *name, struct pbObj *( *make )( const std::string &text ) )
    {
        std::unique_lock lock( mutex_ );
        const std::string text = pb::utf8( name );
        asked_.push_back( text );
        changed_.notify_all();
        changed_.wait( lock, [&] { return !held_ || ( !notHeld_.empty() && text.starts_with( notHeld_ ) ); } );
        const auto found = answers_.find( text );
        if ( found == answers_.end() )
            return nullptr;
        auto vector = pb::adopt( pbVectorCreate() );
        for ( const std::string &text : found->second )
            pbVectorAppend( vector.address(), pb::adopt( make( text ) ).get() );
        return vector;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::map<std::string, std::vector<std::string>> answers_;
    std::vector<std::string> asked_;
    bool held_ = false;
    std::string notHeld_;
};

} // namespace support

extern "C" {

void in___ImpDnsDoQueryAddresses( struct in___DnsQueryAddressesImp *query )
{
    const auto name = pb::adopt( in___DnsQueryAddressesImpDomainName( query ) );
    const auto found = support::FakeResolver::instance().answer( name.get(), []( const std::string &text ) {
        return inAddressObj( inAddressTryCreateFromCstr( text.c_str(), -1 ) );
    } );
    if ( found )
        in___DnsQueryAddressesImpEndSet( query, found.get() );
    else
        in___DnsQueryAddressesImpErrorSet( query );
}

void in___ImpDnsDoQuerySrv( struct in___DnsQuerySrvImp *query )
{
    const auto name = pb::adopt( in___DnsQuerySrvImpService( query ) );
    const auto found = support::FakeResolver::instance().answer( name.get(), []( const std::string &text ) {
        const auto target = pb::string( text );
        return inDnsDataInSrvObj( inDnsDataInSrvCreate( 0, 0, 5060, text.empty() ? nullptr : target.get() ) );
    } );
    if ( found )
        in___DnsQuerySrvImpEndSet( query, found.get() );
    else
        in___DnsQuerySrvImpErrorSet( query );
}

void in___ImpDnsDoQueryDomainNames( struct in___DnsQueryDomainNamesImp *query )
{
    in___DnsQueryDomainNamesImpErrorSet( query );
}

} // extern "C"

#endif
