// Types and classes of DNS records: any number of 16 bits, and the names of those whose data the library reads.
#ifndef IN_DNS_RECORD_TYPE_H
#define IN_DNS_RECORD_TYPE_H

#include "pb/pb_base.h"

#define IN_DNS_RECORD_TYPE_A PB_INT_FROM( 1 )
#define IN_DNS_RECORD_TYPE_NS PB_INT_FROM( 2 )
#define IN_DNS_RECORD_TYPE_CNAME PB_INT_FROM( 5 )
#define IN_DNS_RECORD_TYPE_SOA PB_INT_FROM( 6 )
#define IN_DNS_RECORD_TYPE_PTR PB_INT_FROM( 12 )
#define IN_DNS_RECORD_TYPE_MX PB_INT_FROM( 15 )
#define IN_DNS_RECORD_TYPE_TXT PB_INT_FROM( 16 )
#define IN_DNS_RECORD_TYPE_AAAA PB_INT_FROM( 28 )
#define IN_DNS_RECORD_TYPE_SRV PB_INT_FROM( 33 )
#define IN_DNS_RECORD_TYPE_OK( type ) ( (uint64_t)( type ) <= 65535 )

#define IN_DNS_RECORD_CLASS_IN PB_INT_FROM( 1 )
#define IN_DNS_RECORD_CLASS_OK( cls ) ( (uint64_t)( cls ) <= 65535 )

#endif
