// The conversions of one label with the switches of RFC 3490, which the public functions set to true and false.
#ifndef IN_DNS_IDNA_INTERNAL_H
#define IN_DNS_IDNA_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

struct pbString;

// useStd3AsciiRules: the ASCII form consists of letters, digits and "-" and neither begins nor ends with "-".
pbBool in___DnsIdnaLabelOk( const struct pbString *adnLabel, pbBool allowUnassigned, pbBool useStd3AsciiRules );
// Null when the label has no ASCII form.
struct pbString *in___DnsIdnaLabelTryToAscii( const struct pbString *idnLabel, pbBool allowUnassigned, pbBool useStd3AsciiRules );
// Aborts unless the label is OK under the same switches.
struct pbString *in___DnsIdnaLabelToUnicode( const struct pbString *adnLabel, pbBool allowUnassigned, pbBool useStd3AsciiRules );

PB_DECLS_END

#endif
