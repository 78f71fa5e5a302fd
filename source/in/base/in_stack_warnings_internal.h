// What a person should know about a stack's configuration although it is valid.
#ifndef IN_STACK_WARNINGS_INTERNAL_H
#define IN_STACK_WARNINGS_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

struct csWarnings;
struct pbStore;
struct pbString;

// See csSortWarningsFunc.
void in___StackWarningsFunc( const struct pbStore *config, pbBool online, struct csWarnings *warnings );

PB_DECLS_END

#ifdef __cplusplus
namespace in {

// Warns at the key when the host has no interface of that name; true when it has.
bool warnOfAbsentInterface( const struct pbString *identifier, const char *key, struct csWarnings *warnings );

} // namespace in
#endif

#endif
