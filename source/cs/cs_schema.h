// What the registered sorts say of their keys, for editors and manuals.
#ifndef CS_SCHEMA_H
#define CS_SCHEMA_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

struct csKey;
struct pbString;
struct pbVector;

// A JSON schema (draft 2020-12) of configuration files, made of the tables of keys: it accepts what
// csConfigurationTryLoad accepts, but for what a schema cannot see: comments, keys that stand twice, whether a number
// is written as 5, 5.0 or 5e0 (only the first is an integer here), and relations between values.
PB_API struct pbString *csSchema( void );

// The names of the registered sorts as a vector of struct pbString, ascending.
PB_API struct pbVector *csSchemaSortNames( void );
// Null when the sort is not registered or has no table.
PB_API const struct csKey *csSchemaKeys( const struct pbString *sortName, pbInt *keyCount );
// What a value must be: "one of A, B", "1..65535".
PB_API struct pbString *csSchemaExpected( const struct csKey *key );

PB_DECLS_END

#endif
