// The layout of inDnsResourceRecord, for the decoder. In-tree only.
#ifndef IN_DNS_RESOURCE_RECORD_HPP
#define IN_DNS_RESOURCE_RECORD_HPP

#include "in/dns/in_dns_name.hpp"
#include "in/dns/in_dns_resource_record.h"

#include <variant>

PB_SORT_DECLARE( in___sort_IN_DNS_RESOURCE_RECORD )

namespace in::dns {

// Record data that is a name; the tag says of which kind.
template <int Tag> struct NameData {
    Name name;
};
using Cname = NameData<0>;
using Ns = NameData<1>;
using Ptr = NameData<2>;
// The version of the address says whether it is A or AAAA data.
using Data = std::variant<std::monostate, Cname, Ns, Ptr, pb::Ref<struct inDnsDataMx>, pb::Ref<struct inDnsDataSoa>,
                          pb::Ref<struct inDnsDataTxt>, pb::Ref<struct inAddress>, pb::Ref<struct inDnsDataInSrv>>;

} // namespace in::dns

struct inDnsResourceRecord final : pb::Object<struct inDnsResourceRecord, in___sort_IN_DNS_RESOURCE_RECORD> {
    in::dns::Name name;
    pbInt type = 0; // 0..65535
    pbInt cls = 0;  // 0..65535
    pbInt ttl = 0;  // seconds, 0..0x7FFFFFFF
    in::dns::Data data;

    void set( pbInt newType, pbInt newClass, in::dns::Data newData )
    {
        type = newType;
        cls = newClass;
        data = std::move( newData );
    }
};

// Any type, and no data.
struct inDnsResourceRecord *in___DnsResourceRecordCreate( const struct pbString *optionalIdn, pbInt type, pbInt cls,
                                                          pbInt ttl );

#endif
