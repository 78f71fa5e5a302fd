// Grammar checks of the parts of a URI or IRI (RFC 3986, RFC 3987).
#ifndef IRI_GENS_H
#define IRI_GENS_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbString;

#define IRI_GENS_PART_HOST 5 // IP-literal in brackets, IPv4address or reg-name (which may be empty)

PB_API pbBool iriGensValidatePart( const struct pbString *string, pbInt part );

PB_DECLS_END

#endif
