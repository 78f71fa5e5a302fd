// pbModule: the static descriptor of a library as a module of the process; pbHost: the modules that run.
#ifndef PB_MODULE_H
#define PB_MODULE_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbString;
struct pbHost;

struct pbModuleRecord {
    const char *name;
    const char *description;
    const char *version;         // "major.minor"
    const char *requiredModules; // names, blank-separated
    const char *productName;
    pbInt productVersion[3];
    const char *buildTime;
    const char *vendor; // lines joined by LF
};

struct pbModule {
    const struct pbModuleRecord *record;
    pbBool ( *startup )( void );
    void *reserved;                  // empty
    void ( *shutdown )( void );      // phase one: withdraw and stop
    void ( *shutdownWait )( void );  // phase two: wait, join, release
    int ( *personality )( int argumentCount, char **arguments ); // or null
};

PB_API const struct pbModule *pbModuleDescriptor( void );

PB_API const struct pbSort *pbHostSort( void );
PB_API struct pbHost *pbHostRetain( const struct pbHost *obj );
PB_API void pbHostRelease( const struct pbHost *obj );
PB_API struct pbObj *pbHostObj( const struct pbHost *obj );
PB_API struct pbHost *pbHostFrom( struct pbObj *obj );
PB_API struct pbString *pbHostToString( const struct pbHost *obj );
PB_API pbInt pbHostCompare( const struct pbHost *a, const struct pbHost *b );
PB_API pbBool pbHostEquals( const struct pbHost *a, const struct pbHost *b );

// Starts the modules so that each comes after those that it requires, once per process. Null when a required module is
// missing, requirements are circular or a start-up refuses; what had started is then shut down again, and the reason is
// in *optionalReason (null or a reference, which it replaces).
PB_API struct pbHost *pbHostTryStart( const struct pbModule *const *modules, pbInt moduleCount,
                                      struct pbString **optionalReason );
// Phase one of every module in reverse order, then phase two of every module in reverse order; once, by one thread.
PB_API void pbHostShutdown( struct pbHost *host );

PB_DECLS_END

#endif
