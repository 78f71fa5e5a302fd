// Internationalised domain names (IDNA 2003: RFC 3490 with nameprep, RFC 3491, and punycode, RFC 3492): whether a text
// is a label or a name, its ASCII form ("xn--...") and its Unicode form. Code points that Unicode 3.2 does not assign
// are allowed, and so is all of ASCII. A result that equals its source is the source itself, retained.
#ifndef IN_DNS_IDNA_H
#define IN_DNS_IDNA_H

#include "in/base/in_api.h"

PB_DECLS_BEGIN

struct pbString;

// A label has an ASCII form of 1 to 63 code points. The conversions abort on a text that is none.
IN_API pbBool inDnsIdnaLabelOk( const struct pbString *label );
// ASCII stays as it is, letter case included.
IN_API struct pbString *inDnsIdnaLabelToAscii( const struct pbString *idnLabel );
// Decodes a label in ASCII form. A label in any other form, and one whose decoded text would not convert back, is
// returned unchanged: a Unicode label is not normalised.
IN_API struct pbString *inDnsIdnaLabelToUnicode( const struct pbString *adnLabel );

// A name is one or more labels. U+002E, U+3002, U+FF0E and U+FF61 separate them; one may end the name. The length of
// a whole name is not limited. The conversions abort on a text that is none; their results have U+002E between the
// labels and none at the end. A label may prepare or decode to text that holds a separator (U+2024 prepares to ".",
// "xn--r6jz45g" decodes to text that ends in U+3002): what comes from outside is checked again as a whole name.
IN_API pbBool inDnsIdnaDomainNameOk( const struct pbString *name );
IN_API struct pbString *inDnsIdnaDomainNameToAscii( const struct pbString *name );
IN_API struct pbString *inDnsIdnaDomainNameToUnicode( const struct pbString *name );
// Whether the Unicode forms are equal after full case folding. Both must be names.
IN_API pbBool inDnsIdnaDomainNameEquals( const struct pbString *a, const struct pbString *b );

PB_DECLS_END

#endif
