// Looking into DNS messages: all names in the order of the wire, and the whole message as text.
#ifndef DNS_MESSAGE_HPP
#define DNS_MESSAGE_HPP

#include "in/base/in_address.h"
#include "in/dns/in_dns_data_in_srv.h"
#include "in/dns/in_dns_data_mx.h"
#include "in/dns/in_dns_data_soa.h"
#include "in/dns/in_dns_data_txt.h"
#include "in/dns/in_dns_message.h"
#include "in/dns/in_dns_message_decode.h"
#include "in/dns/in_dns_question_record.h"
#include "in/dns/in_dns_resource_record.h"
#include "pb/pb_buffer.h"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"

#include <functional>
#include <vector>

namespace support {

using DnsMessage = pb::Ref<struct inDnsMessage>;

inline DnsMessage dnsDecode( std::string_view bytes )
{
    const auto buffer = pb::adopt( pbBufferCreateFromBytes( bytes.data(), static_cast<pbInt>( bytes.size() ) ) );
    return pb::adopt( inDnsMessageTryDecode( buffer.get() ) );
}

// The names in the data; a target that is absent is the root. Makes the data again as any caller may, so that what the
// decoder lets through and a creator does not ends the process.
inline std::vector<pb::String> dnsDataNames( const struct inDnsResourceRecord *record )
{
    const auto owner = pb::adopt( inDnsResourceRecordName( record ) );
    const pbInt cls = inDnsResourceRecordClass( record ), ttl = inDnsResourceRecordTtl( record );
    const auto drop = []( struct inDnsResourceRecord *again ) { inDnsResourceRecordRelease( again ); };
    if ( auto name = pb::adopt( inDnsResourceRecordCname( record ) ) )
        return drop( inDnsResourceRecordCreateCname( owner.get(), cls, ttl, name.get() ) ), std::vector{ name };
    if ( auto name = pb::adopt( inDnsResourceRecordNs( record ) ) )
        return drop( inDnsResourceRecordCreateNs( owner.get(), cls, ttl, name.get() ) ), std::vector{ name };
    if ( auto name = pb::adopt( inDnsResourceRecordPtr( record ) ) )
        return drop( inDnsResourceRecordCreatePtr( owner.get(), cls, ttl, name.get() ) ), std::vector{ name };
    if ( auto mx = pb::adopt( inDnsResourceRecordMx( record ) ) ) {
        auto name = pb::adopt( inDnsDataMxExchange( mx.get() ) );
        inDnsDataMxRelease( inDnsDataMxCreate( inDnsDataMxPreference( mx.get() ), name.get() ) );
        return { name };
    }
    if ( auto soa = pb::adopt( inDnsResourceRecordSoa( record ) ) ) {
        auto mname = pb::adopt( inDnsDataSoaMname( soa.get() ) ), rname = pb::adopt( inDnsDataSoaRname( soa.get() ) );
        inDnsDataSoaRelease( inDnsDataSoaCreate( mname.get(), rname.get(), inDnsDataSoaSerial( soa.get() ),
                                                 inDnsDataSoaRefresh( soa.get() ), inDnsDataSoaRetry( soa.get() ),
                                                 inDnsDataSoaExpire( soa.get() ), inDnsDataSoaMinimum( soa.get() ) ) );
        return { mname, rname };
    }
    if ( auto srv = pb::adopt( inDnsResourceRecordInSrv( record ) ) ) {
        auto target = pb::adopt( inDnsDataInSrvTarget( srv.get() ) );
        inDnsDataInSrvRelease( inDnsDataInSrvCreate( inDnsDataInSrvPriority( srv.get() ),
                                                     inDnsDataInSrvWeight( srv.get() ), inDnsDataInSrvPort( srv.get() ),
                                                     target.get() ) );
        return { target };
    }
    return {};
}

// All records of the answer, authority and additional sections.
inline std::vector<pb::Ref<struct inDnsResourceRecord>> dnsRecords( const DnsMessage &msg )
{
    std::vector<pb::Ref<struct inDnsResourceRecord>> records;
    for ( const auto vector :
          { inDnsMessageAnswerVector, inDnsMessageAuthorityVector, inDnsMessageAdditionalVector } ) {
        const auto section = pb::adopt( vector( msg.get() ) );
        for ( pbInt i = 0; i < pbVectorLength( section.get() ); ++i )
            records.push_back( pb::adopt( inDnsResourceRecordFrom( pbVectorObjAt( section.get(), i ) ) ) );
    }
    return records;
}

// Every name in the order of the wire, null for the root.
inline std::vector<pb::String> dnsNames( const DnsMessage &msg )
{
    std::vector<pb::String> names;
    for ( pbInt i = 0; i < inDnsMessageQuestionLength( msg.get() ); ++i )
        names.push_back(
            pb::adopt( inDnsQuestionRecordName( pb::adopt( inDnsMessageQuestionRecordAt( msg.get(), i ) ).get() ) ) );
    for ( const auto &record : dnsRecords( msg ) ) {
        names.push_back( pb::adopt( inDnsResourceRecordName( record.get() ) ) );
        for ( auto &name : dnsDataNames( record.get() ) )
            names.push_back( std::move( name ) );
    }
    return names;
}

} // namespace support

#endif
