// Punycode (RFC 3492): code points as letters, digits and "-", and back.
#ifndef IN_DNS_PUNYCODE_H
#define IN_DNS_PUNYCODE_H

#include "in/base/in_api.h"

PB_DECLS_BEGIN

struct pbString;

// maxResultLength: code points of the result at most, -1 for any number. Null when the result would be longer, and:
// encoding: when the source holds a surrogate or a value above U+10FFFF. ASCII stays in front and "-" follows it, also
// when nothing else does ("abc" gives "abc-"). Digits are written in lower case.
IN_API struct pbString *inDnsPunycodeTryEncode( const struct pbString *source, pbInt maxResultLength );
// decoding: when the source is not what encoding produces. Either letter case is read; a source whose only "-" comes
// first is refused.
IN_API struct pbString *inDnsPunycodeTryDecode( const struct pbString *source, pbInt maxResultLength );

PB_DECLS_END

#endif
