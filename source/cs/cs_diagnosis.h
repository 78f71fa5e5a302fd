// csDiagnosis: something to be said about a place in a configuration file. Immutable.
#ifndef CS_DIAGNOSIS_H
#define CS_DIAGNOSIS_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csDiagnosis;
struct pbStore;
struct pbString;
struct pbVector;

#define CS_DIAGNOSIS_ERROR 0   // the file is refused
#define CS_DIAGNOSIS_WARNING 1 // valid, but a person should know

#define CS_DIAGNOSIS_OF_TEXT 0       // the file, or that there is none
#define CS_DIAGNOSIS_OF_SYSTEM 1     // it was not read: the system is short of something (descriptors, memory)
#define CS_DIAGNOSIS_OF_PERMISSION 2 // it was not read: this user may not

PB_API const struct pbSort *csDiagnosisSort( void );
PB_API struct csDiagnosis *csDiagnosisRetain( const struct csDiagnosis *obj );
PB_API void csDiagnosisRelease( const struct csDiagnosis *obj );
PB_API struct pbObj *csDiagnosisObj( const struct csDiagnosis *obj );
PB_API struct csDiagnosis *csDiagnosisFrom( struct pbObj *obj );
// "FILE:LINE:COLUMN: error: RECORD.KEY: what is wrong, what was expected"; a warning instead of an error likewise.
PB_API struct pbString *csDiagnosisToString( const struct csDiagnosis *obj );
PB_API pbInt csDiagnosisCompare( const struct csDiagnosis *a, const struct csDiagnosis *b );
PB_API pbBool csDiagnosisEquals( const struct csDiagnosis *a, const struct csDiagnosis *b );

PB_API pbInt csDiagnosisSeverity( const struct csDiagnosis *diagnosis );
// CS_DIAGNOSIS_OF_TEXT and its kin.
PB_API pbInt csDiagnosisOrigin( const struct csDiagnosis *diagnosis );
// How many problems it stands for: 1, but the last of each severity may stand for those that are not told (see below).
PB_API pbInt csDiagnosisCount( const struct csDiagnosis *diagnosis );
// "file", "line", "column" (from 1, columns in code points), "severity" ("error" or "warning"), "record", "key" (the
// way to it, such as "udpOptions.portRange"), "what", "expected", "nearest" (the known name that was probably meant). A
// text that there is none of is left out.
PB_API struct pbStore *csDiagnosisStore( const struct csDiagnosis *diagnosis );

// Everything to be said about a file, in its order, as a vector of struct csDiagnosis; nothing is started. The file is
// what csConfigurationTryLoad accepts exactly when no error is among it. Warnings that depend on this host are given
// only when online. Limits and needs are those of csConfigurationTryLoad; 1,000 errors and 1,000 warnings are told,
// and behind them how many more there are.
PB_API struct pbVector *csDiagnoseFile( const struct pbString *path, pbBool online );
// The same from memory; name stands for the file.
PB_API struct pbVector *csDiagnoseText( const void *bytes, pbInt byteCount, const struct pbString *name,
                                        pbBool online );

PB_DECLS_END

#endif
