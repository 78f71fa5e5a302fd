// pbString: text as an array of Unicode code points, a value.
#ifndef PB_STRING_H
#define PB_STRING_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbString;
struct pbVector;
struct pbBuffer;

PB_API const struct pbSort *pbStringSort( void );
PB_API struct pbString *pbStringRetain( const struct pbString *obj );
PB_API void pbStringRelease( const struct pbString *obj );
PB_API struct pbObj *pbStringObj( const struct pbString *obj );
PB_API struct pbString *pbStringFrom( struct pbObj *obj );
PB_API struct pbString *pbStringToString( const struct pbString *obj );
PB_API pbInt pbStringCompare( const struct pbString *a, const struct pbString *b );
PB_API pbBool pbStringEquals( const struct pbString *a, const struct pbString *b );

PB_API struct pbString *pbStringCreate( void );
PB_API struct pbString *pbStringCreateFrom( const struct pbString *source );
// UTF-8; malformed bytes become U+FFFD. byteCount -1: NUL-terminated.
PB_API struct pbString *pbStringCreateFromCstr( const char *bytes, pbInt byteCount );
// Null on malformed UTF-8.
PB_API struct pbString *pbStringTryCreateFromUtf8( const void *bytes, pbInt byteCount );
PB_API struct pbString *pbStringCreateFromChars( const pbChar *chars, pbInt count );
// wchar_t holds one code point each. count -1: NUL-terminated.
PB_API struct pbString *pbStringCreateFromWcstr( const wchar_t *chars, pbInt count );

PB_API pbInt pbStringLength( const struct pbString *string );
// The code points, valid until the string is changed or released; not terminated.
PB_API const pbChar *pbStringBacking( const struct pbString *string );
PB_API pbChar pbStringCharAt( const struct pbString *string, pbInt index );

PB_API void pbStringAppend( struct pbString **string, const struct pbString *text );
PB_API void pbStringAppendCstr( struct pbString **string, const char *bytes, pbInt byteCount );
PB_API void pbStringAppendChar( struct pbString **string, pbChar c );
PB_API void pbStringPrepend( struct pbString **string, const struct pbString *text );
// count 0..length
PB_API void pbStringDelLeading( struct pbString **string, pbInt count );
PB_API void pbStringDelTrailing( struct pbString **string, pbInt count );
// White space: SP, TAB, LF, VT, FF, CR.
PB_API void pbStringTrim( struct pbString **string );
PB_API void pbStringTrimLeading( struct pbString **string );

// At most maxPieces pieces (-1: any number); the last holds the rest unsplit. Keeps empty pieces; empty text gives one.
PB_API struct pbVector *pbStringSplitChar( const struct pbString *string, pbChar separator, pbInt maxPieces );
// Runs of white space separate; no empty pieces.
PB_API struct pbVector *pbStringSplitWhitespace( const struct pbString *string );
// At LF; text after the last LF is a line of its own when not empty.
PB_API struct pbVector *pbStringSplitLines( const struct pbString *string );

// Reads the longest integer at offset: an optional "-", then digits of the base (2..36, either case). False without
// a digit and when the value does not fit; the out-parameters are then untouched. No "+", blanks or prefix.
PB_API pbBool pbStringScanInt( const struct pbString *string, pbInt offset, pbInt base, pbInt *value, pbInt *scannedLength );

PB_API pbBool pbStringBeginsWithCstr( const struct pbString *string, const char *bytes, pbInt byteCount );
PB_API pbBool pbStringBeginsWithChar( const struct pbString *string, pbChar c );
PB_API pbBool pbStringEndsWithChar( const struct pbString *string, pbChar c );
// Index of the first occurrence at or after offset, or -1.
PB_API pbInt pbStringFind( const struct pbString *string, pbInt offset, const struct pbString *text );
PB_API pbInt pbStringFindChar( const struct pbString *string, pbInt offset, pbChar c );
PB_API pbInt pbStringFindLastChar( const struct pbString *string, pbChar c );
PB_API pbBool pbStringEqualsCstr( const struct pbString *string, const char *bytes, pbInt byteCount );
// ASCII letters of either case are equal.
PB_API pbBool pbStringEqualsCstrIgnoreCase( const struct pbString *string, const char *bytes, pbInt byteCount );
// Full Unicode case folding (U+00DF gives "ss").
PB_API struct pbString *pbStringToCaseFold( const struct pbString *string );
PB_API pbBool pbStringEqualsCaseFold( const struct pbString *a, const struct pbString *b );

// UTF-8 bytes.
PB_API struct pbBuffer *pbStringToUtf8( const struct pbString *string );
// UTF-8 bytes with a NUL behind them, to be given to pbBytesZFree; null when the text holds U+0000.
PB_API char *pbStringTryConvertToBytesZ( const struct pbString *string );
PB_API void pbBytesZFree( char *bytes );

PB_DECLS_END

#endif
