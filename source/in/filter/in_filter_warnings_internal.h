// What a person should know about the configuration of an address filter although it is valid.
#ifndef IN_FILTER_WARNINGS_INTERNAL_H
#define IN_FILTER_WARNINGS_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

struct csWarnings;
struct pbStore;

// See csSortWarningsFunc.
void in___FilterWarningsFunc( const struct pbStore *config, pbBool online, struct csWarnings *warnings );

PB_DECLS_END

#endif
