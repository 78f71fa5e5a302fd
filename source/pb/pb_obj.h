// pbObj: the header of every object, a sort and an atomic reference count; pbSort: what all objects of a type share.
#ifndef PB_OBJ_H
#define PB_OBJ_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

struct pbObj;
struct pbSort;
struct pbString;

// The sort's name, such as "PB_STRING"; static text.
PB_API const char *pbSortName( const struct pbSort *sort );

PB_API const struct pbSort *pbObjSort( const struct pbObj *obj );
PB_API struct pbObj *pbObjRetain( const struct pbObj *obj );
PB_API void pbObjRelease( const struct pbObj *obj );
// True when more than one reference exists: the copy-on-write test.
PB_API pbBool pbObjIsShared( const struct pbObj *obj );
// Null first; different sorts by sort name; same sort by the sort's comparison; without one by identity.
PB_API pbInt pbObjCompare( const struct pbObj *a, const struct pbObj *b );
PB_API pbBool pbObjEquals( const struct pbObj *a, const struct pbObj *b );
// The sort's text form, else the sort's name. Null gives "null".
PB_API struct pbString *pbObjToString( const struct pbObj *obj );

PB_DECLS_END

#endif
