// The DNS servers that the host's resolver is configured with, handed out by the library's public face.
#include "in/dns/in_system_dns_servers.h"

#include "in/imp/in_imp_dns_servers_internal.h"

extern "C" struct pbVector *inSystemEnumerateDnsServers( void ) { return in___ImpSystemEnumerateDnsServers(); }
