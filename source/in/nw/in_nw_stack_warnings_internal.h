// What a person should know about the configuration of an interface stack although it is valid.
#ifndef IN_NW_STACK_WARNINGS_INTERNAL_H
#define IN_NW_STACK_WARNINGS_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

struct csWarnings;
struct pbStore;

// See csSortWarningsFunc.
void in___NwStackWarningsFunc( const struct pbStore *config, pbBool online, struct csWarnings *warnings );

PB_DECLS_END

#endif
