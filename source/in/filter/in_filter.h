// inFilter: an address filter, which knows the peers that may be talked with. It makes a list of addresses and networks
// from the entries of its options, asking its stack for names, and makes it anew after each rebuild interval. Until
// the look-ups of a new list have ended the last one stays in force; before the first one only the stack's address
// may be permitted.
// Threads:   any. A check takes no lock, never waits and costs nearly the same for ten entries as for a million. What is
//            permitted changes in the scheduler's threads.
// Ownership: getters return a new reference. The last release ends the filter; it must happen before the module's
//            shut-down enters phase two.
// Failures:  a name that does not resolve contributes nothing until the next rebuild: its addresses are refused.
#ifndef IN_FILTER_H
#define IN_FILTER_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csStatusReporter;
struct inAddress;
struct inFilter;
struct inFilterOptions;
struct inRawAddress;
struct inTcpAddress;
struct inUdpAddress;
struct pbStore;
struct pbString;
struct trAnchor;

IN_API const struct pbSort *inFilterSort( void );
IN_API struct inFilter *inFilterRetain( const struct inFilter *obj );
IN_API void inFilterRelease( const struct inFilter *obj );
IN_API struct pbObj *inFilterObj( const struct inFilter *obj );
IN_API struct inFilter *inFilterFrom( struct pbObj *obj );
IN_API struct pbString *inFilterToString( const struct inFilter *obj );
IN_API pbInt inFilterCompare( const struct inFilter *a, const struct inFilter *b );
IN_API pbBool inFilterEquals( const struct inFilter *a, const struct inFilter *b );

// Where no entry needs DNS its list is in force when it is returned.
IN_API struct inFilter *inFilterCreate( const struct inFilterOptions *options, struct trAnchor *optionalAnchor );

// The configured options. Setting others asks for a new list; equal ones change nothing.
IN_API struct inFilterOptions *inFilterOptions( const struct inFilter *filter );
IN_API void inFilterSetOptions( struct inFilter *filter, const struct inFilterOptions *options );

// Whether the peer is permitted: it has the stack's address, when the options permit that, or an address of the list
// agrees with it in as many leading bits as its entry asks for.
IN_API pbBool inFilterCheck( const struct inFilter *filter, const struct inAddress *address );
// The same for the address in an endpoint.
IN_API pbBool inFilterCheckTcpAddress( const struct inFilter *filter, const struct inTcpAddress *tcpAddress );
IN_API pbBool inFilterCheckUdpAddress( const struct inFilter *filter, const struct inUdpAddress *udpAddress );
IN_API pbBool inFilterCheckRawAddress( const struct inFilter *filter, const struct inRawAddress *rawAddress );

// What is in force and where it comes from, and for an address why inFilterCheck permits or refuses it now:
//     "permitted"     bool, with an address
//     "text"          a sentence, with an address: "refused: entry 1 matches 22 of 24 bits; entry 2 resolved to ..."
//     "address"       the address
//     "stackAddress"  the stack's address while the options permit it
//     "published"     bool: a list is in force
//     "rebuilding"    bool: a list is being made; its names are looked up
//     "addresses"     int: how many addresses and networks are in force
//     "entries"       array, one for each entry of the options behind the list, in their order:
//         "entry"     int, from 1
//         "host"      the entry's host
//         "permits"   bool, with an address
//         "addresses" array: "address"; "bits", the number that must agree, absent for all; "matchingBits", with an
//                     address of the same version; "name", what was looked up, absent for a host that is an address
//         "notes"     array of what contributes nothing: "name", what was looked up or left out; "text", why
// Not for the path of packets: its cost grows with the list.
IN_API struct pbStore *inFilterExplain( const struct inFilter *filter, const struct inAddress *optionalAddress );

// Up while the list in force was made from the options in effect. Items: "inFilterAddresses", how many addresses and
// networks are in force; "inFilterRebuilding" while the next list is being made; "inFilterFailures", what contributed
// nothing to the list.
IN_API struct csStatusReporter *inFilterCsStatus( const struct inFilter *filter );
IN_API void inFilterTraceCompleteAnchor( struct inFilter *filter, struct trAnchor *anchor );

PB_DECLS_END

#endif
