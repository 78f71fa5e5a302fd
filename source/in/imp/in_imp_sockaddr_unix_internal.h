// Conversion between values and socket addresses (sockaddr_in, sockaddr_in6). An IPv4-mapped address stays IPv6; no
// scope identifier is set or read. Buffers are as long as in___ImpSockaddrSize says.
#ifndef IN_IMP_SOCKADDR_UNIX_INTERNAL_H
#define IN_IMP_SOCKADDR_UNIX_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

struct inAddress;
struct inRawAddress;
struct inTcpAddress;
struct inUdpAddress;

// 28: a sockaddr_in6.
pbInt in___ImpSockaddrSize( void );

// Write the socket address (16 or 28 bytes) and its length where asked. Always true. The port slot of a raw address
// carries its protocol number.
pbBool in___ImpSockaddrFromAddressAndPort( void *optionalSockaddr, pbInt *optionalLength, const struct inAddress *ina,
                                           pbInt port ); // 0..65535
pbBool in___ImpSockaddrFromAddress( void *optionalSockaddr, pbInt *optionalLength, const struct inAddress *ina );
pbBool in___ImpSockaddrFromAddressAndTcpPort( void *optionalSockaddr, pbInt *optionalLength,
                                              const struct inAddress *ina, pbInt tcpPort );
pbBool in___ImpSockaddrFromAddressAndUdpPort( void *optionalSockaddr, pbInt *optionalLength,
                                              const struct inAddress *ina, pbInt udpPort );
pbBool in___ImpSockaddrFromTcpAddress( void *optionalSockaddr, pbInt *optionalLength,
                                       const struct inTcpAddress *tcpAddress );
pbBool in___ImpSockaddrFromUdpAddress( void *optionalSockaddr, pbInt *optionalLength,
                                       const struct inUdpAddress *udpAddress );
pbBool in___ImpSockaddrFromRawAddress( void *optionalSockaddr, pbInt *optionalLength,
                                       const struct inRawAddress *rawAddress );

// False, and an empty slot, when the socket address is too short or of another family, or its TCP or UDP port is 0.
// The slot's object is released in any case. A protocol hint of 0..255 decides the protocol; a greater one leaves it to
// the port slot, which must then hold 0..255.
pbBool in___ImpSockaddrToAddress( const void *sockaddr, pbInt length, struct inAddress **ina );
pbBool in___ImpSockaddrToTcpAddress( const void *sockaddr, pbInt length, struct inTcpAddress **tcpAddress );
pbBool in___ImpSockaddrToUdpAddress( const void *sockaddr, pbInt length, struct inUdpAddress **udpAddress );
pbBool in___ImpSockaddrToRawAddress( const void *sockaddr, pbInt length, struct inRawAddress **rawAddress,
                                     pbInt protocolHint );

// The same, but the slot keeps its object when it already holds the value, and nothing is allocated then.
pbBool in___ImpSockaddrUpdateAddress( const void *sockaddr, pbInt length, struct inAddress **ina );
pbBool in___ImpSockaddrUpdateTcpAddress( const void *sockaddr, pbInt length, struct inTcpAddress **tcpAddress );
pbBool in___ImpSockaddrUpdateUdpAddress( const void *sockaddr, pbInt length, struct inUdpAddress **udpAddress );
pbBool in___ImpSockaddrUpdateRawAddress( const void *sockaddr, pbInt length, struct inRawAddress **rawAddress,
                                         pbInt protocolHint );

PB_DECLS_END

#endif
